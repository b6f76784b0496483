#include "BrellCore/Background/LaunchctlParser.h"

#include <gtest/gtest.h>

namespace brell {
namespace {

using Overrides = AgentOverrides;

LoadedState loaded(std::string state, std::optional<std::int64_t> runs,
                   std::optional<std::int64_t> lastExitCode, std::optional<std::int64_t> pid) {
    return {LoadedState::Kind::loaded, std::move(state), runs, lastExitCode, pid};
}

LoadedState parsed(std::string standardOutput) {
    return LaunchctlParser::parsePrint({0, std::move(standardOutput), ""});
}

TEST(ParsePrintDisabled, TakesTheOverridesOutOfAllThatIsPrinted) {
    const std::string text = R"(disabled services = {
		"com.example.off" => disabled
		"com.example.on" => enabled
		"com.example.twice" => enabled
		"com.example.twice" => disabled
		"com.example.other" => true
		"com.example.unclosed => disabled
		com.example.bare => disabled
	}
	"com.example.on" => disabled
	login item associations = {
		"com.example.helper" => "com.example.app"
		"com.example.on" => disabled
	}
)";
    EXPECT_EQ(LaunchctlParser::parsePrintDisabled(text),
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
    const std::string text = R"(
Warning: this is printed before
gui/501/com.example.agent = {
	active count = 1
	path = /Users/jo/Library/LaunchAgents/com.example.agent.plist
	state = running

	program = /bin/sh
	arguments = {
		/bin/sh
		-c
		echo
state = in an argument
	path = /in/an/argument.plist
	pid = 7
}
		if Could not find service = {
	}

	environment = {
		pid => 8
		runs = 9
	}
	exit timeout = 20
	runs = 3
	pid = 4711
	last exit code = 78: EX_CONFIG

	endpoints = {
		"com.example.port" = {
			state = active
			pid = 10
		}
	}
	resource coalition = {
		state = active
		runs = 11
	}
}
)";
    LoadedState expected = loaded("running", 3, 78, 4711);
    expected.exitTimeout = 20;
    expected.path = "/Users/jo/Library/LaunchAgents/com.example.agent.plist";
    EXPECT_EQ(parsed(text), expected);
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
