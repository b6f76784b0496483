#include <gtest/gtest.h>

#include "BrellCore/Engine/TweakEngine.h"

#include <algorithm>

#include "BrellCore/Support/Leftovers.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/SystemCalls.h"

using namespace brell;
using namespace brell::testing;
using namespace std::chrono_literals;

namespace {

const PrefKey inner{"com.apple.finder", "ShowHardDrivesOnDesktop"};
const PrefKey external{"com.apple.finder", "ShowExternalHardDrivesOnDesktop"};
const PrefKey removable{"com.apple.finder", "ShowRemovableMediaOnDesktop"};
const PrefKey showHidden{"com.apple.finder", "AppleShowAllFiles"};

class TweakEngineTest : public ::testing::Test, protected EngineFixture {
protected:
    TweakEngineTest() {
        files.write(false, external);
        files.write(true, removable);
        original = files.snapshot();
    }

    std::vector<EntryStatus> statuses() const {
        std::vector<EntryStatus> found;
        for (const JournalEntry& entry : journal.all()) found.push_back(entry.status);
        return found;
    }

    std::map<std::string, PlistFileStore::Values> original;
};

TEST_F(TweakEngineTest, AChangeIsJournaledWrittenVerifiedAndUndoneExactly) {
    std::vector<JournalEntry> captured;
    std::string scriptAtCapture;
    engine.setAfterCaptureHook([&](const JournalEntry& entry) {
        captured.push_back(entry);
        EXPECT_EQ(files.snapshot(), original);  // durable before the first write
        EXPECT_EQ(anotherRun().journal->all(), captured);
        scriptAtCapture = script();
    });
    const JournalEntry entry = engine.apply(tweak("finder.drives_on_desktop"));

    JournalEntry expected = entryOf("finder.drives_on_desktop",
                                    {{inner, {}, PrefValue(true)},
                                     {external, PrefValue(false), PrefValue(true)},
                                     {removable, PrefValue(true), PrefValue(true)}},
                                    now);
    expected.id = entry.id;
    EXPECT_EQ(entry, expected);
    EXPECT_EQ(journal.all(), std::vector<JournalEntry>{expected});
    expected.status = EntryStatus::capturing;
    EXPECT_EQ(captured, std::vector<JournalEntry>{expected});
    EXPECT_EQ(script(), scriptAtCapture);
    EXPECT_EQ(script(), engine.restoreScriptText());
    EXPECT_EQ(store.changes,
              (Texts{"write com.apple.finder ShowHardDrivesOnDesktop = true, synchronized",
                     "write com.apple.finder ShowExternalHardDrivesOnDesktop = true, synchronized",
                     "write com.apple.finder ShowRemovableMediaOnDesktop = true, synchronized"}));

    now += 1h;
    store.changes.clear();
    expected.status = EntryStatus::restored;
    expected.restoredAt = now;
    EXPECT_EQ(engine.restore(entry.id, false), expected);
    EXPECT_EQ(journal.all(), std::vector<JournalEntry>{expected});
    EXPECT_EQ(files.snapshot(), original);
    EXPECT_EQ(engineFailure([&] { engine.restore(entry.id, true); }), EngineFailure(NotActive{entry.id}));
    EXPECT_EQ(store.changes,
              (Texts{"remove com.apple.finder ShowHardDrivesOnDesktop, synchronized",
                     "write com.apple.finder ShowExternalHardDrivesOnDesktop = false, synchronized",
                     "write com.apple.finder ShowRemovableMediaOnDesktop = true, synchronized"}));
    EXPECT_EQ(script(), RestoreScript::render({}, now));
}

TEST_F(TweakEngineTest, AWriteThatDoesNotStickIsRolledBackNewestFirst) {
    store.goWrong(Fault::ignores, "write " + external.rendered());
    const EngineFailure reason = VerifyFailed{external, PrefValue(true), PrefValue(false)};
    EXPECT_EQ(engineFailure([&] { engine.apply(tweak("finder.drives_on_desktop")); }), reason);
    EXPECT_EQ(
        describe(reason),
        "After writing com.apple.finder ShowExternalHardDrivesOnDesktop, macOS reports false instead of "
        "true. The keys written so far were put back.");
    EXPECT_EQ(store.changes,
              (Texts{"write com.apple.finder ShowHardDrivesOnDesktop = true, synchronized",
                     "write com.apple.finder ShowExternalHardDrivesOnDesktop = true, synchronized",
                     "write com.apple.finder ShowExternalHardDrivesOnDesktop = false, synchronized",
                     "remove com.apple.finder ShowHardDrivesOnDesktop, synchronized"}));
    EXPECT_EQ(files.snapshot(), original);
    EXPECT_EQ(statuses(), std::vector{EntryStatus::failed});
    EXPECT_EQ(journal.all().at(0).failure, describe(reason));
    EXPECT_EQ(script(), RestoreScript::render({}, now));
}

// While the change is journaled.
TEST_F(TweakEngineTest, AValueThatAnotherProgramWritesJustNowIsNotOverwritten) {
    const Tweak& magnify = tweak("dock.magnify");
    engine.setAfterCaptureHook([&](const JournalEntry&) { files.write(64, largeSize); });
    EXPECT_EQ(
        messageOf([&] { engine.apply(magnify); }),
        "com.apple.dock largesize was changed by another program just now, to 64, and is left as it is.");
    EXPECT_EQ(statuses(), std::vector{EntryStatus::failed});
    EXPECT_EQ(files.exactValue(largeSize), StoredValue(64));
    EXPECT_TRUE(files.exactValue(magnification).isAbsent()) << "it is put back";
}

TEST_F(TweakEngineTest, WhatWasNotPutBackIsNotSaidToBe) {
    files.write(false, magnification);
    store.goWrong(Fault::ignores, "write com.apple.dock", 2);
    const std::string told = messageOf([&] { engine.apply(tweak("dock.magnify")); });
    EXPECT_EQ(told,
              "After writing com.apple.dock largesize, macOS reports absent instead of 80. After putting "
              "back com.apple.dock magnification, macOS reports true instead of false.");
    EXPECT_EQ(journal.all().at(0).failure, told);
    store.goWrong(Fault::refuses, "write " + external.rendered());  // which holds its original all the same
    engineFailure([&] { engine.apply(tweak("finder.drives_on_desktop")); });
    EXPECT_EQ(statuses(), (std::vector{EntryStatus::capturing, EntryStatus::failed}));
}

TEST_F(TweakEngineTest, AnOriginalThatDoesNotComeBackKeepsTheEntryActive) {
    files.write(41, tileSize);
    const JournalEntry entry = engine.apply(tweak("dock.size"));
    const std::string scriptBefore = script();
    store.goWrong(Fault::ignores, "write");
    const EngineFailure reason =
        StoreIo{"After putting back com.apple.dock tilesize, macOS reports 48 instead of 41."};
    EXPECT_EQ(engineFailure([&] { engine.restore(entry.id, false); }), reason);
    EXPECT_EQ(engine.restoreAll({}), (RestoreAllOutcome{{}, {}, {{entry.id, describe(reason)}}, {}}));
    EXPECT_EQ(journal.all(), std::vector{entry});
    EXPECT_EQ(script(), scriptBefore);
}

TEST_F(TweakEngineTest, AnUndoThatOneKeyHoldsUpGoesOnlyForwardAndIsFinishedWithoutAQuestion) {
    const Tweak& drives = tweak("finder.drives_on_desktop");
    const Uuid id = engine.apply(drives).id;
    const std::string stuck = "remove " + inner.rendered();
    store.goWrong(Fault::refuses, stuck);
    for (int attempt = 1; attempt <= 2; ++attempt)
        EXPECT_EQ(engine.restoreAll({}),
                  (RestoreAllOutcome{{}, {}, {{id, describe(FaultyStore::simulated(stuck))}}, {}}));
    EXPECT_EQ(engineFailure([&] { engine.turnOff(drives, false); }),
              EngineFailure(FaultyStore::simulated(stuck)));
    EXPECT_EQ(files.exactValue(external), StoredValue(false));
    EXPECT_EQ(engine.status(drives).state, TweakState(OnByBrell{id}));

    store.heal();
    EXPECT_EQ(engine.turnOff(drives, false).status, EntryStatus::restored);
    EXPECT_EQ(files.snapshot(), original);
}

TEST_F(TweakEngineTest, AKeyThatCannotBeReadIsNoChangeThatSomebodyMade) {
    const JournalEntry entry = engine.apply(tweak("dock.size"));
    const std::string call = "exactValue " + tileSize.rendered();
    store.goWrong(Fault::refuses, call);
    EXPECT_EQ(engineFailure([&] { engine.restore(entry.id, false); }),
              EngineFailure(FaultyStore::simulated(call)));
    EXPECT_EQ(engine.restoreAll({}).skippedDrifted, std::vector<Uuid>{});
    store.heal();
    files.write(99, tileSize);
    const auto drifted = everythingIn(folder.path);
    EXPECT_EQ(messageOf([&] { engine.turnOff(tweak("dock.size"), false); }),
              "Entry " + entry.id.text() +
                  " was changed outside Brell since it was applied; restoring needs confirmation.");
    EXPECT_EQ(everythingIn(folder.path), drifted);
    files.markUnsupported(tileSize);  // another program put a dictionary there
    EXPECT_EQ(engineFailure([&] { engine.restore(entry.id, false); }), EngineFailure(Drift{entry.id}));
    setContents(folder.path / "preferences" / "com.apple.dock.plist", "damaged");
    EXPECT_EQ(engine.driftedEntries(), std::vector{entry});
}

TEST_F(TweakEngineTest, ValuesSetBeforeUsAreResetWhenTurnedOffAndCanComeBack) {
    files.write(true, showHidden);
    const JournalEntry reset = engine.turnOff(tweak("finder.show_hidden"), false);
    EXPECT_EQ(reset.direction, EntryDirection::resetToDefault);
    EXPECT_EQ(reset.writes, (std::vector<JournaledWrite>{{showHidden, PrefValue(true), {}}}));
    EXPECT_TRUE(files.exactValue(showHidden).isAbsent());
    EXPECT_EQ(engine.turnOff(tweak("finder.show_hidden"), false).id, reset.id);
    EXPECT_EQ(files.exactValue(showHidden), StoredValue(true));
}

TEST_F(TweakEngineTest, RestoreAllGoesNewestFirstAndAsksAboutDrift) {
    const Uuid hidden = engine.apply(tweak("finder.show_hidden")).id;
    const Uuid size =
        engine.apply(tweak("dock.size"), std::vector<PrefValue>{36}, "small").id;  // same second
    now += 1s;
    const Uuid drives = engine.apply(tweak("finder.drives_on_desktop")).id;
    now += 1s;
    const Uuid broken = engine.apply(tweak("shot.jpg")).id;
    EXPECT_EQ(journal.entry(size)->choiceID, "small");
    files.write(50, tileSize);
    const std::string jpg = "remove com.apple.screencapture type";
    store.goWrong(Fault::refuses, jpg);

    ASSERT_EQ(engine.driftedEntries().size(), 1u);
    EXPECT_EQ(engine.driftedEntries()[0].id, size);
    EXPECT_EQ(engine.restoreAll({}), (RestoreAllOutcome{{drives, hidden},
                                                        {size},
                                                        {{broken, describe(FaultyStore::simulated(jpg))}},
                                                        {EffectClass::finderRelaunch}}));
    EXPECT_EQ(files.exactValue(tileSize), StoredValue(50));
    EXPECT_EQ(statuses(), (std::vector{EntryStatus::restored, EntryStatus::applied, EntryStatus::restored,
                                       EntryStatus::applied}));
    store.heal();
    EXPECT_EQ(
        engine.restoreAll({size}),
        (RestoreAllOutcome{{broken, size}, {}, {}, {tweak("shot.jpg").effect, EffectClass::dockRelaunch}}));
    EXPECT_EQ(files.snapshot(), original);
    EXPECT_EQ(engine.restoreAll({}), RestoreAllOutcome());
}

TEST_F(TweakEngineTest, ASuccessTakesAwayWhatKilledProcessesLeftLongAgo) {
    const auto leaveEach = [&] {
        std::vector<fs::path> left;
        for (const fs::path& target : {journal.fileURL(), journalDirectory / RestoreScript::fileName,
                                       folder.path / "preferences" / "com.apple.dock.plist"}) {
            setContents(left.emplace_back(temporaryFor(target)), "half");
            fs::last_write_time(left.back(), fs::file_time_type::clock::now() - 25h);
        }
        return left;
    };
    const auto there = [](const auto& all) {
        return std::count_if(all.begin(), all.end(), [](const fs::path& file) { return exists(file); });
    };
    auto leftovers = leaveEach();
    engineFailure([&] { engine.turnOff(tweak("dock.size"), false); });
    EXPECT_EQ(there(leftovers), 3);
    engine.apply(tweak("dock.size"));
    EXPECT_EQ(there(leftovers), 0);

    leftovers = leaveEach();
    now += 24h;  // it is not looked for more than once a day
    engine.turnOff(tweak("dock.size"), false);
    EXPECT_EQ(there(leftovers), 0);
}

class RememberingRestorer final : public AgentRestoring {
public:
    std::optional<std::string> restore(const AgentCapture& capture) override {
        if (!trouble.empty()) throw std::runtime_error(trouble);
        restored.push_back(capture);
        return "The file is gone.";
    }
    std::optional<std::string> otherState(const AgentCapture&) override { return state; }
    std::optional<std::string> whyNotRestored(const AgentCapture&) override { return std::nullopt; }
    std::string trouble;
    std::optional<std::string> state;
    std::vector<AgentCapture> restored;
};

TEST_F(TweakEngineTest, AgentChangesAreJournaledAndUndoneByTheRestorer) {
    const AgentCapture capture{"org.example.sync", "/Users/sam/Library/LaunchAgents/sync.plist", true,
                               AgentOverride::enabled};
    const std::function<AgentCapture()> failing = []() -> AgentCapture { throw std::runtime_error("busy"); };
    EXPECT_EQ(messageOf([&] { engine.beginAgentChange(capture.label, failing); }), "busy");
    EXPECT_EQ(journal.all(), std::vector<JournalEntry>{});
    AgentChange change = engine.beginAgentChange(capture.label, capture);
    const Uuid id = change.entry.id;
    JournalEntry expected = agentEntry(capture, now);
    expected.id = id;
    expected.status = EntryStatus::capturing;
    EXPECT_EQ(journal.all(), std::vector{expected});
    EXPECT_NE(script().find("launchctl enable"), std::string::npos);
    expected.status = EntryStatus::applied;
    EXPECT_EQ(engine.finishAgentChange(std::move(change), EntryStatus::applied, {}), expected);

    EXPECT_EQ(engineFailure([&] { engine.restore(id, false); }), EngineFailure(NoAgentRestorer{}));
    RememberingRestorer restorer;
    engine.setAgentRestorer(&restorer);
    restorer.trouble = "launchctl is out.";
    EXPECT_EQ(engine.restoreAll({}), (RestoreAllOutcome{{}, {}, {{id, "launchctl is out."}}, {}}));
    EXPECT_EQ(statuses(), std::vector{EntryStatus::applied});
    EXPECT_EQ(messageOf([&] { engine.keepTheirs(id); }),
              "org.example.sync was not changed outside Brell; there is nothing else to keep.");
    restorer.trouble.clear();
    EXPECT_EQ(engine.restoreAll({}), (RestoreAllOutcome{{id}, {}, {}, {}}));
    EXPECT_EQ(restorer.restored, std::vector{capture});
    EXPECT_EQ(journal.entry(id)->failure, "The file is gone.");

    // The output of launchctl need not be text; it is kept all the same.
    expected = engine.finishAgentChange(engine.beginAgentChange(capture.label, capture), EntryStatus::failed,
                                        "boot-out \xC3 failed");
    EXPECT_EQ(expected.failure, "boot-out \uFFFD failed");
    EXPECT_EQ(anotherRun().journal->entry(expected.id), expected);

    JournalEntry bare = agentEntry(capture, now);
    bare.agent = std::nullopt;
    journal.upsert(bare);
    EXPECT_EQ(engineFailure([&] { engine.restore(bare.id, false); }),
              EngineFailure(Refused{"Entry " + bare.id.text() + " has no agent capture."}));
}

TEST_F(TweakEngineTest, AnOutcomeThatCannotBeSavedIsToldAsItIs) {
    if (!systemCallsAreWatched()) GTEST_SKIP() << "system calls can't be failed here";
    const JournalFailure unsaved{JournalFailure::Kind::cannotWrite, "rename failed: Input/output error"};
    const auto failingSave = [&](int nth, const std::function<void()>& action) {
        const FailingCall failing(journal.fileURL(), SystemCall::rename, EIO, nth);
        const auto error = thrownBy<EngineError>(action);
        if (!error) return std::string();
        EXPECT_EQ(error->failure(), EngineFailure(unsaved));
        const std::string text = error->what(), reason = describeAlone(unsaved) + " ";
        EXPECT_TRUE(text.starts_with(reason)) << text;
        return text.substr(reason.size());
    };
    const Tweak& autohide = tweak("dock.autohide");
    EXPECT_EQ(failingSave(1, [&] { engine.apply(autohide); }), "Nothing was changed.");
    EXPECT_EQ(failingSave(2, [&] { engine.apply(autohide); }),
              "Hide the Dock automatically was changed all the same; it is listed as interrupted.");
    const Uuid id = journal.activeEntry(autohide.id)->id;
    EXPECT_EQ(failingSave(1, [&] { engine.restore(id, false); }),
              "Hide the Dock automatically was put back all the same; it is still listed as interrupted.");
    EXPECT_EQ(files.snapshot(), original);
    engine.recoverInterrupted();

    const Uuid applied = engine.apply(autohide).id;
    for (int attempt = 1; attempt <= 2; ++attempt) {
        EXPECT_EQ(failingSave(1, [&] { engine.turnOff(autohide, false); }),
                  "Hide the Dock automatically was put back all the same; it is still listed as active.");
        EXPECT_EQ(files.snapshot(), original);
        EXPECT_EQ(engine.status(autohide).state, TweakState(OnByBrell{applied}));
        EXPECT_EQ(engine.driftedEntries(), std::vector<JournalEntry>{});
    }
    EXPECT_EQ(engine.restoreAll({}).restored, std::vector{applied});

    RememberingRestorer restorer;
    engine.setAgentRestorer(&restorer);
    AgentChange change = engine.beginAgentChange(syncAgent.label, syncAgent);
    EXPECT_EQ(failingSave(1, [&] { engine.finishAgentChange(std::move(change), EntryStatus::applied, {}); }),
              "org.example.sync was changed all the same; it is listed as interrupted.");
    const Uuid agent = journal.activeEntry("agent:org.example.sync")->id;
    EXPECT_EQ(failingSave(1, [&] { engine.restore(agent, false); }),
              "org.example.sync was put back all the same; it is still listed as interrupted.");
}

}  // namespace
