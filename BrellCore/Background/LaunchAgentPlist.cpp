#include "BrellCore/Background/LaunchAgentPlist.h"

#include <algorithm>
#include <exception>

#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/Ownership.h"
#include "BrellCore/Support/PropertyList.h"
#include "BrellCore/Support/Text.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::size_t mostBytes = 4 << 20;  // job files have a few hundred

// All that is known of a file that can't be read.
LaunchAgentPlist nothingOf(const fs::path& file) {
    LaunchAgentPlist plist;
    plist.path = file.string();
    plist.fileOwnerUID = ownerOf(file);
    return plist;
}

// Nothing of what is no job file. Raises ReadError where the system is the reason.
std::optional<PlistDictionary> readDictionary(const fs::path& file) {
    try {
        const auto contents = readFile(file, mostBytes);
        if (!contents) return std::nullopt;
        PlistValue root = readPropertyList(contents->bytes);
        if (auto* dictionary = std::get_if<PlistDictionary>(&root.payload)) return std::move(*dictionary);
    } catch (const ReadError& error) {
        if (error.failure().code != 0) throw;
    } catch (const PlistError&) {
    }
    return std::nullopt;
}

// The contents behind a link to another folder; nothing for a link beside its file, and for a file.
std::optional<std::string> leadingOut(const fs::path& file) {
    std::error_code noLink;
    const fs::path target = fs::read_symlink(file, noLink);
    if (noLink) return std::nullopt;
    const fs::path folder = file.parent_path();
    const bool isBeside = target.parent_path().empty() || target.parent_path() == folder;
    std::error_code ignored;
    if (isBeside && !fs::is_symlink(folder / target, ignored)) return std::nullopt;
    return target.string();
}

template <class T>
std::optional<T> valueOf(const PlistDictionary& job, std::string_view key) {
    const PlistValue* value = job.find(key);
    const T* typed = value ? value->as<T>() : nullptr;
    return typed ? std::optional(*typed) : std::nullopt;
}

std::vector<std::string> textsOf(const PlistDictionary& job, std::string_view key) {
    std::vector<std::string> texts;
    for (const PlistValue& element : valueOf<PlistArray>(job, key).value_or(PlistArray{})) {
        const auto* text = element.as<std::string>();
        if (!text) return {};
        texts.push_back(*text);
    }
    return texts;
}

// Where one text may stand for a list of one.
std::vector<std::string> textOrTextsOf(const PlistDictionary& job, std::string_view key) {
    if (auto one = valueOf<std::string>(job, key)) return {*std::move(one)};
    return textsOf(job, key);
}

// Without the key launchd takes a job for one of the desktop, which it calls Aqua.
bool leavesOutTheDesktop(const std::vector<std::string>& sessions) {
    return !sessions.empty() && std::find(sessions.begin(), sessions.end(), "Aqua") == sessions.end();
}

}  // namespace

LaunchAgentPlist LaunchAgentPlist::read(const fs::path& file, LinksOut links) try {
    return readOrRaise(file, links);
} catch (const ReadError&) {
    return nothingOf(file);
}

LaunchAgentPlist LaunchAgentPlist::readOrRaise(const fs::path& file, LinksOut links) {
    if (const auto target = links == LinksOut::left ? leadingOut(file) : std::nullopt) {
        LaunchAgentPlist link;
        link.path = file.string();
        link.leadsTo = target;
        return link;
    }
    LaunchAgentPlist plist = nothingOf(file);
    const auto job = readDictionary(file);
    if (!job) return plist;

    plist.label = valueOf<std::string>(*job, "Label");
    plist.program = valueOf<std::string>(*job, "Program");
    plist.arguments = textsOf(*job, "ProgramArguments");
    plist.runAtLoad = valueOf<bool>(*job, "RunAtLoad").value_or(false);
    plist.keepAlive =
        valueOf<bool>(*job, "KeepAlive").value_or(valueOf<PlistDictionary>(*job, "KeepAlive").has_value());
    plist.isDisabled = valueOf<bool>(*job, "Disabled").value_or(false);
    plist.startInterval = valueOf<std::int64_t>(*job, "StartInterval");
    plist.hasCalendarInterval = job->find("StartCalendarInterval") != nullptr;
    plist.isForOtherSessions = leavesOutTheDesktop(textOrTextsOf(*job, "LimitLoadToSessionType"));
    plist.associatedBundleIDs = textOrTextsOf(*job, "AssociatedBundleIdentifiers");
    return plist;
}

std::optional<std::string> LaunchAgentPlist::executable() const {
    if (program) return program;
    return arguments.empty() ? std::nullopt : std::optional(arguments.front());
}

std::string LaunchAgentPlist::trigger() const {
    if (leadsTo) return "a link to " + *leadsTo;
    std::vector<std::string> parts;
    if (runAtLoad) parts.emplace_back("at login");
    if (startInterval) parts.push_back("every " + std::to_string(*startInterval) + " s");
    if (hasCalendarInterval) parts.emplace_back("on a schedule");
    if (keepAlive) parts.emplace_back("kept running");
    return parts.empty() ? "on demand" : join(parts, ", ");
}

}  // namespace brell
