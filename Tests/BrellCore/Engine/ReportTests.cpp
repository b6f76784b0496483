#include <gtest/gtest.h>

#include "BrellCore/Engine/Report.h"

#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Entries.h"

using namespace brell;
using namespace brell::testing;
using namespace std::chrono_literals;

namespace {

class ReportTest : public ::testing::Test, protected EngineFixture {
protected:
    // The history's lines take the journal's own clock, which is that of the fixture.
    std::string report() {
        return Report::markdown(journal, catalog, "26.1.0", now, engine.driftedEntries());
    }
};

TEST_F(ReportTest, SaysThatNothingIsChanged) {
    EXPECT_EQ(report(), sample("Report/nothing.md"));
}

TEST_F(ReportTest, ValuesReadAsTheyAreAndNothingInThemIsMarkup) {
    const std::vector<Texts> rows = sampleRows("Report/cells.txt");  // a text, and the cell that shows it
    for (const Texts& row : rows) journal.upsert(entryOf(row[0], {}));
    const std::string whole = report();
    for (const Texts& row : rows)
        EXPECT_NE(whole.find("\n| " + row[1] + " | - | - | - | "), std::string::npos) << row[0];
}

TEST_F(ReportTest, TellsEverythingThatHappened) {
    files.write("a|b\nc", {"com.apple.finder", "NewWindowTarget"});
    engine.apply(tweak("finder.new_window_home"));
    now += 1min;
    files.write(0.24, {"com.apple.dock", "autohide-delay"});
    engine.apply(tweak("dock.autohide_instant"));
    now += 1min;
    engine.restore(journal.activeEntry("dock.autohide_instant")->id, false);
    now += 1min;
    engine.apply(tweak("dock.size"));
    files.write(99, {"com.apple.dock", "tilesize"});
    now += 1min;
    switchAgent();
    switchAgent({"org.example.pipe|work", "/x.plist", false, AgentOverride::disabled});
    now += 1min;
    store.goWrong(Fault::ignores, "write");
    engineFailure([&] { engine.apply(tweak("shot.jpg")); });
    now += 1min;
    interrupt("finder.path_bar");

    EXPECT_EQ(report(), sample("Report/everything.md"));
}

}  // namespace
