#include "Trust/ManyAtOnce.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <thread>

#include "Trust/Worker.h"

namespace brell::trust {

namespace {

using namespace std::chrono_literals;
using Instant = std::chrono::steady_clock::time_point;

// Longer than any program waits for the journal.
constexpr std::chrono::seconds patienceAtTheEnd{60};

// A job that takes its time takes little here; the deadlines are real ones.
Waiting shortWaiting() {
    return {AwakeClock::now,
            [](std::chrono::milliseconds time) { std::this_thread::sleep_for(std::min(time, 1ms)); }};
}

void runProgram(const fs::path& world, Diary& diary, std::size_t threads, std::uint64_t seed, Instant end) {
    Rig shared(world, systemNow, shortWaiting());
    Rig alone(world, systemNow, shortWaiting());
    std::vector<std::thread> running;
    for (std::size_t i = 0; i < threads; ++i)
        running.emplace_back(workUntil, end, std::ref(i + 1 < threads ? shared : alone), std::ref(diary),
                             seed * 100 + i);
    for (std::thread& thread : running) thread.join();
}

// Keeps so many programs at work until the time is over.
struct CrowdAtWork {
    const fs::path world, diaries;
    const Crowd crowd;
    const Instant end = std::chrono::steady_clock::now() + crowd.time;
    std::mt19937_64 random{crowd.seed};
    std::vector<pid_t> running = {};
    std::size_t started = 0, killed = 0;
    Faults faults = {};

    void run() {
        fs::create_directories(diaries);
        while (running.size() < crowd.programs) start();
        for (;;) {
            const Instant next =
                std::chrono::steady_clock::now() + std::chrono::milliseconds(100 + random() % 900);
            std::this_thread::sleep_until(std::min(next, end));
            if (next >= end) break;
            killOne();
            start();
        }
        for (const pid_t program : running) noteEnd(program);
    }

    void start() {
        const std::uint64_t seed = crowd.seed * 1000 + started;
        const fs::path diaryFile = diaries / std::to_string(started++);
        const pid_t child = ::fork();
        if (child < 0) throw std::runtime_error("no process");
        if (child > 0) {
            running.push_back(child);
            return;
        }
        ::alarm(static_cast<unsigned>((crowd.time + patienceAtTheEnd).count()));  // stops one that never ends
        Diary diary(diaryFile);
        try {
            runProgram(world, diary, crowd.threads, seed, end);
            ::_exit(0);
        } catch (const std::exception& error) {
            diary.fault(std::string("a program ended: ") + error.what());
        }
        ::_exit(1);
    }

    void killOne() {
        const auto one = running.begin() + static_cast<std::ptrdiff_t>(random() % running.size());
        ::kill(*one, SIGKILL);
        noteEnd(*one, SIGKILL);
        running.erase(one);
        ++killed;
    }

    void noteEnd(pid_t program, int expectedSignal = 0) {
        int status = 0;
        ::waitpid(program, &status, 0);
        if (WIFEXITED(status) ? WEXITSTATUS(status) != 0 : WTERMSIG(status) != expectedSignal)
            faults.push_back("a program ended with status " + std::to_string(status));
    }
};

std::string nameOf(const Uuid& id, EntryStatus status) {
    return id.text() + " " + std::string(rawValue(status));
}

// The lines of every history file that hold something, whether they can be read or not.
std::size_t rawLines(const fs::path& directory) {
    std::size_t count = 0;
    for (const std::string& name : testing::namesIn(directory)) {
        std::istringstream lines(testing::contentsOf(directory / name));
        for (std::string line; std::getline(lines, line);) count += line.empty() ? 0 : 1;
    }
    return count;
}

std::size_t leftovers(const fs::path& directory) {
    const std::set<std::string> names = testing::namesIn(directory);
    return static_cast<std::size_t>(std::count_if(
        names.begin(), names.end(), [](const std::string& name) { return name.ends_with(".tmp"); }));
}

// The journal and the history after everything.
struct Records {
    std::map<Uuid, EntryStatus> statuses;
    std::map<std::string, JournalEntry> events;  // by the names of their lines
    std::size_t lost = 0;                        // lines of history that are missing or torn
    Faults faults;
};

Records recordsIn(const fs::path& directory) {
    const auto journal = Journal::open(directory);
    Records records;
    for (const JournalEntry& entry : journal->all()) records.statuses[entry.id] = entry.status;
    const std::vector<HistoryLine> lines = journal->history();
    records.lost = rawLines(journal->historyDirectory()) - lines.size();
    for (const HistoryLine& line : lines) {
        const std::string name = nameOf(line.entry.id, line.event);
        if (!records.statuses.contains(line.entry.id))
            records.faults.push_back("only in the history: " + name);
        const auto [known, isNew] = records.events.emplace(name, line.entry);
        if (!isNew && known->second == line.entry) records.faults.push_back("twice in the history: " + name);
    }
    // A program that is killed between saving an entry and its line leaves none.
    for (const auto& [id, status] : records.statuses)
        for (const EntryStatus saved : std::set{EntryStatus::capturing, status})
            if (!records.events.contains(nameOf(id, saved))) ++records.lost;
    return records;
}

// Everything that a program was told is in both.
Faults checkTold(const Records& records, const Diaries& diaries) {
    Faults faults;
    for (const auto& [id, status] : diaries.told) {
        const auto entry = records.statuses.find(id);
        if (entry == records.statuses.end())
            faults.push_back("told, and not in the journal: " + nameOf(id, status));
        else if (entry->second != status && entry->second != EntryStatus::restored)
            faults.push_back("told " + nameOf(id, status) + ", now " + nameOf(id, entry->second));
        if (!records.events.contains(nameOf(id, status)))
            faults.push_back("told, and not in the history: " + nameOf(id, status));
    }
    return faults;
}

}  // namespace

CrowdReport tryManyAtOnce(const fs::path& folder, const Crowd& crowd) {
    Stage stage(folder);
    stage.prepare({"many at once", [](Rig&) {}, {}});
    const SampleMac mac(stage.world());
    const fs::path directory = stage.journalDirectory();

    CrowdAtWork work{stage.world(), folder / "diaries", crowd};
    work.run();
    const Diaries diaries = readDiaries(work.diaries);
    const Records records = recordsIn(directory);

    Faults faults = work.faults;
    append(faults, diaries.faults);
    append(faults, records.faults);
    append(faults, checkTold(records, diaries));
    const std::pair<std::size_t, const char*> atMostOneAKill[] = {
        {records.lost, "lines of history lost"},
        {diaries.drifted.size(), "changes half undone"},
        {leftovers(directory) + leftovers(mac.preferences()), "temporary files left"}};
    for (const auto& [found, what] : atMostOneAKill)
        if (found > work.killed)
            faults.push_back(std::to_string(found) + " " + what + " by " + std::to_string(work.killed) +
                             " kills");
    append(faults, judge(stage, {}));
    return {std::to_string(diaries.done) + " operations done in " + std::to_string(crowd.time.count()) +
                " s by " + std::to_string(crowd.programs) + " programs of " + std::to_string(crowd.threads) +
                " threads, " + std::to_string(work.killed) + " killed and replaced (seed " +
                std::to_string(crowd.seed) + ")",
            std::move(faults)};
}

}  // namespace brell::trust
