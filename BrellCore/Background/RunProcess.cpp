#include "BrellCore/Background/RunProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <system_error>
#include <thread>

#include "BrellCore/Background/ChildProcess.h"
#include "BrellCore/Support/AwakeClock.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

using Deadline = AwakeClock::time_point;

constexpr std::chrono::seconds grace{2};
// How often the end of the child is looked for while something else may hold its outputs open. After they
// have closed, it ends within a moment as a rule, sooner than a sleeper is woken: so the first looks only
// yield, and then the naps grow from the shortest to the longest.
constexpr std::chrono::milliseconds lookEvery{50};
constexpr int mostYields = 200;
constexpr std::chrono::milliseconds longestYielding{1};  // each takes long where others want to work
constexpr std::chrono::microseconds shortestNap{20};
constexpr std::chrono::microseconds longestNap{20'000};
constexpr double longestTimeout = 1e6;  // seconds; keeps the arithmetic of deadlines in range

Deadline deadlineAfter(double seconds) {
    const double bounded = std::isnan(seconds) ? 0 : std::clamp(seconds, 0.0, longestTimeout);
    return AwakeClock::now() +
           std::chrono::duration_cast<AwakeClock::duration>(std::chrono::duration<double>(bounded));
}

// For poll: rounded up, so that it does not spin during the last fraction of a millisecond.
int millisecondsUntil(Deadline deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - AwakeClock::now());
    return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), lookEvery).count());
}

// One of the child's two outputs and the bytes read from it. Closed once its end was read.
struct Output {
    UniqueFd readEnd;
    std::string bytes;
};

using Buffer = std::array<char, 64 * 1024>;

bool isTooMuch(const Output& output) {
    return output.bytes.size() > mostOutputBytes;
}

// No error means the end: what could not be read now is read later.
void readAvailable(Output& output, Buffer& buffer) {
    const ssize_t got = ::read(output.readEnd.get(), buffer.data(), buffer.size());
    if (got > 0 && !isTooMuch(output)) output.bytes.append(buffer.data(), static_cast<std::size_t>(got));
    if (got == 0) output.readEnd.close();
}

class Run {
public:
    Run(const std::string& executable, const std::vector<std::string>& arguments) {
        Pipe out = makePipe();
        Pipe err = makePipe();
        for (const UniqueFd* end : {&out.readEnd, &err.readEnd})
            if (::fcntl(end->get(), F_SETFL, O_NONBLOCK) != 0)
                throw std::system_error(errno, std::generic_category());
        child_.emplace(executable, arguments, out.writeEnd, err.writeEnd);
        outputs_[0].readEnd = std::move(out.readEnd);
        outputs_[1].readEnd = std::move(err.readEnd);
        // Our write ends close here: only the child and its own children keep the outputs open now.
    }

    std::variant<CommandResult, CommandProblem> finish(const CommandPatience& patience) {
        bool isCancelled = false;
        waitForChild(deadlineAfter(patience.seconds), [&] {
            isCancelled = isCancelled || (patience.isCancelled && patience.isCancelled());
            return isCancelled;
        });
        const bool isStopped = !child_->hasEnded();
        if (isStopped) {
            child_->terminate();
            waitForChild(AwakeClock::now() + grace, [] { return false; });
        }
        // All that the child itself printed is in the pipes by now; more can come from what it left behind.
        waitForOutputs(AwakeClock::now() + grace);
        if (printedTooMuch()) return CommandProblem::tooMuchOutput;
        if (isStopped) return isCancelled ? CommandProblem::cancelled : CommandProblem::timedOut;
        return CommandResult{child_->exitCode(), text(outputs_[0]), text(outputs_[1])};
    }

private:
    bool outputsEnded() const { return !outputs_[0].readEnd && !outputs_[1].readEnd; }

    bool printedTooMuch() const { return std::any_of(outputs_.begin(), outputs_.end(), isTooMuch); }

    // Both drain the outputs while they wait, so that a full pipe never stalls the child, and look at the
    // clock each time: something that prints without end must not hold us.
    void waitForChild(Deadline deadline, const std::function<bool()>& isEnough) {
        while (!child_->hasEnded() && AwakeClock::now() < deadline && !printedTooMuch() && !isEnough()) {
            if (outputsEnded())
                nap();
            else
                drain(deadline);
        }
    }
    void waitForOutputs(Deadline deadline) {
        while (!outputsEnded() && AwakeClock::now() < deadline) drain(deadline);
    }

    // Waits for the outputs, but not for long, and takes in what has come.
    void drain(Deadline deadline) {
        std::array<pollfd, 2> sources{};
        for (std::size_t i = 0; i < sources.size(); ++i)
            sources[i] = {outputs_[i].readEnd.get(), POLLIN, 0};  // poll leaves closed ones out
        if (::poll(sources.data(), sources.size(), millisecondsUntil(deadline)) <= 0) return;
        for (std::size_t i = 0; i < sources.size(); ++i)
            if (sources[i].revents != 0) readAvailable(outputs_[i], buffer_);
    }

    void nap() {
        const auto now = AwakeClock::now();
        if (yields_ == 0) yieldingEnds_ = now + longestYielding;
        if (yields_++ < mostYields && now < yieldingEnds_) return std::this_thread::yield();
        std::this_thread::sleep_for(nap_);
        nap_ = std::min(2 * nap_, longestNap);
    }

    static std::string text(Output& output) {
        return isUtf8(output.bytes) ? std::move(output.bytes) : repairedUtf8(output.bytes);
    }

    std::optional<ChildProcess> child_;
    std::array<Output, 2> outputs_;
    int yields_ = 0;
    Deadline yieldingEnds_;
    std::chrono::microseconds nap_ = shortestNap;
    Buffer buffer_;
};

}  // namespace

std::variant<CommandResult, CommandProblem> runProcess(const std::string& executable,
                                                       const std::vector<std::string>& arguments,
                                                       const CommandPatience& patience) {
    std::optional<Run> run;
    try {
        run.emplace(executable, arguments);
    } catch (const std::system_error& error) {
        throw CommandError({CommandProblem::cannotStart, error.code().message()});
    }
    return run->finish(patience);
}

}  // namespace brell
