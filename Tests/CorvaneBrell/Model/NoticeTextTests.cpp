#include "CorvaneBrell/Model/NoticeText.h"

#include <gtest/gtest.h>

#include "Tests/Support/Entries.h"

using namespace brell;
using namespace brell::testing;

namespace {

using Notices = std::vector<Notice>;

class NoticeTextTest : public ::testing::Test {
protected:
    Notices standing() const { return standingNotices(state, catalog, std::nullopt); }

    const TweakCatalog catalog{"/Users/sam"};
    AppState state;
};

TEST_F(NoticeTextTest, InterruptedChangesAreToldOnceTheirRecoveryWasPutOff) {
    state.recoveryDeferred = true;
    EXPECT_EQ(standing(), Notices{});
    state.interrupted = {entryOf("dock.size", {})};
    EXPECT_EQ(standing(), (Notices{{NoticeKind::interrupted,
                                    "1 change was interrupted; what was there before can be put back."}}));
    state.interrupted.push_back(entryOf("dock.autohide", {}));
    EXPECT_EQ(standing(), (Notices{{NoticeKind::interrupted,
                                    "2 changes were interrupted; what was there before can be put back."}}));
    state.recoveryDeferred = false;
    EXPECT_EQ(standing(), Notices{}) << "a sheet asks about them";
}

TEST_F(NoticeTextTest, AnUpdateOfMacOSIsToldWhereChangesNoLongerHoldOrAreNotConfirmed) {
    state.entries = {entryOf("dock.size", {}), entryOf("dock.autohide", {})};
    state.macOSUpdate = {{26, 1, 0}, {26, 2, 1}};
    EXPECT_EQ(standing(), Notices{}) << "every change holds";
    state.drifted = {{state.entries[0], {"now 64"}}};
    EXPECT_EQ(standing(),
              (Notices{{NoticeKind::macOSUpdate,
                        "macOS was updated from 26.1 to 26.2.1 since Brell last ran: 1 of 2 changes "
                        "no longer holds."}}));
    state.drifted.clear();
    state.macOSUpdate->to = {99, 0, 0};
    EXPECT_EQ(
        standing(),
        (Notices{{NoticeKind::macOSUpdate,
                  "macOS was updated from 26.1 to 99.0 since Brell last ran. The effect of 2 changes is not "
                  "confirmed on macOS 99 yet."}}));
    state.macOSUpdate.reset();
    EXPECT_EQ(standing(), Notices{});
}

TEST_F(NoticeTextTest, RelaunchesAreCountedAndWhatWentWrongStaysWithTheMostUrgentFirst) {
    state.pendingRelaunches = {{"dock.size", {"absent", 1}}, {"dock.of_the_future", {"absent", 1}}};
    EXPECT_EQ(relaunchText(state, catalog), "The Dock waits for a relaunch: 1 change");
    state.pendingRelaunches.emplace("finder.show_hidden", PendingRelaunch{"absent", 1});
    state.pendingRelaunches.emplace("dock.autohide", PendingRelaunch{"absent", 1});
    const Notice waiting{NoticeKind::relaunch, "2 apps wait for a relaunch: 3 changes"};

    state.undoProof = UndoProof{"1 of 1 key is exactly as before.", true};
    state.relaunchReport = RelaunchReport{"Finder did not quit.", false};
    const Notice report{NoticeKind::failedRelaunch, "Finder did not quit."};
    EXPECT_EQ(standing(), (Notices{report, waiting}));
    EXPECT_EQ(doneNotices(state), (Notices{{NoticeKind::done, state.undoProof->words}}));

    state.undoProof->isComplete = false;
    state.errorMessage = "It\nfailed.";
    state.journalError = "It is damaged.";
    EXPECT_EQ(standing(), (Notices{{NoticeKind::journal, "It is damaged."},
                                   {NoticeKind::error, "It failed."},
                                   {NoticeKind::incompleteUndo, state.undoProof->words},
                                   report,
                                   waiting}));
    EXPECT_EQ(doneNotices(state), Notices{});

    state.relaunchActivity = Activity{"Saving a\n\u202Eb"};
    state.fileActivity = Activity{"Restoring changes", 3, 12};
    EXPECT_EQ(standing().back(), report) << "the relaunch is under way";
    EXPECT_EQ(activityText(*activityOf(state)), "Saving a  b…");
    EXPECT_EQ(activityText(*state.fileActivity), "Restoring changes: 3 of 12");
}

}  // namespace
