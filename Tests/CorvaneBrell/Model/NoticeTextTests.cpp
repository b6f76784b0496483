#include "CorvaneBrell/Model/NoticeText.h"

#include <gtest/gtest.h>

#include "Tests/Support/Entries.h"

using namespace brell;
using namespace brell::testing;

namespace {

TEST(NoticeTextTest, InterruptedChangesAreToldOnceTheirRecoveryWasPutOff) {
    AppState state;
    state.recoveryDeferred = true;
    EXPECT_EQ(interruptedText(state), "");
    state.interrupted = {entryOf("dock.size", {})};
    EXPECT_EQ(interruptedText(state),
              "1 change was interrupted. Its original values are in the journal and can be put back.");
    state.interrupted.push_back(entryOf("dock.autohide", {}));
    EXPECT_EQ(interruptedText(state),
              "2 changes were interrupted. Their original values are in the journal and can be put back.");
    state.recoveryDeferred = false;
    EXPECT_EQ(interruptedText(state), "") << "a sheet asks about them";
}

TEST(NoticeTextTest, ActivitiesTellHowFarTheyAreAndRelaunchesWhatWaits) {
    EXPECT_EQ(activityText({"Restoring changes"}), "Restoring changes.");
    EXPECT_EQ(activityText({"Restoring changes", 3, 12}), "Restoring changes: 3 of 12.");

    const TweakCatalog catalog("/Users/sam");
    AppState state;
    EXPECT_EQ(relaunchText(state, catalog), "");
    for (const char* id : {"finder.show_hidden", "dock.size", "dock.autohide", "dock.of_the_future"})
        state.pendingRelaunches.emplace(id, PendingRelaunch{"absent", 1});
    EXPECT_EQ(relaunchText(state, catalog),
              "Relaunch the Dock to see what was changed: Hide the Dock automatically, Icon size.\n"
              "Relaunch Finder to see what was changed: Show hidden files.");
}

}  // namespace
