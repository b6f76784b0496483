// A whole engine in a folder of its own: preference files, a store that can go wrong, a journal, the catalog.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "BrellCore/Engine/TweakEngine.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Preferences/PlistFileStore.h"
#include "Tests/Support/FaultyStore.h"
#include "Tests/Support/Testing.h"

namespace brell::testing {

inline const PrefKey tileSize{"com.apple.dock", "tilesize"};
inline const PrefKey magnification{"com.apple.dock", "magnification"},
    largeSize{"com.apple.dock", "largesize"};

// An agent of Sam's that is loaded.
inline const AgentCapture syncAgent{"org.example.sync", "/Users/sam/Library/LaunchAgents/sync.plist", true,
                                    AgentOverride::absent};

// One run of the program: its own journal object and its own engine over the files of the fixture.
struct EngineRun {
    EngineRun(PreferenceStore& store, const TweakCatalog& catalog, const std::filesystem::path& directory,
              const Clock& clock)
        : journal(Journal::open(directory, clock)),
          engine(store, *journal, catalog,
                 EngineSettings{"26.1.0", 26, directory / RestoreScript::fileName, clock}) {}

    std::unique_ptr<Journal> journal;
    TweakEngine engine;
};

// Leaves the entry of this change as a crash right before its first write would.
inline void breakOff(TweakEngine& engine, const Tweak& tweak) {
    struct Crash {};
    engine.setAfterCaptureHook([](const JournalEntry&) { throw Crash(); });
    try {
        engine.apply(tweak);
    } catch (const Crash&) {
    }
    engine.setAfterCaptureHook(nullptr);
}

struct EngineFixture {
    const Tweak& tweak(std::string_view id) const { return *catalog.tweak(id); }
    EngineRun anotherRun() { return {store, catalog, journalDirectory, clock}; }
    std::string script() const { return contentsOf(journalDirectory / RestoreScript::fileName); }

    JournalEntry interrupt(std::string_view id) {
        breakOff(engine, tweak(id));
        return journal.activeEntry(id).value();
    }

    JournalEntry switchAgent(const AgentCapture& capture = syncAgent) {
        return engine.finishAgentChange(engine.beginAgentChange(capture.label, capture), EntryStatus::applied,
                                        {});
    }

    TemporaryFolder folder;
    std::filesystem::path journalDirectory = folder.path / "journal";
    TimeStamp now = parseIso8601("2026-11-15T20:23:13Z").value();
    Clock clock = [this] { return now; };
    PlistFileStore files{folder.path / "preferences", TweakCatalog::allowedDomains()};
    FaultyStore store{files};
    TweakCatalog catalog{"/Users/sam"};
    EngineRun run{store, catalog, journalDirectory, clock};
    Journal& journal = *run.journal;
    TweakEngine& engine = run.engine;
};

// The record inside the EngineError that the action throws; nothing when it throws none.
template <class Action>
std::optional<EngineFailure> engineFailure(Action&& action) {
    return failureOf<EngineError>(std::forward<Action>(action));
}

}  // namespace brell::testing
