// Watching and failing the system calls that this test program makes: the library functions of these names
// are replaced in every program that uses this header, and go on to the system's own.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace brell::testing {

enum class SystemCall {
    open,
    read,
    pread,
    write,
    fsync,
    rename,
    link,
    unlink,
    mkdir,
    close,
    stat,
    lstat,
    fstat,
    flock
};

// True where calls can be watched. Elsewhere, and that is macOS, a test that needs it skips.
bool systemCallsAreWatched();

// Asks for an answer to each call on a path and everything below it, of all threads, as long as it lives. The
// path of a descriptor is that of its file, that of a rename or a link its new name.
class EachCall final {
public:
    // Asked before the system is, one call at a time. The errno to fail with, or 0. A failing close does
    // close.
    using Answer = std::function<int(SystemCall call, const std::string& path)>;

    EachCall(const std::filesystem::path& folder, Answer answer);
    ~EachCall();  // no answer is under way afterwards
    EachCall(const EachCall&) = delete;
    EachCall& operator=(const EachCall&) = delete;

    int codeFor(SystemCall call, const std::string& path) const;

private:
    const std::string folder_;
    const Answer answer_;
};

// Does something just before the first call of this kind reaches the system.
EachCall::Answer before(SystemCall call, std::function<void()> action);

// Counts the calls below a folder. To be asked by the thread that makes them.
class CountedCalls final {
public:
    explicit CountedCalls(const std::filesystem::path& folder);

    std::size_t all() const { return calls_.size(); }
    std::size_t of(SystemCall call, const std::filesystem::path& onlyAt = {}) const;  // exactly this path

private:
    std::vector<std::pair<SystemCall, std::string>> calls_;
    const EachCall watching_;
};

// The n-th call of this kind below a folder fails with this errno instead of reaching the system; those
// before and after it are made.
class FailingCall final {
public:
    FailingCall(const std::filesystem::path& folder, SystemCall call, int code, int nth = 1);

    bool hasFailed() const { return left_ <= 0; }

private:
    std::atomic<int> left_;
    const EachCall watching_;
};

}  // namespace brell::testing
