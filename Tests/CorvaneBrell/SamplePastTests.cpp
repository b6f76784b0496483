#include <gtest/gtest.h>

#include "CorvaneBrell/SampleMac/SamplePast.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/PropertyList.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/SampleMac/PreferenceMarks.h"
#include "Tests/Support/Testing.h"

namespace fs = std::filesystem;

namespace brell {
namespace {

using namespace brell::testing;
using namespace std::chrono_literals;

std::map<std::string, PlistValue> preferenceFiles(const SampleMac& sample) {
    std::map<std::string, PlistValue> files;
    for (const std::string& name : namesIn(sample.preferences()))
        files.emplace(name, readPropertyList(contentsOf(sample.preferences() / name)));
    return files;
}

class SamplePastTest : public ::testing::Test {
protected:
    // Brell started on the Mac after its past.
    Dependencies& liveInAndOpen() {
        makePast(mac, directory, now);
        LaunchOptions options;
        options.sampleMac = mac.systemRoot();
        options.journalDirectory = directory;
        return today.emplace(options, out);
    }

    TemporaryFolder folder;
    SampleMac mac{folder.path / "mac"};
    fs::path directory = folder.path / "journal";
    TimeStamp now = parseIso8601("2026-11-21T09:30:00Z").value();
    std::ostringstream out;
    std::optional<Dependencies> today;
};

TEST_F(SamplePastTest, HasATweakInEveryState) {
    Dependencies& brell = liveInAndOpen();
    std::set<std::size_t> states;
    std::set<TweakGroup> changedGroups;
    for (const Tweak& tweak : brell.catalog.all()) {
        const TweakState state = brell.engine.status(tweak).state;
        states.insert(state.index());
        if (activeEntryOf(state)) changedGroups.insert(tweak.group);
    }
    EXPECT_EQ(states.size(), std::variant_size_v<TweakState>);
    EXPECT_EQ(changedGroups.size(), 7u);

    const auto state = [&](std::string_view id) {
        return brell.engine.status(*brell.catalog.tweak(id)).state;
    };
    EXPECT_EQ(state("kb.hold_to_repeat"), TweakState(PerHost{"ApplePressAndHoldEnabled"}));
    EXPECT_EQ(state("docs.save_to_disk"), TweakState(Managed{"NSDocumentSaveNewDocumentsToCloud"}));
    EXPECT_EQ(
        state("misc.no_timemachine_offer"),
        TweakState(Unsupported{"com.apple.TimeMachine DoNotOfferNewDisksForBackup holds a dictionary"}));
}

TEST_F(SamplePastTest, RestoringEverythingBringsEachPreferenceFileBack) {
    auto expected = preferenceFiles(mac);
    Dependencies& brell = liveInAndOpen();
    const auto lived = preferenceFiles(mac);
    EXPECT_NE(lived, expected);
    expected.insert(*lived.find("com.apple.TimeMachine.plist"));  // holds the dictionary, which is no change

    EXPECT_EQ(contentsOf(directory / RestoreScript::fileName),
              RestoreScript::render(brell.journal->active(), now - 1h));
    EXPECT_EQ(brell.engine.recoverInterrupted().restored.size(), 1u);
    const Uuid drifted = brell.engine.driftedEntries().at(0).id;
    const RestoreAllOutcome outcome = brell.engine.restoreAll({drifted});
    EXPECT_EQ(outcome.restored.size(), 9u);
    EXPECT_EQ(outcome.skippedDrifted.size() + outcome.failed.size(), 0u);
    EXPECT_EQ(brell.journal->active().size(), 0u);
    EXPECT_EQ(preferenceFiles(mac), expected);
    EXPECT_TRUE(brell.toggle.currentState("us.zoom.updater").loaded.isLoaded());
}

TEST_F(SamplePastTest, LeavesAPastAndAJournalThatHoldsAnythingAlone) {
    makePast(mac, directory, now);
    auto before = everythingIn(folder.path);
    makePast(mac, directory, now + 24h);
    makePast(SampleMac(mac.systemRoot()), folder.path / "another journal", now);
    EXPECT_EQ(everythingIn(folder.path), before);

    const SampleMac plain(folder.path / "plain");
    setContents(folder.path / "damaged" / "journal.json", "{");
    before = everythingIn(folder.path);
    makePast(plain, directory, now);
    makePast(plain, folder.path / "damaged", now);
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
