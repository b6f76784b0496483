// Sessions in a terminal: each line after a "$" is run by the system's shell in the home of a sample Mac, and
// has to print and come to what was written down below it.

#include <regex>

#include "Tests/CorvaneBrell/HeadlessFixture.h"

namespace brell::testing {

namespace {

class SessionTest : public HeadlessTest, public ::testing::WithParamInterface<const char*> {
protected:
    SessionTest() { fs::create_directory(temporary); }

    Finished type(const std::string& line) const {
        const std::string brell =
            "cd; brell() { \"$PROGRAM\" --sample-mac " + shellWord(sample.systemRoot()) + " \"$@\"; }; ";
        return runLine(brell + "{ " + line + "; } 2>&1",
                       {{"PROGRAM", BRELL_PROGRAM},
                        {"HOME", sample.home()},
                        {"JOURNAL", journalDirectory},
                        {"TMPDIR", temporary},
                        {"BRELL_SAMPLE_MAC", sample.systemRoot()},
                        {"DEFAULTS_FOLDER", sample.preferences()},
                        {"PATH", BRELL_STAND_INS ":" + std::string(std::getenv("PATH"))}});
    }

    // Paths as on a Mac of its own, entries by numbers in the order in which they are told of.
    std::string told(std::string text) {
        text = withoutRoot(std::move(text));
        const std::regex id("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
        for (std::smatch found; std::regex_search(text, found, id);) {
            const auto number = entries.try_emplace(found.str(), entries.size() + 1).first->second;
            text = found.prefix().str() + "#" + std::to_string(number) + found.suffix().str();
        }
        return text;
    }

    const fs::path temporary = folder.path / "temporary";
    std::map<std::string, std::size_t> entries;
};

}  // namespace

TEST_P(SessionTest, RunsAsItWasWrittenDown) {
    const std::string expected = testing::sample(fs::path("Sessions") / GetParam());
    std::istringstream lines(expected);
    std::string session;
    bool areAsAtFirst = true;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("$ ")) continue;
        const Finished finished = type(line.substr(2));
        session += line + "\n" + told(finished.output);
        if (finished.status != 0) session += "[" + std::to_string(finished.status) + "]\n";
        if (areAsAtFirst != (preferences() == original))
            session += areAsAtFirst ? "[preferences changed]\n" : "[preferences as at first]\n";
        areAsAtFirst = preferences() == original;
    }
    EXPECT_EQ(session, expected);
}

INSTANTIATE_TEST_SUITE_P(CommandLine, SessionTest,
                         ::testing::Values("agents.txt", "apply-and-restore.txt", "crash.txt", "dry-run.txt",
                                           "launchd.txt", "tour.txt", "dry-run-over-a-journal.txt",
                                           "words.txt"));

}  // namespace brell::testing
