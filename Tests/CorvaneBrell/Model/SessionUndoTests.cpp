#include "CorvaneBrell/Model/SessionUndo.h"

#include <gtest/gtest.h>

using namespace brell;

namespace {

// Which need not be the last one: others may be made while its sheet is open.
TEST(SessionUndoTest, AnActionThatWasUndoneIsTakenOutWhereItStands) {
    const SessionChange first{"first", {Uuid::random()}, {}}, second{"second", {Uuid::random()}, {}};
    const SessionUndo both = SessionUndo().after({first, {}, {}}).after({second, {}, {}});
    const SessionUndo left = both.after({{}, first, {}});
    EXPECT_EQ(left, SessionUndo().after({second, {}, {}}));
    EXPECT_EQ(left.after({{}, first, {}}), left) << "once";
}

}  // namespace
