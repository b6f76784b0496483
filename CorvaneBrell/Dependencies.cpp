#include "CorvaneBrell/Dependencies.h"

#include <cstdlib>

#include "BrellCore/Journal/RestoreScript.h"
#include "CorvaneBrell/Console.h"
#include "CorvaneBrell/DryRunCommandRunner.h"
#include "CorvaneBrell/DryRunStore.h"
#include "CorvaneBrell/SafetyCheck.h"

namespace brell {

namespace {

// A crash between the durable capture and the first write, on request.
auto endAfterCapture(std::ostream& out) {
    return [&out](const JournalEntry& entry) {
        printLine(out, "quit-after-capture: entry " + entry.id.text() + " for " + entry.tweakID +
                           " is durable; exiting before the first write");
        std::_Exit(out ? EXIT_SUCCESS : EXIT_FAILURE);  // what nobody could read is no success
    };
}

// A dry run's entries say what was not done, and its restores undo nothing: neither belongs among real ones.
std::unique_ptr<Journal> openJournal(const LaunchOptions& options, const Machine& machine) {
    // A file where the folder would be is no journal that was never written.
    if (const auto obstacle = inTheWayOf(machine.journalDirectory))
        throw JournalError({JournalFailure::Kind::cannotRead, obstacle->string() + ": it is not a folder"});
    std::unique_ptr<Journal> journal = Journal::open(machine.journalDirectory);
    if (options.dryRun && !journal->all().empty())
        throw JournalError(
            {JournalFailure::Kind::cannotWrite,
             "a dry run takes no journal that has entries, such as " + journal->fileURL().string()});
    return journal;
}

EngineSettings engineSettings(const Machine& machine) {
    return {machine.osVersion.text(), machine.osVersion.major,
            machine.journalDirectory / RestoreScript::fileName};
}

}  // namespace

Dependencies::Dependencies(const LaunchOptions& launchOptions, std::ostream& out)
    : options(launchOptions),
      machine(machineFor(options)),
      catalog(machine.home.string()),
      dryRunStore(options.dryRun ? std::make_unique<DryRunStore>(*machine.store, out) : nullptr),
      store(dryRunStore ? *dryRunStore : *machine.store),
      dryRunRunner(options.dryRun ? std::make_unique<DryRunCommandRunner>(*machine.runner, out) : nullptr),
      runner(dryRunRunner ? *dryRunRunner : *machine.runner),
      journal(openJournal(options, machine)),
      engine(store, *journal, catalog, engineSettings(machine)),
      toggle(runner, engine, machine.uid, machine.home / "Library" / "LaunchAgents"),
      reader{runner, machine.home, machine.uid, machine.systemRoot},
      btmReader{runner, machine.isAdmin},
      spotlight{runner} {
    engine.setAgentRestorer(&toggle);
    if (options.quitAfterCapture) engine.setAfterCaptureHook(endAfterCapture(out));
}

}  // namespace brell
