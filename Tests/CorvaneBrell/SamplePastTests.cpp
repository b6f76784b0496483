#include "CorvaneBrell/SampleMac/SamplePast.h"

#include <sstream>

#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/PropertyList.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/SampleMac/PreferenceMarks.h"
#include "Tests/CorvaneBrell/SampleMacFixture.h"

namespace brell {
namespace {

using namespace brell::testing;
using namespace std::chrono_literals;

class SamplePastTest : public SampleMacTest {
protected:
    std::map<std::string, PlistValue> preferenceFiles() const {
        std::map<std::string, PlistValue> files;
        for (const std::string& name : namesIn(sample.preferences()))
            files.emplace(name, readPropertyList(contentsOf(sample.preferences() / name)));
        return files;
    }

    const fs::path directory = Journal::defaultDirectory(sample.home());
    const TimeStamp now = parseIso8601("2026-11-21T09:30:00Z").value();
};

TEST_F(SamplePastTest, RestoringEverythingBringsEachPreferenceFileBack) {
    auto expected = preferenceFiles();
    makePast(sample, directory, now);
    std::ostringstream out;
    Dependencies brell(options, out);
    const auto lived = preferenceFiles();
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
    EXPECT_EQ(preferenceFiles(), expected);
    EXPECT_TRUE(brell.toggle.currentState("us.zoom.updater").loaded.isLoaded());
}

TEST_F(SamplePastTest, LeavesAPastAndAJournalThatHoldsAnythingAlone) {
    makePast(sample, directory, now);
    auto before = everythingIn(folder.path);
    makePast(sample, directory, now + 24h);
    makePast(SampleMac(sample.systemRoot()), folder.path / "another journal", now);
    EXPECT_EQ(everythingIn(folder.path), before);

    const SampleMac plain(folder.path / "plain");
    setContents(folder.path / "damaged" / "journal.json", "{");
    before = everythingIn(folder.path);
    makePast(plain, directory, now);
    makePast(plain, folder.path / "damaged", now);
    EXPECT_EQ(everythingIn(folder.path), before);
    EXPECT_EQ(readPreferenceMarks(plain.systemRoot()), std::nullopt);
}

}  // namespace
}  // namespace brell
