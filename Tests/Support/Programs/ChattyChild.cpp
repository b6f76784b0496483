// The child of the process tests: behaves as its first argument says.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <string_view>

extern char** environ;

namespace {

constexpr std::size_t much = 4 << 20;

void write(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written <= 0) ::_exit(99);
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

// Longer than any test waits for it.
void sleepLong() {
    ::sleep(60);
}

const char* tidied = nullptr;

// Takes a moment to end when it is asked to, and leaves this file then.
void tidyWhenStopped(const char* file) {
    tidied = file;
    ::signal(SIGTERM, [](int) {
        ::usleep(300'000);
        ::close(::open(tidied, O_WRONLY | O_CREAT, 0600));
        ::_exit(0);
    });
}

// Everything a child could have inherited, one line each.
void reportInheritance(int argc, char** argv) {
    for (int i = 2; i < argc; ++i) std::printf("argument %s\n", argv[i]);
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
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view mode = argc > 1 ? argv[1] : "";
    if (mode == "inheritance") reportInheritance(argc, argv);
    if (mode == "chatty") {
        // One stream after the other: whoever reads them in turn, or only at the end, never gets past this.
        write(2, std::string(much, 'e'));
        write(1, std::string(much, 'o'));
        return 3;
    }
    if (mode == "invalid")
        write(1,
              "a\xFF"
              "b\xC3");
    if (mode == "closes-early") {
        write(1, "before");
        ::close(1);
        ::close(2);
        ::usleep(200'000);
        return 7;
    }
    if (mode == "signal") ::raise(SIGKILL);
    if (mode == "sleeps") sleepLong();
    if (mode == "ignores") {
        ::signal(SIGTERM, SIG_IGN);
        write(1, "deaf");
        for (;;) ::pause();
    }
    if (mode == "tidies") {
        tidyWhenStopped(argv[2]);
        ::close(1);
        ::close(2);
        sleepLong();
    }
    if (mode == "floods") {
        tidyWhenStopped(argv[2]);
        for (int i = 0; i < 20; ++i) write(1, std::string(much, 'o'));
    }
    if (mode == "endless")
        for (;;) write(1, "more and more\n");
    if (mode == "grandchild" && ::fork() == 0) sleepLong();  // with our outputs open
    if (mode == "grandchild") write(1, "mine");
    return 0;
}
