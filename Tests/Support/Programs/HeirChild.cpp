// The child of a test of the process runner: prints everything that it could have inherited, one line each.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>

#include <cstdio>

extern char** environ;

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) std::printf("argument %s\n", argv[i]);
    for (char** variable = environ; *variable; ++variable) std::printf("variable %s\n", *variable);
    for (int descriptor = 3; descriptor < 1024; ++descriptor)
        if (::fcntl(descriptor, F_GETFD) >= 0) std::printf("descriptor %d\n", descriptor);
    struct stat input;
    struct stat null;
    const bool isNull =
        ::fstat(0, &input) == 0 && ::stat("/dev/null", &null) == 0 && input.st_rdev == null.st_rdev;
    std::printf("input %s\n", isNull ? "null" : "inherited");
    struct sigaction action;
    ::sigaction(SIGPIPE, nullptr, &action);
    sigset_t blocked;
    ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
    if (action.sa_handler != SIG_DFL || sigismember(&blocked, SIGTERM)) std::printf("signals inherited\n");
    return 0;
}
