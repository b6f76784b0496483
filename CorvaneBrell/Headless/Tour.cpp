#include "CorvaneBrell/Headless/Tour.h"

#include <fmt/format.h>

#include <algorithm>

#include "BrellCore/Engine/Report.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/DurableFile.h"
#include "CorvaneBrell/Console.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Headless/HeadlessCommands.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

using Readings = std::vector<std::pair<PrefKey, StoredValue>>;

Readings everyKey(const Dependencies& deps) {
    Readings readings;
    for (const Tweak& tweak : deps.catalog.all())
        for (const Write& write : tweak.writes)
            readings.emplace_back(write.key, deps.store.exactValue(write.key));
    return readings;
}

std::string effectiveValues(const TweakStatus& status) {
    std::vector<std::string> texts;
    for (const StoredValue& value : status.effective) texts.push_back(value.rendered());
    return join(texts, ", ");
}

void showStatus(Dependencies& deps, std::ostream& out) {
    for (const Tweak& tweak : deps.catalog.all()) {
        const TweakStatus status = deps.engine.status(tweak);
        const std::string state = HeadlessCommands::describe(status.state);
        printLine(out, fmt::format("  {:<30} {:<12} {}", tweak.id, state.substr(0, state.find('(')),
                                   effectiveValues(status)));
    }
}

int run(const LaunchOptions& options, const LaunchOptions& request, std::ostream& out) {
    LaunchOptions step = options;
    step.applyAll = request.applyAll;
    step.restoreAll = request.restoreAll;
    return HeadlessCommands::runIfRequested(step, out).value_or(ExitStatus::cannotStart);
}

// How many keys no longer read as they did, each with a line that says so.
std::size_t showDifferences(const Readings& before, const Readings& after, std::ostream& out) {
    std::size_t different = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i] == after[i]) continue;
        ++different;
        printLine(out, "  " + before[i].first.rendered() + " was " + before[i].second.rendered() +
                           " and is now " + after[i].second.rendered());
    }
    return different;
}

void leaveReport(Dependencies& deps, std::ostream& out) {
    const fs::path report = deps.journalDirectory() / Report::fileName;
    replaceFile(report,
                Report::markdown(*deps.journal, deps.catalog, deps.machine.osVersion.text(), systemNow(),
                                 deps.engine.driftedEntries()),
                Durability::readersOnly);
    printLine(out, "Restore script: " + (deps.journalDirectory() / RestoreScript::fileName).string());
    printLine(out, "Report:         " + report.string());
}

int walk(const LaunchOptions& options, std::ostream& out) {
    Dependencies deps(options, out);
    printLine(out, "A tour over the sample Mac in " + options.sampleMac->string() + ".");
    LaunchOptions apply, restore;
    apply.applyAll = restore.restoreAll = true;

    printLine(out, "");
    printLine(out, "Whatever an earlier run left active is restored, then every tweak is applied:");
    run(options, restore, out);
    const Readings before = everyKey(deps);
    const int applied = run(options, apply, out);

    printLine(out, "");
    printLine(out, "Their status now, with the values that apps see:");
    showStatus(deps, out);

    printLine(out, "");
    printLine(out, "Everything is restored, newest change first:");
    const int restored = run(options, restore, out);
    const std::size_t different = showDifferences(before, everyKey(deps), out);

    printLine(out, "");
    printLine(out,
              fmt::format("{} of {} keys are exactly as before.", before.size() - different, before.size()));
    leaveReport(deps, out);
    return different == 0 ? std::max(applied, restored) : ExitStatus::failure;
}

}  // namespace

int runHeadlessTour(const LaunchOptions& options, std::ostream& out) try {
    if (options.dryRun) throw std::runtime_error("A dry run of the tour would have nothing to show.");
    return walk(options, out);
} catch (const std::exception& error) {
    printLine(out, std::string("error: ") + error.what());
    return ExitStatus::cannotStart;
}

}  // namespace brell
