#include <gtest/gtest.h>

#include "CorvaneBrell/SampleMac/SamplePast.h"

#include <algorithm>
#include <map>
#include <set>

#include "BrellCore/Background/AgentToggle.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/PropertyList.h"
#include "CorvaneBrell/SampleMac/PreferenceMarks.h"
#include "Tests/Support/Testing.h"

namespace fs = std::filesystem;

namespace brell {
namespace {

using namespace brell::testing;
using namespace std::chrono_literals;

// Brell started on the Mac after its past.
struct Today {
    Today(const SampleMac& sample, const fs::path& directory, TimeStamp now)
        : catalog(sample.home().string()),
          store(sample.openPreferences()),
          tools(sample.openTools()),
          journal(Journal::open(directory)),
          engine(*store, *journal, catalog, {"26.1.0", 26, std::nullopt, [now] { return now; }}),
          toggle(*tools, engine, SampleMac::uid, sample.launchAgents()) {
        engine.setAgentRestorer(&toggle);
    }
    TweakState state(std::string_view id) { return engine.status(*catalog.tweak(id)).state; }

    TweakCatalog catalog;
    std::unique_ptr<PlistFileStore> store;
    std::unique_ptr<SimulatedTools> tools;
    std::unique_ptr<Journal> journal;
    TweakEngine engine;
    AgentToggle toggle;
};

std::map<std::string, PlistValue> preferenceFiles(const SampleMac& sample) {
    std::map<std::string, PlistValue> files;
    for (const std::string& name : namesIn(sample.preferences()))
        files.emplace(name, readPropertyList(contentsOf(sample.preferences() / name)));
    return files;
}

class SamplePastTest : public ::testing::Test {
protected:
    Today liveInAndOpen() {
        liveIn(mac, directory, now);
        return {mac, directory, now};
    }

    TemporaryFolder folder;
    SampleMac mac{folder.path / "mac"};
    fs::path directory = folder.path / "journal";
    TimeStamp now = parseIso8601("2026-11-21T09:30:00Z").value();
};

TEST_F(SamplePastTest, HasATweakInEveryState) {
    Today today = liveInAndOpen();
    std::set<std::size_t> states;
    std::set<TweakGroup> changedGroups;
    for (const Tweak& tweak : today.catalog.all()) {
        const TweakState state = today.engine.status(tweak).state;
        states.insert(state.index());
        if (activeEntryOf(state)) changedGroups.insert(tweak.group);
    }
    EXPECT_EQ(states.size(), std::variant_size_v<TweakState>);
    EXPECT_EQ(changedGroups.size(), 7u);

    EXPECT_EQ(today.state("kb.hold_to_repeat"), TweakState(PerHost{"ApplePressAndHoldEnabled"}));
    EXPECT_EQ(today.state("docs.save_to_disk"), TweakState(Managed{"NSDocumentSaveNewDocumentsToCloud"}));
    EXPECT_EQ(
        today.state("misc.no_timemachine_offer"),
        TweakState(Unsupported{"com.apple.TimeMachine DoNotOfferNewDisksForBackup holds a dictionary"}));
}

TEST_F(SamplePastTest, LeavesAJournalOfEveryKindOfChange) {
    Today today = liveInAndOpen();
    const auto entry = [&](std::string_view id) { return today.journal->activeEntry(id).value(); };

    EXPECT_EQ(entry("finder.folders_first").macOSVersion, "15.6.1");
    EXPECT_EQ(entry("mc.keep_space_order").macOSVersion, "26.1.0");
    EXPECT_TRUE(
        fs::is_directory(entry("shot.folder").writes.at(0).written.value->as<std::string>()->c_str()));
    EXPECT_EQ(today.engine.driftedEntries(), std::vector{entry("dock.autohide_instant")});
    EXPECT_EQ(today.engine.interruptedEntries(), std::vector{entry("finder.drives_on_desktop")});
    EXPECT_FALSE(today.toggle.currentState("us.zoom.updater").loaded.isLoaded());

    const auto history = today.journal->history();
    ASSERT_FALSE(history.empty());
    EXPECT_TRUE(std::is_sorted(history.begin(), history.end(),
                               [](const HistoryLine& a, const HistoryLine& b) { return a.at < b.at; }));
    EXPECT_EQ(history.front().at, entry("finder.folders_first").appliedAt);
    EXPECT_EQ(history.back().at, now - 1h);
    EXPECT_LT(history.front().at, now - std::chrono::weeks(4));
    EXPECT_EQ(contentsOf(directory / RestoreScript::fileName),
              RestoreScript::render(today.journal->active(), now - 1h));
}

TEST_F(SamplePastTest, RestoringEverythingBringsEachPreferenceFileBack) {
    auto expected = preferenceFiles(mac);
    Today today = liveInAndOpen();
    const auto lived = preferenceFiles(mac);
    EXPECT_NE(lived, expected);
    expected.insert(*lived.find("com.apple.TimeMachine.plist"));  // holds the dictionary, which is no change

    EXPECT_EQ(today.engine.recoverInterrupted().restored.size(), 1u);
    const Uuid drifted = today.engine.driftedEntries().at(0).id;
    const RestoreAllOutcome outcome = today.engine.restoreAll({drifted});
    EXPECT_EQ(outcome.restored.size(), 9u);
    EXPECT_EQ(outcome.skippedDrifted.size() + outcome.failed.size(), 0u);
    EXPECT_EQ(today.journal->active().size(), 0u);
    EXPECT_EQ(preferenceFiles(mac), expected);
    EXPECT_TRUE(today.toggle.currentState("us.zoom.updater").loaded.isLoaded());
}

TEST_F(SamplePastTest, LeavesAPastAndAJournalThatHoldsAnythingAlone) {
    liveIn(mac, directory, now);
    auto before = everythingIn(folder.path);
    liveIn(mac, directory, now + 24h);
    liveIn(SampleMac(mac.systemRoot()), folder.path / "another journal", now);
    EXPECT_EQ(everythingIn(folder.path), before);

    const SampleMac plain(folder.path / "plain");
    setContents(folder.path / "damaged" / "journal.json", "{");
    before = everythingIn(folder.path);
    liveIn(plain, directory, now);
    liveIn(plain, folder.path / "damaged", now);
    EXPECT_EQ(everythingIn(folder.path), before);
    EXPECT_EQ(readPreferenceMarks(plain.systemRoot()), std::nullopt);
}

TEST_F(SamplePastTest, MarksThatAreDamagedAreAnErrorThatNamesTheFile) {
    const PreferenceMarks marks{{{"com.apple.dock", "tilesize"}}, {{"NSGlobalDomain", "with space"}}};
    writePreferenceMarks(mac.systemRoot(), marks);
    EXPECT_EQ(readPreferenceMarks(mac.systemRoot()), marks);

    const fs::path file = mac.systemRoot() / "private/var/db/preference-marks.plist";
    std::string damaged = contentsOf(file);
    setContents(file, damaged.erase(damaged.find(" tilesize"), 9));
    EXPECT_NE(messageOf([&] { mac.openPreferences(); }).find(file.string()), std::string::npos);
}

}  // namespace
}  // namespace brell
