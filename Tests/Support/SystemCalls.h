// Watching and failing the system calls that this test program makes: the library functions of these names
// are replaced in every program that uses this header, and go on to the system's own.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace brell::testing {

// fdatasync counts as fsync.
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
    flock,
};

// True where calls can be watched. Elsewhere, and that is macOS, a test that needs it skips.
bool systemCallsAreWatched();

// What an observer sees: calls on this path and everything below it; the path of a descriptor is that of its
// file, that of a rename or a link its new name.
class CallObserver {
public:
    CallObserver(const CallObserver&) = delete;
    CallObserver& operator=(const CallObserver&) = delete;

    // Called before the system is, one call at a time. Answers the errno to fail with, or 0.
    virtual int sees(SystemCall call, const std::string& path) = 0;
    bool watches(const std::string& path) const;

protected:
    explicit CallObserver(const std::filesystem::path& folder);
    virtual ~CallObserver();
    void start();  // when the derived object is complete
    void stop();   // before it goes; no call of sees is under way afterwards

private:
    const std::string folder_;
};

// Asks for an answer to each call below a folder as long as it lives: the errno to fail with, or 0.
class EachCall final : CallObserver {
public:
    using Answer = std::function<int(SystemCall call)>;
    EachCall(const std::filesystem::path& folder, Answer answer)
        : CallObserver(folder), answer_(std::move(answer)) {
        start();
    }
    ~EachCall() override { stop(); }

private:
    int sees(SystemCall call, const std::string&) override { return answer_(call); }
    const Answer answer_;
};

// Counts the calls below a folder, of all threads, as long as it lives.
class CountedCalls final : CallObserver {
public:
    explicit CountedCalls(const std::filesystem::path& folder);
    ~CountedCalls() override;

    std::size_t all() const;
    std::size_t of(SystemCall call, const std::filesystem::path& onlyAt = {}) const;  // exactly this path

private:
    struct Call {
        SystemCall call;
        std::string path;
    };
    int sees(SystemCall call, const std::string& path) override;

    std::vector<Call> calls_;
};

// The n-th call of this kind below a folder fails with this errno instead of reaching the system; those
// before and after it are made. A failing close does close.
class FailingCall final : CallObserver {
public:
    FailingCall(const std::filesystem::path& folder, SystemCall call, int code, int nth = 1);
    ~FailingCall() override;

    bool hasFailed() const;

private:
    int sees(SystemCall call, const std::string& path) override;

    const SystemCall call_;
    const int code_;
    int left_;
};

}  // namespace brell::testing
