// BrellTrust [--sample N] [--jobs N] [--seconds N] [--seed N] [KIND...]
//
// Tries whether a Brell that is stopped or let down anywhere loses anything; script/trust says more.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <limits>
#include <optional>
#include <random>
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
    std::vector<Kind> kinds;
    std::optional<Crowd> crowd;
};

struct Tally {
    std::size_t tried = 0;
    std::size_t failed = 0;
};

std::size_t pointsOf(const Kind& kind, const std::filesystem::path& folder) {
    Stage stage(folder);
    constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
    Share none(never, never - 1);
    for (const Scene& scene : scenes()) {
        stage.prepare(scene);
        kind.attempt(stage, scene, none, [](const std::string&, const Faults&) {});
    }
    return none.seen();
}

// One call, so that lines of several workers never mix.
void printLine(const std::string& line) {
    const std::string whole = line + "\n";
    if (::write(STDOUT_FILENO, whole.data(), whole.size()) < 0) ::_exit(2);
}

Tally work(const Kind& kind, const std::filesystem::path& folder, Share share) {
    Tally tally;
    Stage stage(folder);
    const Report report = [&](const std::string& point, const Faults& faults) {
        ++tally.tried;
        if (faults.empty()) return;
        ++tally.failed;
        for (const std::string& fault : faults) printLine("FAILED " + point + ": " + oneLine(fault));
    };
    for (const Scene& scene : scenes()) {
        stage.prepare(scene);
        kind.attempt(stage, scene, share, report);
    }
    return tally;
}

// Every worker is a process: the calls of threads in one would be watched together.
pid_t startWorker(const Kind& kind, const std::filesystem::path& folder, Share share, int results) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    try {
        const Tally tally = work(kind, folder, share);
        ::_exit(::write(results, &tally, sizeof tally) == sizeof tally ? 0 : 2);
    } catch (const std::exception& error) {
        printLine(std::string("FAILED ") + kind.word + ": the harness itself: " + error.what());
    }
    ::_exit(2);
}

Tally tryAll(const Kind& kind, const Options& options, std::size_t points) {
    const testing::TemporaryFolder folder;
    const std::size_t stride =
        options.sample < points ? points / std::max<std::size_t>(options.sample, 1) : 1;
    std::array<int, 2> results{};
    if (::pipe(results.data()) != 0) throw std::runtime_error("no pipe");
    for (std::size_t job = 0; job < options.jobs; ++job)
        startWorker(kind, folder.path / std::to_string(job), Share(stride * options.jobs, stride * job),
                    results[1]);
    ::close(results[1]);
    Tally all;
    for (Tally one; ::read(results[0], &one, sizeof one) == sizeof one;) {
        all.tried += one.tried;
        all.failed += one.failed;
    }
    ::close(results[0]);
    for (int status = 0; ::wait(&status) > 0;)
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) ++all.failed;
    return all;
}

std::size_t numberIn(const std::string& word) {
    if (word.empty() || word.find_first_not_of("0123456789") != std::string::npos)
        throw std::runtime_error("a whole number is wanted, not \"" + word + "\".");
    const std::size_t number = std::stoul(word);
    if (number == 0) throw std::runtime_error("the number wants to be at least 1.");
    return number;
}

const Kind& kindNamed(const std::string& word) {
    const auto kind =
        std::find_if(kinds.begin(), kinds.end(), [&](const Kind& known) { return word == known.word; });
    if (kind == kinds.end()) throw std::runtime_error("unknown word " + word + ".");
    return *kind;
}

Options optionsFrom(const std::vector<std::string>& words) {
    Options options;
    std::optional<std::size_t> seconds;
    Crowd crowd;
    crowd.seed = std::random_device()() % 1'000'000;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto value = [&] { return numberIn(i + 1 < words.size() ? words[++i] : std::string()); };
        if (words[i] == "--sample") {
            options.sample = value();
            crowd.time = timeInASample;
        } else if (words[i] == "--jobs") {
            options.jobs = value();
        } else if (words[i] == "--seconds") {
            seconds = value();
        } else if (words[i] == "--seed") {
            crowd.seed = value();
        } else if (words[i] == manyAtOnce) {
            options.crowd = crowd;
        } else {
            options.kinds.push_back(kindNamed(words[i]));
        }
    }
    if (seconds) crowd.time = std::chrono::seconds(*seconds);
    const bool isEverything = options.kinds.empty() && !options.crowd;
    if (isEverything) options.kinds.assign(kinds.begin(), kinds.end());
    if (isEverything || options.crowd) options.crowd = crowd;
    return options;
}

bool tryPoints(const Kind& kind, const Options& options) {
    const testing::TemporaryFolder folder;
    const std::size_t points = pointsOf(kind, folder.path);
    const Tally tally = tryAll(kind, options, points);
    printLine(std::to_string(tally.tried) + " of " + std::to_string(points) + " " + kind.points + " tried, " +
              std::to_string(tally.failed) + " failed");
    return tally.failed == 0 && tally.tried > 0;
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
    const Options options = optionsFrom({argv + 1, argv + argc});
    if (!options.kinds.empty() && !testing::systemCallsAreWatched()) {
        std::cerr << "File system calls can't be watched on this system.\n";
        return 2;
    }
    testing::keepFoldersInMemory();
    bool isWell = true;
    for (const Kind& kind : options.kinds) isWell &= tryPoints(kind, options);
    if (options.crowd) isWell &= tryCrowd(*options.crowd);
    return isWell ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << "BrellTrust: " << error.what() << '\n';
    return 2;
}
