#include "Tests/Support/SystemCalls.h"

#include <algorithm>
#include <cerrno>
#include <mutex>

#ifdef __linux__
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#endif

namespace fs = std::filesystem;

namespace brell::testing {

namespace {

// Never destroyed: the calls of destructors at the end of the program pass here too.
struct Observers {
    std::mutex mutex;  // guards all, and every observer in it
    std::vector<CallObserver*> all;
};
Observers& observers() {
    static auto& kept = *new Observers;
    return kept;
}

}  // namespace

CallObserver::CallObserver(const fs::path& folder) : folder_(folder.string()) {}
CallObserver::~CallObserver() = default;

bool CallObserver::watches(const std::string& path) const {
    return path.starts_with(folder_) && (path.size() == folder_.size() || path[folder_.size()] == '/');
}

CountedCalls::CountedCalls(const fs::path& folder) : CallObserver(folder) {
    start();
}
CountedCalls::~CountedCalls() {
    stop();
}

std::size_t CountedCalls::all() const {
    const std::lock_guard lock(observers().mutex);
    return calls_.size();
}

std::size_t CountedCalls::of(SystemCall call, const fs::path& onlyAt) const {
    const std::lock_guard lock(observers().mutex);
    return static_cast<std::size_t>(std::count_if(calls_.begin(), calls_.end(), [&](const Call& made) {
        return made.call == call && (onlyAt.empty() || made.path == onlyAt.string());
    }));
}

int CountedCalls::sees(SystemCall call, const std::string& path) {
    calls_.push_back({call, path});
    return 0;
}

FailingCall::FailingCall(const fs::path& folder, SystemCall call, int code, int nth)
    : CallObserver(folder), call_(call), code_(code), left_(nth) {
    start();
}
FailingCall::~FailingCall() {
    stop();
}

bool FailingCall::hasFailed() const {
    const std::lock_guard lock(observers().mutex);
    return left_ <= 0;
}

int FailingCall::sees(SystemCall call, const std::string&) {
    return call == call_ && --left_ == 0 ? code_ : 0;
}

#ifdef __linux__

namespace {

std::atomic<std::size_t> observerCount{0};
thread_local bool isObserving = false;  // what is called while observing is not observed

std::string pathOf(int descriptor) {
    std::array<char, 32> link;
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    std::array<char, 4096> target;
    const ssize_t length = ::readlink(link.data(), target.data(), target.size());
    return std::string(target.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
}
std::string pathOf(const char* path) {
    return path;
}

// The errno to fail with, or 0. Leaves errno as it is.
template <class Place>
int codeFor(SystemCall call, Place place) {
    if (observerCount == 0 || isObserving) return 0;
    const int before = errno;
    isObserving = true;
    int code = 0;
    {
        const std::string path = pathOf(place);
        const std::lock_guard lock(observers().mutex);
        for (CallObserver* observer : observers().all)
            if (observer->watches(path))
                if (const int wanted = observer->sees(call, path); wanted != 0) code = wanted;
    }
    isObserving = false;
    errno = before;
    return code;
}

// The system's own function of this name: ready before the program's first call, and looked up once, because
// that takes locks.
class Next {
public:
    explicit constexpr Next(const char* name) : name_(name) {}
    template <class Function>
    Function* as() {
        void* found = found_;
        if (!found) found_ = found = ::dlsym(RTLD_NEXT, name_);
        return reinterpret_cast<Function*>(found);
    }

private:
    const char* name_;
    std::atomic<void*> found_ = nullptr;
};
constinit Next nextOpen("open"), nextRead("read"), nextPread("pread"), nextWrite("write"), nextFsync("fsync"),
    nextFdatasync("fdatasync"), nextRename("rename"), nextLink("link"), nextUnlink("unlink"),
    nextMkdir("mkdir"), nextClose("close"), nextStat("stat"), nextLstat("lstat"), nextFstat("fstat"),
    nextFlock("flock");

int failedWith(int code) {
    errno = code;
    return -1;
}

// The call as the program makes it, unless it is to fail.
template <class Result, class Place, class... Arguments>
Result watched(SystemCall call, Place place, Next& next, Arguments... arguments) {
    if (const int code = codeFor(call, place)) return failedWith(code);
    return next.as<Result(Arguments...)>()(arguments...);
}

bool takesMode(int flags) {
#ifdef O_TMPFILE
    if ((flags & O_TMPFILE) == O_TMPFILE) return true;
#endif
    return (flags & O_CREAT) != 0;
}

}  // namespace

bool systemCallsAreWatched() {
    return true;
}

void CallObserver::start() {
    const std::lock_guard lock(observers().mutex);
    observers().all.push_back(this);
    ++observerCount;
}

void CallObserver::stop() {
    const std::lock_guard lock(observers().mutex);
    std::erase(observers().all, this);
    --observerCount;
}

#else

bool systemCallsAreWatched() {
    return false;
}
void CallObserver::start() {}
void CallObserver::stop() {}

#endif

}  // namespace brell::testing

#ifdef __linux__

using namespace brell::testing;

extern "C" {

int open(const char* path, int flags, ...) {
    mode_t mode = 0;
    if (takesMode(flags)) {
        std::va_list rest;
        va_start(rest, flags);
        mode = va_arg(rest, mode_t);
        va_end(rest);
    }
    if (const int code = codeFor(SystemCall::open, path)) return failedWith(code);
    return nextOpen.as<int(const char*, int, ...)>()(path, flags, mode);
}

ssize_t read(int descriptor, void* bytes, size_t count) {
    return watched<ssize_t>(SystemCall::read, descriptor, nextRead, descriptor, bytes, count);
}

ssize_t pread(int descriptor, void* bytes, size_t count, off_t offset) {
    return watched<ssize_t>(SystemCall::pread, descriptor, nextPread, descriptor, bytes, count, offset);
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
    return watched<ssize_t>(SystemCall::write, descriptor, nextWrite, descriptor, bytes, count);
}

int fsync(int descriptor) {
    return watched<int>(SystemCall::fsync, descriptor, nextFsync, descriptor);
}

int fdatasync(int descriptor) {
    return watched<int>(SystemCall::fsync, descriptor, nextFdatasync, descriptor);
}

int rename(const char* from, const char* to) noexcept {
    return watched<int>(SystemCall::rename, to, nextRename, from, to);
}

int link(const char* from, const char* to) noexcept {
    return watched<int>(SystemCall::link, to, nextLink, from, to);
}

int unlink(const char* path) noexcept {
    return watched<int>(SystemCall::unlink, path, nextUnlink, path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    return watched<int>(SystemCall::mkdir, path, nextMkdir, path, mode);
}

int close(int descriptor) {
    const int code = codeFor(SystemCall::close, descriptor);
    const int result = nextClose.as<int(int)>()(descriptor);
    return code != 0 ? failedWith(code) : result;
}

int stat(const char* path, struct stat* status) noexcept {
    return watched<int>(SystemCall::stat, path, nextStat, path, status);
}

int lstat(const char* path, struct stat* status) noexcept {
    return watched<int>(SystemCall::lstat, path, nextLstat, path, status);
}

int fstat(int descriptor, struct stat* status) noexcept {
    return watched<int>(SystemCall::fstat, descriptor, nextFstat, descriptor, status);
}

int flock(int descriptor, int operation) noexcept {
    return watched<int>(SystemCall::flock, descriptor, nextFlock, descriptor, operation);
}

}  // extern "C"

#endif
