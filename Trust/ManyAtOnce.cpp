#include "Trust/ManyAtOnce.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <thread>
#include <utility>

#include "Trust/Worker.h"

namespace fs = std::filesystem;

namespace brell::trust {

namespace {

using namespace std::chrono_literals;
using Instant = std::chrono::steady_clock::time_point;

// Longer than anybody waits for the journal.
constexpr std::chrono::seconds patienceAtTheEnd{60};

// What takes a job time takes little here; the deadlines are real ones.
Waiting shortWaiting() {
    return {[] { return std::chrono::steady_clock::now(); },
            [](std::chrono::milliseconds time) { std::this_thread::sleep_for(std::min(time, 1ms)); }};
}

void runProgram(const fs::path& world, const fs::path& diaryFile, std::size_t threads, std::uint64_t seed,
                Instant end) {
    Diary diary(diaryFile);
    Rig shared(world, systemNow, shortWaiting());
    Rig alone(world, systemNow, shortWaiting());
    std::vector<std::thread> running;
    for (std::size_t i = 0; i < threads; ++i)
        running.emplace_back(
            [&, i] { Worker(i + 1 < threads ? shared : alone, diary, seed * 100 + i).workUntil(end); });
    for (std::thread& thread : running) thread.join();
}

// Keeps so many programs at work until the time is over.
class CrowdAtWork {
public:
    CrowdAtWork(const fs::path& world, fs::path diaries, const Crowd& crowd)
        : world_(world),
          diaries_(std::move(diaries)),
          crowd_(crowd),
          end_(std::chrono::steady_clock::now() + crowd.time),
          random_(crowd.seed) {}

    void run() {
        fs::create_directories(diaries_);
        startMissing();
        while (sleepBeforeNextKill()) {
            reap();
            killOne();
            startMissing();
        }
        waitForAll();
    }

    std::size_t started = 0;
    std::size_t killed = 0;
    Faults faults;

private:
    void startMissing() {
        while (running_.size() < crowd_.programs) start();
    }

    void start() {
        const std::uint64_t seed = crowd_.seed * 1000 + started;
        const fs::path diary = diaries_ / std::to_string(started++);
        const pid_t child = ::fork();
        if (child < 0) throw std::runtime_error("no process");
        if (child > 0) {
            running_.push_back(child);
            return;
        }
        try {
            runProgram(world_, diary, crowd_.threads, seed, end_);
            ::_exit(0);
        } catch (const std::exception& error) {
            Diary(diary).fault(std::string("a program ended: ") + error.what());
        }
        ::_exit(1);
    }

    // False when the time is over.
    bool sleepBeforeNextKill() {
        const Instant next =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(100 + random_() % 900);
        std::this_thread::sleep_until(std::min(next, end_));
        return next < end_;
    }

    void killOne() {
        if (running_.empty()) return;
        const auto one = running_.begin() + static_cast<std::ptrdiff_t>(random_() % running_.size());
        int status = 0;
        ::kill(*one, SIGKILL);
        ::waitpid(*one, &status, 0);
        running_.erase(one);
        if (!WIFSIGNALED(status)) noteEnd(status);  // it was faster
        ++killed;
    }

    void noteEnd(int status) {
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
            faults.push_back("a program ended with status " + std::to_string(status));
    }

    // Those that ended by themselves.
    void reap() {
        std::erase_if(running_, [&](pid_t program) {
            int status = 0;
            if (::waitpid(program, &status, WNOHANG) != program) return false;
            noteEnd(status);
            return true;
        });
    }

    void waitForAll() {
        const Instant latest = std::chrono::steady_clock::now() + patienceAtTheEnd;
        while (!running_.empty() && std::chrono::steady_clock::now() < latest) {
            reap();
            std::this_thread::sleep_for(10ms);
        }
        while (!running_.empty()) {
            faults.push_back("a program does not end");
            killOne();
        }
    }

    const fs::path world_;
    const fs::path diaries_;
    const Crowd crowd_;
    const Instant end_;
    std::mt19937_64 random_;
    std::vector<pid_t> running_;
};

std::string nameOf(const Uuid& id, EntryStatus status) {
    return id.text() + " " + std::string(rawValue(status));
}

// The lines of every history file, whether they can be read or not.
std::size_t rawLines(const fs::path& directory) {
    std::size_t lines = 0;
    for (const std::string& name : testing::namesIn(directory)) {
        const std::string text = "\n" + testing::contentsOf(directory / name) + "\n";
        for (std::size_t i = 1; i < text.size(); ++i) lines += text[i] == '\n' && text[i - 1] != '\n' ? 1 : 0;
    }
    return lines;
}

std::size_t leftovers(const fs::path& directory) {
    const std::set<std::string> names = testing::namesIn(directory);
    return static_cast<std::size_t>(std::count_if(
        names.begin(), names.end(), [](const std::string& name) { return name.ends_with(".tmp"); }));
}

// What the journal and the history hold after everything.
class Records {
public:
    explicit Records(const fs::path& directory)
        : journal_(Journal::open(directory)), entries(journal_->all()), lines(journal_->history()) {
        torn = rawLines(journal_->historyDirectory()) - lines.size();
        for (const JournalEntry& entry : entries) statuses_[entry.id] = entry.status;
        for (const HistoryLine& line : lines) ++events_[nameOf(line.entry.id, line.event)];
    }

    Faults withoutWhatWasTold(const Diaries& diaries) const {
        Faults faults;
        for (const auto& [id, status] : diaries.told) {
            const auto entry = statuses_.find(id);
            if (entry == statuses_.end())
                faults.push_back("told, and not in the journal: " + nameOf(id, status));
            else if (entry->second != status && entry->second != EntryStatus::restored)
                faults.push_back("told " + nameOf(id, status) + ", now " + nameOf(id, entry->second));
            if (!events_.contains(nameOf(id, status)))
                faults.push_back("told, and not in the history: " + nameOf(id, status));
        }
        return faults;
    }

    Faults entriesOnlyInHistory() const {
        Faults faults;
        for (const HistoryLine& line : lines)
            if (!statuses_.contains(line.entry.id))
                faults.push_back("only in the history: " + nameOf(line.entry.id, line.event));
        return faults;
    }

    Faults doubledLines() const {
        Faults faults;
        std::map<std::string, const HistoryLine*> seen;
        for (const HistoryLine& line : lines) {
            const auto [known, isNew] = seen.emplace(nameOf(line.entry.id, line.event), &line);
            if (!isNew && known->second->entry == line.entry)
                faults.push_back("twice in the history: " + known->first);
        }
        return faults;
    }

    // A program that is killed between saving an entry and its line leaves none.
    std::size_t missingLines() const {
        std::size_t missing = 0;
        for (const auto& [id, status] : statuses_) {
            if (!events_.contains(nameOf(id, EntryStatus::capturing))) ++missing;
            if (status != EntryStatus::capturing && !events_.contains(nameOf(id, status))) ++missing;
        }
        return missing;
    }

private:
    const std::unique_ptr<Journal> journal_;
    std::map<Uuid, EntryStatus> statuses_;
    std::map<std::string, std::size_t> events_;

public:
    const std::vector<JournalEntry> entries;
    const std::vector<HistoryLine> lines;
    std::size_t torn = 0;
};

void expectAtMost(Faults& faults, std::size_t most, std::size_t found, const std::string& what) {
    if (found > most)
        faults.push_back(std::to_string(found) + " " + what + ", and only " + std::to_string(most) +
                         " kills");
}

std::string summaryOf(const CrowdAtWork& work, const Crowd& crowd, const Diaries& diaries,
                      const Records& records) {
    const auto text = [](std::size_t number) { return std::to_string(number); };
    return text(diaries.done) + " operations done and " + text(diaries.refused) + " refused in " +
           std::to_string(crowd.time.count()) + " s by " + text(crowd.programs) + " programs of " +
           text(crowd.threads) + " threads, " + text(work.killed) + " killed and replaced (seed " +
           std::to_string(crowd.seed) + "); " + text(records.entries.size()) + " entries, " +
           text(records.lines.size()) + " lines of history, " + text(records.missingLines()) + " missing, " +
           text(records.torn) + " torn, " + text(diaries.drifted.size()) + " half undone";
}

}  // namespace

CrowdReport tryManyAtOnce(const fs::path& folder, const Crowd& crowd) {
    Stage stage(folder);
    stage.prepare({"many at once", [](Rig&) {}, {}});
    const SampleMac mac(stage.world());
    const fs::path journalDirectory = Journal::defaultDirectory(mac.home());

    CrowdAtWork work(stage.world(), folder / "diaries", crowd);
    work.run();
    const Diaries diaries = readDiaries(folder / "diaries");
    const Records records(journalDirectory);

    Faults faults = work.faults;
    append(faults, diaries.faults);
    append(faults, records.withoutWhatWasTold(diaries));
    append(faults, records.entriesOnlyInHistory());
    append(faults, records.doubledLines());
    expectAtMost(faults, work.killed, records.missingLines() + records.torn, "lines of history lost");
    expectAtMost(faults, work.killed, diaries.drifted.size(), "changes half undone");
    expectAtMost(faults, work.killed, leftovers(journalDirectory) + leftovers(mac.preferences()),
                 "temporary files left");
    append(faults, judge(stage, {}));
    return {summaryOf(work, crowd, diaries, records), std::move(faults)};
}

}  // namespace brell::trust
