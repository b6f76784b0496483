// Every line in here that has a mark is refused, because macOS's headers differ there from those of this
// system. script/check-macos reads this too, to see that what it reads in place of them does the same.
#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>

// The names that are macros.
void eachMacro(sigset_t* set, DIR* folder, dev_t device, timeval* one, timeval* other, timeval* result) {
    ::sigaddset(set, SIGTERM);       // expected-error {{expected unqualified-id}}
    ::sigdelset(set, SIGTERM);       // expected-error {{expected unqualified-id}}
    ::sigemptyset(set);              // expected-error {{expected unqualified-id}}
    ::sigfillset(set);               // expected-error {{expected unqualified-id}}
    ::sigismember(set, SIGTERM);     // expected-error {{expected unqualified-id}}
    ::sigmask(SIGTERM);              // expected-error {{expected unqualified-id}}
    ::dirfd(folder);                 // expected-error {{expected unqualified-id}}
    ::major(device);                 // expected-error {{expected unqualified-id}}
    ::minor(device);                 // expected-error {{expected unqualified-id}}
    ::makedev(1, 2);                 // expected-error {{expected unqualified-id}}
    ::howmany(3, 2);                 // expected-error {{expected unqualified-id}}
    ::timeradd(one, other, result);  // expected-error {{expected unqualified-id}}
    ::timersub(one, other, result);  // expected-error {{expected unqualified-id}}
    ::timercmp(one, other, <);       // expected-error {{expected unqualified-id}}
    ::timerclear(one);               // expected-error {{expected unqualified-id}}
    ::timerisset(one);               // expected-error {{expected unqualified-id}}
}

// The numbers that have another type.
void eachNumber(std::int64_t wide, std::uint64_t count, nfds_t sources, struct stat& file) {
    long* a = &wide;              // expected-error {{cannot initialize a variable}}
    unsigned long* b = &count;    // expected-error {{cannot initialize a variable}}
    unsigned long* c = &sources;  // expected-error {{cannot initialize a variable}}
    long* d = &file.st_size;      // expected-error {{cannot initialize a variable}}
    unsigned* e = &file.st_mode;  // expected-error {{cannot initialize a variable}}
}

// The names that macOS lacks, and a macro that wants a variable.
void eachName(struct stat& file) {
    file.st_mtim;                // expected-error {{no member named 'st_mtim'}}
    WIFEXITED(wait(nullptr));    // expected-error {{cannot take the address of an rvalue}}
    ::fdatasync(1);              // expected-error {{poisoned}}
    ::posix_fallocate(1, 0, 1);  // expected-error {{poisoned}}
    ::explicit_bzero(&file, 1);  // expected-error {{poisoned}}
    ::pthread_spin_init;         // expected-error {{poisoned}}
    MSG_NOSIGNAL;                // expected-error {{poisoned}}
    CLOCK_BOOTTIME;              // expected-error {{poisoned}}
    SIGRTMIN;                    // expected-error {{poisoned}}
}
