#include "Trust/Worker.h"

#include <array>
#include <numeric>

#include "BrellCore/Catalog/Presets.h"
#include "BrellCore/Engine/Report.h"
#include "Trust/Recovery.h"

namespace brell::trust {

namespace {

// Few, so that everybody wants the same ones; one that only a confirmation turns off among them.
constexpr std::array contestedTweaks{"dock.magnify",    "dock.size",          "dock.autohide_instant",
                                     "finder.path_bar", "finder.show_hidden", "finder.drives_on_desktop"};
constexpr std::array contestedAgents{"homebrew.mxcl.redis", "com.pebblewick.indexer",
                                     "com.spotify.client.startuphelper"};

bool isBusy(const std::string& sentence) {
    return sentence.find("another Brell has been busy with it") != std::string::npos;
}

// Whether it is what happens where others are at work, too: they were first, or take too long. A killed
// program may have undone half a change.
bool isOfOthers(const EngineFailure& failure) {
    if (const auto* journal = std::get_if<JournalFailure>(&failure)) return isBusy(describe(*journal));
    return std::holds_alternative<Refused>(failure) || std::holds_alternative<NotActive>(failure) ||
           std::holds_alternative<Drift>(failure);
}

bool isOfOthers(const AgentToggleFailure& failure) {
    switch (failure.problem) {
        case AgentToggleProblem::refused: return true;
        case AgentToggleProblem::engine:  // not what is said of a file
            return isBusy(failure.text) || failure.text.find("could not be") == std::string::npos;
        case AgentToggleProblem::command:
        case AgentToggleProblem::verifyFailed: break;
    }
    return false;
}

}  // namespace

struct Worker::Deed {
    std::string_view name;
    std::size_t weight;
    void (Worker::*perform)();
};

const std::vector<Worker::Deed>& Worker::deeds() {
    static const std::vector<Deed> all{
        {"apply", 12, &Worker::apply},
        {"turn off", 10, &Worker::turnOff},
        {"restore one", 6, &Worker::restoreOne},
        {"restore all", 1, &Worker::restoreAll},
        {"recover", 2, &Worker::recover},
        {"switch an agent", 6, &Worker::switchAgent},
        {"apply a preset", 1, &Worker::applyPreset},
        {"read the status", 4, &Worker::readStatus},
        {"make the report", 1, &Worker::readReport},
        {"read the journal", 6, &Worker::readJournal},
        {"read the history", 1, &Worker::readHistory},
        {"write the restore script", 2, &Worker::writeScript},
    };
    return all;
}

const Worker::Deed& Worker::chooseDeed() {
    const std::size_t all =
        std::accumulate(deeds().begin(), deeds().end(), std::size_t{0},
                        [](std::size_t sum, const Deed& deed) { return sum + deed.weight; });
    std::size_t left = below(all);
    for (const Deed& deed : deeds()) {
        if (left < deed.weight) return deed;
        left -= deed.weight;
    }
    return deeds().front();
}

void Worker::workUntil(std::chrono::steady_clock::time_point end) {
    while (std::chrono::steady_clock::now() < end) perform(chooseDeed());
}

void Worker::perform(const Deed& deed) {
    deed_ = deed.name;
    try {
        (this->*deed.perform)();
        diary_.did(deed_);
    } catch (const EngineError& error) {
        if (const auto* drift = std::get_if<Drift>(&error.failure())) diary_.foundDrifted(drift->entry);
        refused(error.what(), isOfOthers(error.failure()));
    } catch (const AgentToggleError& error) {
        refused(error.what(), isOfOthers(error.failure()));
    } catch (const JournalError& error) {
        refused(error.what(), isBusy(error.what()));
    } catch (const std::exception& error) {
        diary_.fault(std::string(deed_) + ": an error of a foreign type: " + error.what());
    }
}

void Worker::refused(const std::string& sentence, bool mayHappen) {
    diary_.refused(deed_);
    if (!mayHappen) diary_.fault(std::string(deed_) + ": " + sentence);
    if (!isWhole(sentence)) diary_.fault(std::string(deed_) + ": no whole sentence: " + sentence);
}

const Tweak& Worker::anyTweak() {
    return rig_.tweak(contestedTweaks.at(below(contestedTweaks.size())));
}

void Worker::keepInMind(const JournalEntry& entry) {
    diary_.told(entry);
    told_[entry.id] = entry.status;
}

void Worker::apply() {
    keepInMind(rig_.engine.apply(anyTweak()));
}

void Worker::turnOff() {
    keepInMind(rig_.engine.turnOff(anyTweak(), coin()));
}

void Worker::restoreOne() {
    const std::vector<JournalEntry> active = rig_.journal.active();
    if (!active.empty()) keepInMind(rig_.engine.restore(active[below(active.size())].id, coin()));
}

void Worker::report(const RestoreAllOutcome& outcome) {
    for (const Uuid& id : outcome.restored) {
        diary_.told(id, EntryStatus::restored);
        told_[id] = EntryStatus::restored;
    }
    for (const auto& [id, reason] : outcome.failed) refused(reason, isBusy(reason));
}

void Worker::restoreAll() {
    std::set<Uuid> confirmed;
    for (const JournalEntry& entry : rig_.engine.driftedEntries()) confirmed.insert(entry.id);
    report(rig_.engine.restoreAll(confirmed));
}

void Worker::recover() {
    report(rig_.engine.recoverInterrupted());
}

void Worker::switchAgent() {
    const LaunchAgentRecord& agent = rig_.agent(contestedAgents.at(below(contestedAgents.size())));
    keepInMind(coin() ? rig_.toggle.turnOff(agent) : rig_.toggle.turnOn(agent));
}

void Worker::applyPreset() {
    const Preset& preset = Presets::shipped()[below(Presets::shipped().size())];
    for (const std::string& id : Presets::validate(preset, rig_.catalog).valid) {
        try {
            keepInMind(rig_.engine.apply(rig_.tweak(id)));
        } catch (const EngineError& error) {
            refused(error.what(), isOfOthers(error.failure()));
        }
    }
}

void Worker::readStatus() {
    for (const Tweak& tweak : rig_.catalog.all()) rig_.engine.status(tweak);
}

void Worker::readReport() {
    const std::string report =
        Report::markdown(rig_.journal, rig_.catalog, "26.1", systemNow(), rig_.engine.driftedEntries());
    if (report.find("\n## History\n") == std::string::npos) diary_.fault("half a report");
}

// As a program that starts now, and as one that has been running.
void Worker::readJournal() {
    const std::vector<JournalEntry> entries =
        coin() ? Journal::open(rig_.journalDirectory)->all() : rig_.journal.all();
    std::map<Uuid, EntryStatus> found;
    std::set<std::string> active;
    for (const JournalEntry& entry : entries) {
        if (!found.emplace(entry.id, entry.status).second)
            diary_.fault("the entry " + entry.id.text() + " stands twice");
        if (entry.isActive() && !active.insert(entry.tweakID).second)
            diary_.fault(entry.tweakID + " is active twice");
    }
    for (const auto& [id, status] : told_) {
        const auto entry = found.find(id);
        if (entry == found.end())
            diary_.fault("the entry " + id.text() + " is lost");
        else if (entry->second != status && entry->second != EntryStatus::restored)
            diary_.fault("the entry " + id.text() + " went back to " + std::string(rawValue(entry->second)));
    }
}

void Worker::readHistory() {
    const std::size_t lines = rig_.journal.history().size();
    if (lines < linesSeen_) diary_.fault("the history became shorter");
    linesSeen_ = lines;
}

void Worker::writeScript() {
    rig_.engine.rewriteRestoreScript();
    const std::filesystem::path file = rig_.journalDirectory / RestoreScript::fileName;
    if (!std::filesystem::exists(file)) return;  // others were busy so far
    const std::string script = testing::contentsOf(file);
    if (!script.starts_with("#!/bin/sh\n") || !script.ends_with("take effect.'\n"))
        diary_.fault("half a restore script");
}

}  // namespace brell::trust
