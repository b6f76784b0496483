// BrellTrust [--sample N] [--jobs N] [--seconds N] [--seed N] [KIND...]
//
// Tries whether a Brell that is stopped or let down anywhere loses anything; script/trust says more.

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <atomic>
#include <iostream>
#include <limits>
#include <optional>
#include <random>
#include <set>
#include <thread>

#include "BrellCore/Support/Text.h"
#include "Tests/Support/SystemCalls.h"
#include "Tests/Support/Testing.h"
#include "Trust/ManyAtOnce.h"
#include "Trust/Trial.h"

using namespace brell;
using namespace brell::trust;

namespace {

struct Kind {
    const char* word;
    const char* points;  // what they are called
    void (*attempt)(const Stage&, const Scene&, Share&, const Report&);
};
constexpr std::array kinds{Kind{"crashes", "crash points", tryCrashes},
                           Kind{"power-cuts", "power-cut states", tryPowerCuts},
                           Kind{"file-faults", "file faults", tryFileFaults},
                           Kind{"removals", "removals of the journal", tryRemovals},
                           Kind{"command-faults", "command faults", tryCommandFaults}};

// The one kind that is no matter of points.
constexpr const char* manyAtOnce = "many-at-once";
constexpr std::chrono::seconds timeInASample{4};

struct Options {
    std::size_t sample = std::numeric_limits<std::size_t>::max();  // points of each kind
    std::size_t jobs = std::max(1u, std::thread::hardware_concurrency());
    Crowd crowd;
    std::vector<std::string> words;  // the kinds; empty: all

    bool wants(const std::string& word) const {
        return words.empty() || std::find(words.begin(), words.end(), word) != words.end();
    }
};

// In memory that all workers share.
struct Tally {
    std::atomic<std::size_t> tried = 0;
    std::atomic<std::size_t> failed = 0;
};

// Gives how many points there are.
std::size_t goThrough(const Kind& kind, const std::filesystem::path& folder, Share share,
                      const Report& report) {
    Stage stage(folder);
    for (const Scene& scene : scenes()) {
        stage.prepare(scene);
        kind.attempt(stage, scene, share, report);
    }
    return share.seen();
}

// One call, so that lines of several workers never mix.
void printLine(const std::string& line) {
    const std::string whole = line + "\n";
    if (::write(STDOUT_FILENO, whole.data(), whole.size()) < 0) ::_exit(2);
}

// Every worker is a process: the calls of threads in one would be watched together.
void startWorker(const Kind& kind, const std::filesystem::path& folder, Share share, Tally& tally) {
    if (::fork() != 0) return;
    try {
        goThrough(kind, folder, share, [&](const std::string& point, const Faults& faults) {
            ++tally.tried;
            tally.failed += faults.empty() ? 0 : 1;
            for (const std::string& fault : faults) printLine("FAILED " + point + ": " + oneLine(fault));
        });
        ::_exit(0);
    } catch (const std::exception& error) {
        printLine(std::string("FAILED ") + kind.word + ": the harness itself: " + error.what());
    }
    ::_exit(2);
}

bool tryPoints(const Kind& kind, const Options& options) {
    const testing::TemporaryFolder folder;
    constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
    const std::size_t points = goThrough(kind, folder.path, Share(never, never - 1), nullptr);
    const std::size_t stride = options.sample < points ? points / options.sample : 1;
    void* shared = ::mmap(nullptr, sizeof(Tally), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) throw std::runtime_error("no memory");
    Tally& tally = *new (shared) Tally;
    for (std::size_t job = 0; job < options.jobs; ++job)
        startWorker(kind, folder.path / std::to_string(job), Share(stride * options.jobs, stride * job),
                    tally);
    for (int status = 0; ::wait(&status) > 0;) tally.failed += status == 0 ? 0 : 1;
    printLine(std::to_string(tally.tried) + " of " + std::to_string(points) + " " + kind.points + " tried, " +
              std::to_string(tally.failed) + " failed");
    return tally.failed == 0 && tally.tried > 0;
}

Options optionsFrom(int argc, char** argv) {
    Options options;
    options.crowd.seed = std::random_device()() % 1'000'000;
    std::optional<std::size_t> seconds;
    std::set<std::string> known{manyAtOnce};
    for (const Kind& kind : kinds) known.insert(kind.word);

    const CLI::Range number(1, 1'000'000);
    CLI::App app;
    const CLI::Option* sample = app.add_option("--sample", options.sample)->check(number);
    app.add_option("--jobs", options.jobs)->check(number);
    app.add_option("--seconds", seconds)->check(number);
    app.add_option("--seed", options.crowd.seed)->check(number);
    app.add_option("KIND", options.words)->check(CLI::IsMember(known));
    app.parse(argc, argv);
    if (*sample) options.crowd.time = timeInASample;
    if (seconds) options.crowd.time = std::chrono::seconds(*seconds);
    return options;
}

bool tryCrowd(const Crowd& crowd) {
    const testing::TemporaryFolder folder;
    const CrowdReport report = tryManyAtOnce(folder.path, crowd);
    for (const std::string& fault : report.faults) printLine("FAILED many at once: " + oneLine(fault));
    printLine(report.summary + ", " + std::to_string(report.faults.size()) + " failed");
    return report.faults.empty();
}

}  // namespace

int main(int argc, char** argv) try {
    const Options options = optionsFrom(argc, argv);
    const bool onlyTheCrowd = options.words == std::vector<std::string>{manyAtOnce};
    if (!onlyTheCrowd && !testing::systemCallsAreWatched()) {
        std::cerr << "File system calls can't be watched on this system.\n";
        return 2;
    }
    testing::keepFoldersInMemory();
    bool isWell = true;
    for (const Kind& kind : kinds)
        if (options.wants(kind.word)) isWell &= tryPoints(kind, options);
    if (options.wants(manyAtOnce)) isWell &= tryCrowd(options.crowd);
    return isWell ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << "BrellTrust: " << error.what() << '\n';
    return 2;
}
