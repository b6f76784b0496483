#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "BrellCore/Background/ProcessCommandRunner.h"
#include "BrellCore/Background/RunProcess.h"
#include "BrellCore/Support/UniqueFd.h"
#include "Tests/Support/Testing.h"

namespace brell {
namespace {

using namespace testing;

constexpr double plenty = 20;

using Ending = std::variant<CommandResult, CommandProblem>;

Ending endOf(const std::vector<std::string>& arguments, double timeout) {
    return runProcess(BRELL_CHATTY_CHILD, arguments, {timeout, nullptr});
}

// Nothing when it was stopped for taking too long.
std::optional<CommandResult> runChild(const std::vector<std::string>& arguments, double timeout = plenty) {
    const Ending ending = endOf(arguments, timeout);
    if (const auto* result = std::get_if<CommandResult>(&ending)) return *result;
    EXPECT_EQ(ending, Ending(CommandProblem::timedOut));
    return std::nullopt;
}

// Of our children; some may still run.
bool hasZombies() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOWAIT | WNOHANG) == 0 && info.si_pid != 0;
}

TEST(RunProcess, TheChildInheritsNothing) {
    ::setenv("BRELL_TEST_VARIABLE", "1", 1);
    const UniqueFd careless(::open("/dev/null", O_RDONLY));  // by a library that does not close on exec
    const auto ignored = ::signal(SIGPIPE, SIG_IGN);
    sigset_t terminate;
    sigset_t before;
    sigemptyset(&terminate);
    sigaddset(&terminate, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &terminate, &before);

    const auto result = runChild({"inheritance", "two words", "", "$HOME 'x'"});

    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::signal(SIGPIPE, ignored);
    EXPECT_EQ(result,
              (CommandResult{0, "argument two words\nargument \nargument $HOME 'x'\ninput null\n", ""}));
}

TEST(RunProcess, ReadsBothStreamsWholeHoweverMuchTheyHold) {
    const auto result = runChild({"chatty"});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->exitCode, 3);
    EXPECT_TRUE(result->stdoutText == std::string(4 << 20, 'o'));
    EXPECT_TRUE(result->stderrText == std::string(4 << 20, 'e'));
}

TEST(RunProcess, RepairsTextAndReportsEveryKindOfEnd) {
    EXPECT_EQ(runChild({"invalid"}), (CommandResult{0, "a\uFFFDb\uFFFD", ""}));
    EXPECT_EQ(runChild({"signal"}), (CommandResult{128 + SIGKILL, "", ""}));
    EXPECT_FALSE(hasZombies());
}

TEST(RunProcess, SleepsWhileItWaitsForASilentChild) {
    const auto sleeps = [] {
        struct rusage usage {};
        ::getrusage(RUSAGE_SELF, &usage);
        return usage.ru_nvcsw;
    };
    const auto before = sleeps();
    EXPECT_EQ(runChild({"closes-early"}), (CommandResult{7, "before", ""}));
    EXPECT_GE(sleeps(), before + 5);
}

TEST(RunProcess, StopsWhatDoesNotEndAfterAMomentToPutItsThingsInOrder) {
    // One obeys, one prints without end, one must be killed with its outputs open.
    for (const char* mode : {"sleeps", "endless", "ignores"}) EXPECT_EQ(runChild({mode}, 0.2), std::nullopt);
    EXPECT_FALSE(hasZombies());
    const TemporaryFolder folder;
    EXPECT_EQ(runChild({"tidies", (folder.path / "tidied").string()}, 0.2), std::nullopt);
    EXPECT_EQ(namesIn(folder.path), Names{"tidied"});
}

TEST(RunProcess, EndsWithThePatienceOfItsCaller) {
    const TemporaryFolder folder;
    int asked = 0;
    const CommandPatience patience{plenty, [&] { return ++asked > 2; }};
    EXPECT_EQ(runProcess(BRELL_CHATTY_CHILD, {"tidies", (folder.path / "tidied").string()}, patience),
              Ending(CommandProblem::cancelled));
    EXPECT_EQ(asked, 3) << "not any more, while it ends";
    EXPECT_EQ(namesIn(folder.path), Names{"tidied"}) << "it was asked to end, and waited for";
    EXPECT_EQ(describe({CommandProblem::cancelled, "x"}), "The command was cancelled: x.");
}

TEST(RunProcess, StopsWhatPrintsMoreThanIsTaken) {
    const TemporaryFolder folder;
    EXPECT_EQ(endOf({"floods", (folder.path / "tidied").string()}, plenty),
              Ending(CommandProblem::tooMuchOutput));
    EXPECT_EQ(namesIn(folder.path), Names{"tidied"}) << "it was stopped, and waited for then";
    EXPECT_EQ(describe({CommandProblem::tooMuchOutput, "x"}),
              "The command printed more than 64 MiB, which is more than Brell takes: x.");
}

TEST(RunProcess, AnOutputHeldOpenByAGrandchildDoesNotHoldTheCaller) {
    EXPECT_EQ(runChild({"grandchild"}), (CommandResult{0, "mine", ""})) << "else it is stopped, after long";
}

TEST(RunProcess, LeavesNoDescriptorBehindAndSaysWhyItCannotStart) {
    const std::string missing = "/no/such/program";
    const auto before = namesIn("/dev/fd").size();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(messageOf([&] {
                      runProcess(missing, {}, {plenty, nullptr});
                  }),
                  "The command could not be started: No such file or directory.");
        runChild({"nothing"});
    }
    EXPECT_EQ(namesIn("/dev/fd").size(), before);
}

TEST(RunProcess, WorksWhenTheStandardDescriptorsAreClosed) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        for (const int descriptor : {0, 1, 2}) ::close(descriptor);
        const auto result = runChild({"invalid"});
        ::_exit(result && result->stdoutText.starts_with("a") && result->stderrText.empty() ? 0 : 1);
    }
    int status = -1;
    ::waitpid(pid, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST(ProcessCommandRunner, RefusesBeforeAnythingIsStarted) {
    ProcessCommandRunner runner(plenty);
    EXPECT_EQ(messageOf([&] { runner.run(AllowedCommand::mdutilStatus("relative")); }),
              "Refused to run a command with an invalid volume relative.");
}

}  // namespace
}  // namespace brell
