#include "CorvaneBrell/Model/SessionUndo.h"

#include <gtest/gtest.h>

#include "Tests/Support/Entries.h"

using namespace brell;
using namespace brell::testing;

namespace {

TEST(SessionUndoTest, TakesActionsBackInTurnAndFollowsWhatIsMadeAgain) {
    const Uuid a = Uuid::random(), b = Uuid::random(), c = Uuid::random(), again = Uuid::random();
    const SessionChange first{"first", {a, b}, {}}, second{"second", {c}, {a}};
    SessionUndo undo = SessionUndo().after({first, {}, {}}).after({second, {}, {}});
    EXPECT_EQ(undo.after({}), undo);
    EXPECT_EQ(*undo.next(), second);

    undo = undo.after({{}, second, {{a, again}}});
    ASSERT_EQ(undo.size(), 1u);
    EXPECT_EQ(*undo.next(), (SessionChange{"first", {again, b}, {}}));
    EXPECT_EQ(undo.after({{}, second, {}}), undo) << "undone once";
    undo = undo.after({{}, *undo.next(), {}});
    EXPECT_EQ(undo.next(), nullptr);
}

TEST(SessionUndoTest, ForgetsWhatWasUndoneInAnotherWayAndKeepsWhatALaterActionReplaced) {
    JournalEntry large = entryOf("dock.size", {}), small = entryOf("dock.size", {}),
                 hidden = entryOf("dock.autohide", {});
    large.status = EntryStatus::restored;
    const SessionUndo undo = SessionUndo()
                                 .after({SessionChange{"large", {large.id}, {}}, {}, {}})
                                 .after({SessionChange{"hidden", {hidden.id}, {}}, {}, {}})
                                 .after({SessionChange{"small", {small.id}, {large.id}}, {}, {}})
                                 .after({SessionChange{"off", {}, {hidden.id}}, {}, {}});
    EXPECT_EQ(undo.pruned({large, small, hidden}), undo);
    small.status = EntryStatus::restored;
    const SessionUndo left = undo.pruned({large, small, hidden});
    EXPECT_EQ(left.size(), 2u) << "small is gone, and with it what it had replaced";
    EXPECT_EQ(left.next()->name, "off");
    EXPECT_EQ(undo.pruned({}).size(), 2u) << "hidden can be made again";
}

}  // namespace
