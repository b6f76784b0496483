#include "CorvaneBrell/Model/NoticeText.h"

#include <gtest/gtest.h>

#include "Tests/Support/Entries.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace {

class NoticeTextTest : public ::testing::Test {
protected:
    // Notes the notices that are there now, below what makes them so.
    void tell(const std::string& when, const std::optional<std::string>& whyNothingReal = std::nullopt) {
        said += when + ":\n";
        for (const Notice& notice : standingNotices(state, catalog, whyNothingReal))
            said += "  " + std::to_string(static_cast<int>(notice.kind)) + " " + notice.words + "\n";
        for (const Notice& notice : doneNotices(state)) said += "  done: " + notice.words + "\n";
        if (const auto activity = activityOf(state)) said += "  " + activityText(*activity) + "\n";
        for (const std::string& news : newsToStayFor(state)) said += "  stays open for: " + news + "\n";
    }

    const TweakCatalog catalog{"/Users/sam"};
    AppState state;
    std::string said;
};

TEST_F(NoticeTextTest, InterruptedChangesAndAnUpdateOfMacOSAreToldWhereTheyConcernTheUser) {
    state.recoveryDeferred = true;
    tell("nothing is interrupted");
    state.interrupted = {entryOf("dock.size", {})};
    tell("one is, and the recovery was put off");
    state.interrupted.push_back(entryOf("dock.autohide", {}));
    tell("two are");
    state.recoveryDeferred = false;
    tell("a sheet asks about them");

    state.entries = {entryOf("dock.size", {}), entryOf("dock.autohide", {})};
    state.macOSUpdate = {{26, 1, 0}, {26, 2, 1}};
    tell("macOS was updated and every change holds");
    state.drifted = {{state.entries[0], {"now 64"}}};
    tell("one of them no longer does");
    state.drifted.clear();
    state.macOSUpdate->to = {99, 0, 0};
    tell("the new one is not known");
    EXPECT_EQ(said, sample("Words/notices-of-changes.txt"));
}

TEST_F(NoticeTextTest, RelaunchesAreCountedAndWhatWentWrongStaysWithTheMostUrgentFirst) {
    state.pendingRelaunches = {{"dock.size", {"absent", 1}}, {"dock.of_the_future", {"absent", 1}}};
    tell("a relaunch waits");
    state.pendingRelaunches.emplace("finder.show_hidden", PendingRelaunch{"absent", 1});
    state.pendingRelaunches.emplace("dock.autohide", PendingRelaunch{"absent", 1});
    state.undoProof = UndoProof{"1 of 1 key is exactly as before.", true};
    state.relaunchReport = RelaunchReport{"Finder did not quit.", false};
    state.presetReport = {"1 change was made."};
    tell("another app waits, too");
    state.undoProof->isComplete = false;
    state.errorMessage = "It\nfailed.";
    state.scriptNews = "It is kept.";
    state.journalError = "It is damaged.";
    state.recoveryFailures = {"Not put back.", "Nor this."};
    state.safetyWarnings = {"It is locked."};
    tell("everything went wrong", "This is a dry run.");
    state.driftRequest.emplace();
    state.presetReport.push_back("No room.");
    state.rebuildReport.emplace().lines = {"Rebuilt."};
    state.leavingReport.emplace().lines = {"All gone."};
    state.relaunchActivity = Activity{"Saving a\n\u202Eb"};
    state.fileActivity = Activity{"Restoring changes", 3, 12};
    tell("the relaunch is under way");
    state.relaunchActivity.reset();
    tell("it has ended");
    EXPECT_EQ(said, sample("Words/notices-of-actions.txt"));
}

}  // namespace
