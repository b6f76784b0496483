#include "Tests/Support/SystemCalls.h"

#include <dlfcn.h>
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <mutex>

#ifdef __linux__
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#endif

#include "Tests/Support/Testing.h"

namespace brell::testing {

namespace {

// Never destroyed: the calls of destructors at the end of the program pass here too.
struct Observers {
    std::mutex mutex;  // guards all, and is held while they answer
    std::vector<const EachCall*> all;
};
Observers& observers() {
    static auto& kept = *new Observers;
    return kept;
}
std::atomic<std::size_t> observerCount{0};

}  // namespace

EachCall::EachCall(const fs::path& folder, Answer answer)
    : folder_(folder.string()), answer_(std::move(answer)) {
    const std::lock_guard lock(observers().mutex);
    observers().all.push_back(this);
    ++observerCount;
}

EachCall::~EachCall() {
    const std::lock_guard lock(observers().mutex);
    std::erase(observers().all, this);
    --observerCount;
}

int EachCall::codeFor(SystemCall call, const std::string& path) const {
    const bool isBelow =
        path.starts_with(folder_) && (path.size() == folder_.size() || path[folder_.size()] == '/');
    return isBelow ? answer_(call, path) : 0;
}

EachCall::Answer before(SystemCall call, std::function<void()> action) {
    return [call, action = std::move(action)](SystemCall made, const std::string&) mutable {
        if (made == call) std::exchange(action, [] {})();
        return 0;
    };
}

CountedCalls::CountedCalls(const fs::path& folder)
    : watching_(folder, [this](SystemCall call, const std::string& path) {
          calls_.emplace_back(call, path);
          return 0;
      }) {}

std::size_t CountedCalls::of(SystemCall call, const fs::path& onlyAt) const {
    return static_cast<std::size_t>(std::count_if(calls_.begin(), calls_.end(), [&](const auto& made) {
        return made.first == call && (onlyAt.empty() || made.second == onlyAt.string());
    }));
}

FailingCall::FailingCall(const fs::path& folder, SystemCall call, int code, int nth)
    : left_(nth), watching_(folder, [this, call, code](SystemCall made, const std::string&) {
          return made == call && --left_ == 0 ? code : 0;
      }) {}

bool systemCallsAreWatched() {
#ifdef __linux__
    return true;
#else
    return false;
#endif
}

}  // namespace brell::testing

#ifdef __linux__

using namespace brell::testing;

namespace {

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
        for (const EachCall* observer : observers().all)
            if (const int wanted = observer->codeFor(call, path); wanted != 0) code = wanted;
    }
    isObserving = false;
    errno = before;
    return code;
}

int failedWith(int code) {
    errno = code;
    return -1;
}

// The system's own function: ready before the program's first call, and looked up once, because that takes
// locks.
template <class Function>
Function* systems(SystemCall call) {
    constexpr std::array names{"open",   "read",  "pread", "write", "fsync", "rename", "link",
                               "unlink", "mkdir", "close", "stat",  "lstat", "fstat",  "flock"};
    static constinit std::array<std::atomic<void*>, names.size()> known{};
    const auto index = static_cast<std::size_t>(call);
    void* found = known.at(index);
    if (!found) known.at(index) = found = ::dlsym(RTLD_NEXT, names.at(index));
    return reinterpret_cast<Function*>(found);
}

// The call as the program makes it, unless it is to fail.
template <class Result, class Place, class... Arguments>
Result watched(SystemCall call, Place place, Arguments... arguments) {
    if (const int code = codeFor(call, place)) return failedWith(code);
    return systems<Result(Arguments...)>(call)(arguments...);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        std::va_list rest;
        va_start(rest, flags);
        mode = va_arg(rest, mode_t);
        va_end(rest);
    }
    if (const int code = codeFor(SystemCall::open, path)) return failedWith(code);
    return systems<int(const char*, int, ...)>(SystemCall::open)(path, flags, mode);
}

ssize_t read(int descriptor, void* bytes, size_t count) {
    return watched<ssize_t>(SystemCall::read, descriptor, descriptor, bytes, count);
}

ssize_t pread(int descriptor, void* bytes, size_t count, off_t offset) {
    return watched<ssize_t>(SystemCall::pread, descriptor, descriptor, bytes, count, offset);
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
    return watched<ssize_t>(SystemCall::write, descriptor, descriptor, bytes, count);
}

int fsync(int descriptor) {
    return watched<int>(SystemCall::fsync, descriptor, descriptor);
}

int rename(const char* from, const char* to) noexcept {
    return watched<int>(SystemCall::rename, to, from, to);
}

int link(const char* from, const char* to) noexcept {
    return watched<int>(SystemCall::link, to, from, to);
}

int unlink(const char* path) noexcept {
    return watched<int>(SystemCall::unlink, path, path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    return watched<int>(SystemCall::mkdir, path, path, mode);
}

int close(int descriptor) {
    const int code = codeFor(SystemCall::close, descriptor);
    const int result = systems<int(int)>(SystemCall::close)(descriptor);
    return code != 0 ? failedWith(code) : result;
}

int stat(const char* path, struct stat* status) noexcept {
    return watched<int>(SystemCall::stat, path, path, status);
}

int lstat(const char* path, struct stat* status) noexcept {
    return watched<int>(SystemCall::lstat, path, path, status);
}

int fstat(int descriptor, struct stat* status) noexcept {
    return watched<int>(SystemCall::fstat, descriptor, descriptor, status);
}

int flock(int descriptor, int operation) noexcept {
    return watched<int>(SystemCall::flock, descriptor, descriptor, operation);
}

}  // extern "C"

#endif

#ifdef __APPLE__

// A flush that reaches the drive takes some milliseconds, and single tests make more than ten thousand: what
// it is good for shows only after a power cut. Elsewhere the files of tests lie in memory.
extern "C" int fcntl(int descriptor, int command, ...) {
    if (command == F_FULLFSYNC) return 0;
    std::va_list rest;
    va_start(rest, command);
    void* const argument = va_arg(rest, void*);  // as wide as anything that a command takes
    va_end(rest);
    static const auto systems = reinterpret_cast<int (*)(int, int, ...)>(::dlsym(RTLD_NEXT, "fcntl"));
    return systems(descriptor, command, argument);
}

#endif
