#include "CorvaneBrell/Dependencies.h"

#include <cstdlib>

#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "CorvaneBrell/Console.h"
#include "CorvaneBrell/DryRunCommandRunner.h"
#include "CorvaneBrell/DryRunJournal.h"
#include "CorvaneBrell/DryRunStore.h"
#include "CorvaneBrell/SafetyCheck.h"

namespace fs = std::filesystem;

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

// A file where the folder would be is no journal that was never written.
void checkCanHoldJournal(const fs::path& directory) {
    if (const auto obstacle = inTheWayOf(directory))
        throw JournalError({JournalFailure::Kind::cannotRead, obstacle->string() + ": it is not a folder"});
}

Machine machineOf(const LaunchOptions& options, std::ostream& notes) {
    Machine machine = machineFor(options);
    checkCanHoldJournal(machine.journalDirectory);
    if (options.dryRun) machine.journalDirectory = dryRunDirectory(machine.journalDirectory, notes);
    return machine;
}

// A dry run keeps no script: it would undo what was never done.
EngineSettings engineSettings(const LaunchOptions& options, const Machine& machine) {
    std::optional<fs::path> script;
    if (!options.dryRun) script = machine.journalDirectory / RestoreScript::fileName;
    return {machine.osVersion.text(), machine.osVersion.major, std::move(script)};
}

}  // namespace

Dependencies::Dependencies(const LaunchOptions& launchOptions, std::ostream& out, std::ostream& notes)
    : options(launchOptions),
      machine(machineOf(options, notes)),
      catalog(machine.home.string()),
      dryRunStore(options.dryRun ? std::make_unique<DryRunStore>(*machine.store, out) : nullptr),
      store(dryRunStore ? *dryRunStore : *machine.store),
      dryRunRunner(options.dryRun ? std::make_unique<DryRunCommandRunner>(*machine.runner, out) : nullptr),
      runner(dryRunRunner ? *dryRunRunner : *machine.runner),
      journal(Journal::open(machine.journalDirectory, systemNow,
                            options.dryRun ? JournalUse::dryRun : JournalUse::changes)),
      engine(store, *journal, catalog, engineSettings(options, machine)),
      toggle(runner, engine, machine.uid, machine.home / "Library" / "LaunchAgents"),
      titles(catalog, toggle.folder()),
      reader{runner, machine.home, machine.uid, machine.systemRoot},
      btmReader{runner, machine.isAdmin},
      spotlight{runner} {
    engine.setAgentRestorer(&toggle);
    if (options.quitAfterCapture) engine.setAfterCaptureHook(endAfterCapture(out));
}

Dependencies::~Dependencies() = default;

}  // namespace brell
