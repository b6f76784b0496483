#include "BrellCore/Background/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <thread>

namespace brell {

namespace {

constexpr int signalBase = 128;  // as shells count
constexpr int unknownExitCode = -1;

void check(int error) {
    if (error != 0) throw std::system_error(error, std::generic_category());
}

// Above the three standard descriptors: they may be closed in this process, and a pipe that took the place of
// one would be overwritten while the child's are put in order.
UniqueFd aboveStandard(UniqueFd descriptor) {
    if (descriptor.get() > STDERR_FILENO) return descriptor;
    UniqueFd above(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!above) check(errno);
    return above;
}

// The actions and attributes of one posix_spawn, freed at the end.
class SpawnPlan {
public:
    SpawnPlan() {
        check(::posix_spawn_file_actions_init(&actions));
        if (const int error = ::posix_spawnattr_init(&attributes)) {
            ::posix_spawn_file_actions_destroy(&actions);
            check(error);
        }
    }
    ~SpawnPlan() {
        ::posix_spawnattr_destroy(&attributes);
        ::posix_spawn_file_actions_destroy(&actions);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    void connect(const UniqueFd& standardOutput, const UniqueFd& standardError) {
        check(::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
        check(::posix_spawn_file_actions_adddup2(&actions, standardOutput.get(), STDOUT_FILENO));
        check(::posix_spawn_file_actions_adddup2(&actions, standardError.get(), STDERR_FILENO));
    }

    // Whatever this process ignores or blocks, and whichever descriptors a library of ours left open.
    void inheritNothing() {
        sigset_t every;
        sigset_t none;
        sigfillset(&every);
        sigemptyset(&none);
        check(::posix_spawnattr_setsigdefault(&attributes, &every));
        check(::posix_spawnattr_setsigmask(&attributes, &none));
        int flags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
#ifdef __APPLE__
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#elif defined(__GLIBC__)
        check(::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1));
#endif
        check(::posix_spawnattr_setflags(&attributes, static_cast<short>(flags)));
    }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

pid_t spawn(const std::string& executable, const std::vector<std::string>& arguments, const SpawnPlan& plan) {
    // posix_spawn takes pointers to non-const characters for historical reasons; it does not change them.
    std::vector<char*> vector{const_cast<char*>(executable.c_str())};
    for (const std::string& argument : arguments) vector.push_back(const_cast<char*>(argument.c_str()));
    vector.push_back(nullptr);
    char* const emptyEnvironment[] = {nullptr};
    pid_t pid = 0;
    check(::posix_spawn(&pid, executable.c_str(), &plan.actions, &plan.attributes, vector.data(),
                        emptyEnvironment));
    return pid;
}

int exitCodeFrom(int status) {
    return WIFSIGNALED(status) ? signalBase + WTERMSIG(status) : WEXITSTATUS(status);
}

// Nothing as long as the child runs, which can only be without waiting.
std::optional<int> reap(pid_t pid, int options) {
    int status = 0;
    pid_t reaped;
    do reaped = ::waitpid(pid, &status, options);
    while (reaped < 0 && errno == EINTR);
    if (reaped == 0) return std::nullopt;
    return reaped == pid ? exitCodeFrom(status) : unknownExitCode;
}

}  // namespace

Pipe makePipe() {
    int ends[2];
#ifdef __APPLE__
    // A child started by another thread between these calls may inherit the pipe; ours never does.
    if (::pipe(ends) != 0) check(errno);
    for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
#else
    if (::pipe2(ends, O_CLOEXEC) != 0) check(errno);
#endif
    Pipe pipe{UniqueFd(ends[0]), UniqueFd(ends[1])};
    return {aboveStandard(std::move(pipe.readEnd)), aboveStandard(std::move(pipe.writeEnd))};
}

ChildProcess::ChildProcess(const std::string& executable, const std::vector<std::string>& arguments,
                           const UniqueFd& standardOutput, const UniqueFd& standardError) {
    SpawnPlan plan;
    plan.connect(standardOutput, standardError);
    plan.inheritNothing();
    pid_ = spawn(executable, arguments, plan);
}

ChildProcess::~ChildProcess() {
    if (hasEnded()) return;
    try {
        std::thread([pid = pid_] { reap(pid, 0); }).detach();
    } catch (const std::system_error&) {  // no thread to be had: it stays a zombie until we end
    }
}

bool ChildProcess::hasEnded() {
    if (!exitCode_) exitCode_ = reap(pid_, WNOHANG);
    return exitCode_.has_value();
}

void ChildProcess::terminate() {
    if (!hasEnded()) ::kill(pid_, SIGTERM);
}

}  // namespace brell
