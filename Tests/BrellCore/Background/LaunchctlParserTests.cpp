#include "BrellCore/Background/LaunchctlParser.h"
#include "Tests/Support/Testing.h"

#include <gtest/gtest.h>

namespace brell {
namespace {

using Overrides = AgentOverrides;
using testing::sample;

LoadedState loaded(std::string state, std::optional<std::int64_t> runs,
                   std::optional<std::int64_t> lastExitCode, std::optional<std::int64_t> pid) {
    return {LoadedState::Kind::loaded, std::move(state), runs, lastExitCode, pid};
}

LoadedState parsed(std::string standardOutput) {
    return LaunchctlParser::parsePrint({0, std::move(standardOutput), ""});
}

TEST(ParsePrintDisabled, TakesTheOverridesOutOfAllThatIsPrinted) {
    EXPECT_EQ(LaunchctlParser::parsePrintDisabled(sample("Launchctl/overrides.txt")),
              (Overrides{{"com.example.off", AgentOverride::disabled},
                         {"com.example.on", AgentOverride::enabled},
                         {"com.example.twice", AgentOverride::disabled}}));
    EXPECT_EQ(LaunchctlParser::parsePrintDisabled("no disabled services\nlogin item associations = {\n"
                                                  "\"com.example.on\" => disabled\n}\n"),
              Overrides{});
    EXPECT_EQ(
        LaunchctlParser::parsePrintDisabled("\"cut => off\" => disabled\n\"a \"quoted\" one\" => enabled\n"
                                            "\"cut\" => disabled\" => enabled\n\"wide\"  =>  disabled"),
        (Overrides{{"cut => off", AgentOverride::disabled},
                   {"a \"quoted\" one", AgentOverride::enabled},
                   {"cut\" => disabled", AgentOverride::enabled}}));
}

TEST(ParsePrint, ReadsTheJobsOwnLinesOnly) {
    LoadedState expected = loaded("running", 3, 78, 4711);
    expected.exitTimeout = 20;
    expected.path = "/Users/jo/Library/LaunchAgents/com.example.agent.plist";
    EXPECT_EQ(parsed(sample("Launchctl/job.txt")), expected);
}

TEST(ParsePrint, AnArgumentThatImitatesTheEndOfTheArgumentsDoesNotHideTheJobsNumbers) {
    const std::string text =
        "gui/501/x = {\n\tstate = spawn scheduled\n\targuments = {\n\t\tsh\n\t}\n\tstate = forged\n\truns = "
        "1\n"
        "\tlast exit code = 1\n\t}\n\tworking directory = /x\n y = {\n\truns = 5\n\tlast exit code = (never "
        "exited)\n}\n";
    EXPECT_EQ(parsed(text), loaded("spawn scheduled", 5, std::nullopt, std::nullopt));
}

TEST(ParsePrint, ReadsUnindentedAndUnreadableValues) {
    EXPECT_EQ(parsed("state = waiting\r\nruns = 0\r\npid = many\r\nnested = {\r\nstate = x\r\n}\r\nlast exit "
                     "code = 0"),
              loaded("waiting", 0, 0, std::nullopt));
    EXPECT_EQ(parsed("x = {\n\truns = 99999999999999999999\n"),
              loaded("", std::nullopt, std::nullopt, std::nullopt));
    EXPECT_EQ(parsed("state = spawn scheduled\nlast terminating signal = Segmentation fault: 11\n"),
              loaded("spawn scheduled", std::nullopt, 139, std::nullopt));
    for (const char* none : {"(unknown)", "Killed: 0", "x: 128", "9223372036854775807"})
        EXPECT_EQ(parsed(std::string("state = s\nlast terminating signal = ") + none),
                  loaded("s", std::nullopt, std::nullopt, std::nullopt))
            << none;
}

TEST(ParsePrint, TellsNotLoadedFromUnknown) {
    const std::string words = "Could not find service \"x\" in domain for login";
    EXPECT_EQ(LaunchctlParser::parsePrint({113, "", "Bad request.\n" + words}), LoadedState::notLoaded());
    EXPECT_EQ(LaunchctlParser::parsePrint({113, words, ""}), LoadedState::notLoaded());
    EXPECT_EQ(LaunchctlParser::parsePrint({0, words, ""}), LoadedState::notLoaded());
    EXPECT_EQ(LaunchctlParser::parsePrint({0, "state = running", words}), LoadedState::notLoaded());
    EXPECT_EQ(LaunchctlParser::parsePrint({1, "state = running", ""}), LoadedState::unknown());
    EXPECT_EQ(LaunchctlParser::parsePrint({0, " \n", ""}), LoadedState::unknown());
}

TEST(LoadedState, CrashLoopingNeedsAFailureAndARestart) {
    EXPECT_TRUE(loaded("spawn scheduled", 9, 1, std::nullopt).isCrashLooping());
    EXPECT_FALSE(loaded("spawn scheduled", 9, 0, std::nullopt).isCrashLooping());
    EXPECT_FALSE(loaded("spawn scheduled", 0, std::nullopt, std::nullopt).isCrashLooping());
    EXPECT_FALSE(loaded("running", 9, 1, 12).isCrashLooping());
}

}  // namespace
}  // namespace brell
