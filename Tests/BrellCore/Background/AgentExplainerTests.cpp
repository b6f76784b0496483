#include "BrellCore/Background/AgentExplainer.h"

#include <gtest/gtest.h>

namespace brell {
namespace {

using AgentExplainer::explain;

TEST(AgentExplainer, KnowsItemsByLabelOrTeamInTheTablesOrder) {
    const std::string google = "EQHXZ8M8AV";
    const AgentExplanation updater{
        "Google apps (Chrome, Drive)", "Checks for and installs updates of Google apps (Chrome, Drive).",
        "Keeps Google apps (Chrome, Drive) up to date; turning it off stops security fixes.", Risk::medium,
        true};
    EXPECT_EQ(explain("com.google.keystone.agent", {}, {}), updater);
    EXPECT_EQ(explain("com.example.unknown", google, "/bin/x"), updater);
    EXPECT_EQ(explain("com.spotify.client.startuphelper", google, {}), updater);
    EXPECT_EQ(explain("com.dropbox.agent", {}, {}).app, "Dropbox");
    EXPECT_EQ(
        explain("com.eset.x", {}, {}),
        (AgentExplanation{"Security software", "Part of a security product.",
                          "Protection may stop; turning it off weakens security.", Risk::medium, true}));
}

TEST(AgentExplainer, FlagsWhatKeepsSoftwareUpToDateOrProtectsTheMac) {
    const auto& rules = AgentExplainer::rules();
    ASSERT_EQ(rules.size(), 17u);
    for (std::size_t i = 0; i < rules.size(); ++i)
        EXPECT_EQ(rules[i].explanation.isUpdater, i < 6 || i == 15) << rules[i].explanation.app;
}

TEST(AgentExplainer, NamesTheProgramOfWhatItDoesNotKnow) {
    const auto app = [](const char* label, const char* executable) {
        const AgentExplanation explanation = explain(label, "UNKNOWN", executable);
        EXPECT_EQ(explanation.what, "Runs " + explanation.app + ".");
        return explanation.app;
    };
    EXPECT_EQ(app("com.dropboxer.x", "/Applications/Foo.app/Contents/Bar.app/MacOS/foo"), "Foo");
    EXPECT_EQ(app("COM.GOOGLE.KEYSTONE", "/usr/local/bin/bar"), "bar");
    EXPECT_EQ(app("x", "bar/"), "bar");
    for (const char* nameless : {"", "/", "/.app/x"}) EXPECT_EQ(app("x", nameless), "Unknown") << nameless;
    EXPECT_EQ(
        explain("x", {}, {}),
        (AgentExplanation{"x", "A background item with no program listed.",
                          "Nothing else depends on it as far as Brell can tell; the program above no longer "
                          "runs at login.",
                          Risk::low, false}));
}

}  // namespace
}  // namespace brell
