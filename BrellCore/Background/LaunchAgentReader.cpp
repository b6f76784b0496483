#include "BrellCore/Background/LaunchAgentReader.h"

#include <algorithm>
#include <exception>
#include <system_error>

#include "BrellCore/Support/Lines.h"
#include "BrellCore/Support/Text.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

AgentOverride overrideFor(const LaunchAgentPlist& plist, const AgentOverrides& overrides) {
    const auto found = plist.label ? overrides.find(*plist.label) : overrides.end();
    return LaunchAgentReader::inForce(found == overrides.end() ? AgentOverride::absent : found->second,
                                      plist);
}

}  // namespace

std::string describe(const LaunchctlFailure& failure) {
    return "launchctl " + failure.word + ": " + excerpt(stripped(failure.output), mostOfASentence);
}

LaunchctlError::~LaunchctlError() = default;

std::vector<fs::path> LaunchAgentReader::jobFiles(const fs::path& folder, std::error_code& error) {
    std::vector<fs::path> files;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (entry->path().filename().native().ends_with(".plist")) files.push_back(entry->path());
    std::sort(files.begin(), files.end(),
              [](const fs::path& a, const fs::path& b) { return a.native() < b.native(); });
    return files;
}

std::vector<LaunchAgentPlist> LaunchAgentReader::plists(const fs::path& folder, LinksOut links) {
    std::vector<LaunchAgentPlist> plists;
    std::error_code ignored;
    for (const fs::path& file : jobFiles(folder, ignored))
        plists.push_back(LaunchAgentPlist::read(file, links));
    return plists;
}

AgentOverride LaunchAgentReader::inForce(AgentOverride held, const LaunchAgentPlist& plist) {
    return held == AgentOverride::absent && plist.isDisabled ? AgentOverride::disabled : held;
}

AgentOverrides LaunchAgentReader::overrides() const {
    const CommandResult result = runner.run(AllowedCommand::launchctlPrintDisabled(domain()));
    if (!result.succeeded()) throw LaunchctlError({"print-disabled", result.output()});
    return LaunchctlParser::parsePrintDisabled(result.stdoutText);
}

LoadedState LaunchAgentReader::loadedState(const LaunchAgentPlist& plist) const {
    // Without a label the target would be the domain itself, which is always there.
    if (plist.label.value_or("").empty() || plist.isForOtherSessions) return LoadedState::unknown();
    try {
        const auto command = AllowedCommand::launchctlPrint(domain() + "/" + *plist.label);
        command.validate();
        return LaunchctlParser::parsePrint(runner.run(command));
    } catch (const std::exception&) {
        return LoadedState::unknown();
    }
}

std::vector<LaunchAgentRecord> LaunchAgentReader::listUserAgents() const {
    const AgentOverrides known = overrides();
    std::vector<LaunchAgentRecord> records;
    for (LaunchAgentPlist& plist : plists(userAgentsDirectory(), LinksOut::left)) {
        const AgentOverride override = overrideFor(plist, known);
        records.push_back({std::move(plist), AgentScope::user, override, LoadedState::unknown()});
    }
    return records;
}

std::vector<LaunchAgentRecord> LaunchAgentReader::userAgents() const {
    std::vector<LaunchAgentRecord> records = listUserAgents();
    for (LaunchAgentRecord& record : records) record.loaded = loadedState(record.plist);
    return records;
}

std::vector<LaunchAgentRecord> LaunchAgentReader::systemAgents() const {
    std::vector<LaunchAgentRecord> records;
    const auto add = [&](const char* folder, AgentScope scope) {
        for (LaunchAgentPlist& plist : plists(systemRoot / folder))
            records.push_back({std::move(plist), scope, AgentOverride::absent, LoadedState::unknown()});
    };
    add("Library/LaunchAgents", AgentScope::systemAgent);
    add("Library/LaunchDaemons", AgentScope::systemDaemon);
    return records;
}

}  // namespace brell
