#include "Trust/Worker.h"

#include <fcntl.h>

#include <array>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>

#include "BrellCore/Catalog/Presets.h"
#include "BrellCore/Engine/Report.h"
#include "BrellCore/Support/Text.h"
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

// Tells what happens where others are at work, too: they were first, or take too long. A killed program may
// have undone half a change.
bool isOfOthers(const EngineFailure& failure) {
    if (const auto* journal = std::get_if<JournalFailure>(&failure)) return isBusy(describe(*journal));
    return std::holds_alternative<Refused>(failure) || std::holds_alternative<NotActive>(failure) ||
           std::holds_alternative<Drift>(failure);
}

bool isOfOthers(const AgentToggleFailure& failure) {
    if (failure.problem != AgentToggleProblem::engine) return failure.problem == AgentToggleProblem::refused;
    return isBusy(failure.text) ||
           failure.text.find("could not be") == std::string::npos;  // not what is said of a file
}

struct Worker {
    Rig& rig;
    Diary& diary;
    std::mt19937_64 random;
    std::string_view deed = {};               // under way
    std::map<Uuid, EntryStatus> toldOf = {};  // of the entries that this worker was told of
    std::size_t linesSeen = 0;                // of the history

    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random() % limit); }
    bool coin() { return below(2) == 0; }
    template <class Choices>
    const auto& anyOf(const Choices& choices) {
        return choices[below(choices.size())];
    }
    const Tweak& anyTweak() { return rig.tweak(anyOf(contestedTweaks)); }

    void told(const Uuid& id, EntryStatus status) {
        diary.told(id, status);
        toldOf[id] = status;
    }
    void told(const JournalEntry& entry) { told(entry.id, entry.status); }

    void fault(const std::string& text) { diary.fault(std::string(deed) + ": " + text); }

    void refused(const std::string& sentence, bool mayHappen) {
        if (!mayHappen) fault(sentence);
        if (!isWhole(sentence)) fault("no whole sentence: " + sentence);
    }
    void refused(const EngineError& error) {
        if (const auto* drift = std::get_if<Drift>(&error.failure())) diary.foundDrifted(drift->entry);
        refused(error.what(), isOfOthers(error.failure()));
    }

    void report(const RestoreAllOutcome& outcome) {
        for (const Uuid& id : outcome.restored) told(id, EntryStatus::restored);
        for (const auto& [id, reason] : outcome.failed) refused(reason, isBusy(reason));
    }

    void restoreOne() {
        const std::vector<JournalEntry> active = rig.journal.active();
        if (!active.empty()) told(rig.engine.restore(anyOf(active).id, coin()));
    }

    void restoreAll() {
        std::set<Uuid> confirmed;
        for (const JournalEntry& entry : rig.engine.driftedEntries()) confirmed.insert(entry.id);
        report(rig.engine.restoreAll(confirmed));
    }

    void switchAgent() {
        const LaunchAgentRecord& agent = rig.agent(anyOf(contestedAgents));
        told(coin() ? rig.toggle.turnOff(agent) : rig.toggle.turnOn(agent));
    }

    void applyPreset() {
        for (const std::string& id : Presets::validate(anyOf(Presets::shipped()), rig.catalog).valid) {
            try {
                told(rig.engine.apply(rig.tweak(id)));
            } catch (const EngineError& error) {
                refused(error);
            }
        }
    }

    void readStatus() {
        for (const Tweak& tweak : rig.catalog.all()) rig.engine.status(tweak);
    }

    void readReport() {
        const std::string report =
            Report::markdown(rig.journal, rig.catalog, "26.1", systemNow(), rig.engine.driftedEntries());
        if (report.find("\n## History\n") == std::string::npos) fault("half a report");
    }

    // As a program that starts now, and as one that has been running.
    void readJournal() {
        const std::vector<JournalEntry> entries =
            coin() ? Journal::open(rig.journalDirectory)->all() : rig.journal.all();
        std::map<Uuid, EntryStatus> found;
        std::set<std::string> active;
        for (const JournalEntry& entry : entries) {
            if (!found.emplace(entry.id, entry.status).second) fault("twice: the entry " + entry.id.text());
            if (entry.isActive() && !active.insert(entry.tweakID).second)
                fault(entry.tweakID + " is active twice");
        }
        for (const auto& [id, status] : toldOf) {
            const auto entry = found.find(id);
            if (entry == found.end())
                fault("lost: the entry " + id.text());
            else if (entry->second != status && entry->second != EntryStatus::restored)
                fault("the entry " + id.text() + " went back to " + std::string(rawValue(entry->second)));
        }
    }

    void readHistory() {
        const std::size_t lines = rig.journal.history().size();
        if (lines < linesSeen) fault("the history became shorter");
        linesSeen = lines;
    }

    void writeScript() {
        rig.engine.rewriteRestoreScript();
        const fs::path file = rig.journalDirectory / RestoreScript::fileName;
        if (!fs::exists(file)) return;  // others were busy so far
        const std::string script = testing::contentsOf(file);
        if (!script.starts_with("#!/bin/sh\n") || !script.ends_with("take effect.'\n"))
            fault("half a restore script");
    }
};

struct Deed {
    std::string_view name;
    double weight;
    void (*perform)(Worker&);
};
constexpr std::array deeds{
    Deed{"apply", 12, [](Worker& worker) { worker.told(worker.rig.engine.apply(worker.anyTweak())); }},
    Deed{"turn off", 10,
         [](Worker& worker) { worker.told(worker.rig.engine.turnOff(worker.anyTweak(), worker.coin())); }},
    Deed{"restore one", 6, [](Worker& worker) { worker.restoreOne(); }},
    Deed{"restore all", 1, [](Worker& worker) { worker.restoreAll(); }},
    Deed{"recover", 2, [](Worker& worker) { worker.report(worker.rig.engine.recoverInterrupted()); }},
    Deed{"switch an agent", 6, [](Worker& worker) { worker.switchAgent(); }},
    Deed{"apply a preset", 1, [](Worker& worker) { worker.applyPreset(); }},
    Deed{"read the status", 4, [](Worker& worker) { worker.readStatus(); }},
    Deed{"make the report", 1, [](Worker& worker) { worker.readReport(); }},
    Deed{"read the journal", 6, [](Worker& worker) { worker.readJournal(); }},
    Deed{"read the history", 1, [](Worker& worker) { worker.readHistory(); }},
    Deed{"write the restore script", 2, [](Worker& worker) { worker.writeScript(); }},
};

void perform(const Deed& deed, Worker& worker) {
    worker.deed = deed.name;
    try {
        deed.perform(worker);
        worker.diary.did(deed.name);
    } catch (const EngineError& error) {
        worker.refused(error);
    } catch (const AgentToggleError& error) {
        worker.refused(error.what(), isOfOthers(error.failure()));
    } catch (const JournalError& error) {
        worker.refused(error.what(), isBusy(error.what()));
    } catch (const std::exception& error) {
        worker.fault(std::string("an error of a foreign type: ") + error.what());
    }
}

void add(Diaries& diaries, const std::string& what, const std::string& text) {
    if (what == "did")
        ++diaries.done;
    else if (what == "drifted")
        diaries.drifted.insert(Uuid::parse(text).value());
    else if (what == "fault")
        diaries.faults.push_back(text);
    else
        diaries.told.emplace_back(Uuid::parse(what).value(), fromRawValue<EntryStatus>(text).value());
}

}  // namespace

Diary::Diary(const fs::path& file)
    : file_(::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600)) {
    if (!file_) throw std::runtime_error("no diary " + file.string());
}

void Diary::note(std::string_view what, std::string_view text) {
    // One call, so that lines of several threads never mix.
    const std::string line = std::string(what) + " " + oneLine(text) + "\n";
    if (::write(file_.get(), line.data(), line.size()) != static_cast<ssize_t>(line.size())) ::_exit(3);
}

Diaries readDiaries(const fs::path& folder) {
    Diaries diaries;
    for (const std::string& name : testing::namesIn(folder)) {
        std::istringstream lines(testing::contentsOf(folder / name));
        // A line without its end is one that its writer was killed over.
        for (std::string what, text; lines >> what && std::getline(lines.ignore(), text) && !lines.eof();)
            add(diaries, what, text);
    }
    return diaries;
}

void workUntil(std::chrono::steady_clock::time_point end, Rig& rig, Diary& diary, std::uint64_t seed) {
    Worker worker{rig, diary, std::mt19937_64(seed)};
    std::vector<double> weights;
    for (const Deed& deed : deeds) weights.push_back(deed.weight);
    std::discrete_distribution<std::size_t> choice(weights.begin(), weights.end());
    while (std::chrono::steady_clock::now() < end) perform(deeds.at(choice(worker.random)), worker);
}

}  // namespace brell::trust
