#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>

#include "BrellCore/Background/ProcessCommandRunner.h"
#include "BrellCore/Background/RunProcess.h"
#include "BrellCore/Support/UniqueFd.h"
#include "Tests/Support/Shell.h"
#include "Tests/Support/Testing.h"

namespace brell {
namespace {

using namespace testing;

constexpr double plenty = 20;

using Ending = std::variant<CommandResult, CommandProblem>;

// A script that takes a moment to end when it is asked to, and leaves a file in the folder then.
std::string tidying(const TemporaryFolder& folder, const std::string& work) {
    return "tidy() { sleep 0.3; : >" + shellWord(folder.path / "tidied") + "; exit 0; }; trap tidy TERM; " +
           work;
}
const std::string idle = "exec >&- 2>&-; while :; do sleep 0.05; done";

Ending endOf(const std::string& script, const CommandPatience& patience = {plenty, nullptr}) {
    return runProcess("/bin/sh", {"-c", script}, patience);
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

    const Ending end = runProcess(BRELL_HEIR_CHILD, {"two words", "", "$HOME 'x'"}, {plenty, nullptr});

    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::signal(SIGPIPE, ignored);
    EXPECT_EQ(
        end, Ending(CommandResult{0, "argument two words\nargument \nargument $HOME 'x'\ninput null\n", ""}));
}

TEST(RunProcess, ReadsBothStreamsWholeHoweverMuchTheyHold) {
    // One stream after the other: a reader that takes them in turn, or only at the end, never gets past this.
    const std::string much = "head -c 4194304 /dev/zero | tr '\\0' ";
    const Ending end = endOf(much + "e >&2; " + much + "o; exit 3");
    EXPECT_TRUE(end == Ending(CommandResult{3, std::string(4 << 20, 'o'), std::string(4 << 20, 'e')}));
}

TEST(RunProcess, RepairsTextAndReportsEveryKindOfEnd) {
    EXPECT_EQ(endOf("printf 'a\\377b\\303'"), Ending(CommandResult{0, "a\uFFFDb\uFFFD", ""}));
    EXPECT_EQ(endOf("kill -9 $$"), Ending(CommandResult{128 + SIGKILL, "", ""}));
    EXPECT_FALSE(hasZombies());
}

// One that looked without sleeping would work all the while. macOS counts hardly any sleep, but the time.
TEST(RunProcess, SleepsWhileItWaitsForASilentChild) {
    const std::clock_t before = std::clock();
    EXPECT_EQ(endOf("printf before; exec >&- 2>&-; sleep 0.4; exit 7"),
              Ending(CommandResult{7, "before", ""}));
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 10);
}

TEST(RunProcess, StopsWhatDoesNotEndAfterAMomentToPutItsThingsInOrder) {
    const TemporaryFolder folder;
    // One obeys, one prints without end, one must be killed with its outputs open, one tidies up.
    for (const std::string& script :
         {std::string("exec sleep 60"), std::string("while :; do echo more and more; done"),
          std::string("trap '' TERM; printf deaf; exec sleep 60"), tidying(folder, idle)})
        EXPECT_EQ(endOf(script, {0.2, nullptr}), Ending(CommandProblem::timedOut)) << script;
    EXPECT_FALSE(hasZombies());
    EXPECT_EQ(namesIn(folder.path), Names{"tidied"});
}

TEST(RunProcess, EndsWithThePatienceOfItsCaller) {
    const TemporaryFolder folder;
    int asked = 0;
    EXPECT_EQ(endOf(tidying(folder, idle), {plenty, [&] { return ++asked > 2; }}),
              Ending(CommandProblem::cancelled));
    EXPECT_EQ(asked, 3) << "not any more, while it ends";
    EXPECT_EQ(namesIn(folder.path), Names{"tidied"}) << "it was asked to end, and waited for";
    EXPECT_EQ(describe({CommandProblem::cancelled, "x"}), "The command was cancelled: x.");
}

TEST(RunProcess, StopsWhatPrintsMoreThanIsTaken) {
    const TemporaryFolder folder;
    EXPECT_EQ(endOf(tidying(folder, "while :; do printf %01000000d 0; done")),
              Ending(CommandProblem::tooMuchOutput));
    EXPECT_EQ(namesIn(folder.path), Names{"tidied"}) << "it was stopped, and waited for then";
    EXPECT_EQ(describe({CommandProblem::tooMuchOutput, "x"}),
              "The command printed more than 64 MiB, which is more than Brell takes: x.");
}

TEST(RunProcess, AnOutputHeldOpenByAGrandchildDoesNotHoldTheCaller) {
    EXPECT_EQ(endOf("sleep 60 & printf mine"), Ending(CommandResult{0, "mine", ""}))
        << "else it is stopped, after long";
}

TEST(RunProcess, LeavesNoDescriptorBehindAndSaysWhyItCannotStart) {
    const std::string missing = "/no/such/program";
    const auto before = namesIn("/dev/fd").size();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(messageOf([&] {
                      runProcess(missing, {}, {plenty, nullptr});
                  }),
                  "The command could not be started: No such file or directory.");
        endOf(":");
    }
    EXPECT_EQ(namesIn("/dev/fd").size(), before);
}

TEST(RunProcess, WorksWhenTheStandardDescriptorsAreClosed) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        for (const int descriptor : {0, 1, 2}) ::close(descriptor);
        ::_exit(endOf("printf a") == Ending(CommandResult{0, "a", ""}) ? 0 : 1);
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
