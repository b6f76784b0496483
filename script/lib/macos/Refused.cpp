// Every call in here is refused, because macOS's headers define its name as a macro. script/check-macos reads
// this before all else, to see that what it reads in place of them does the same.
#include <dirent.h>
#include <signal.h>
#include <sys/time.h>
#include <sys/types.h>

void each(sigset_t* set, DIR* folder, dev_t device, timeval* one, timeval* other, timeval* result) {
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
