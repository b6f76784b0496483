// The background task database and the list made of it, at the size of the busiest machines; and a command.
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "Benchmarks/Bare.h"
#include "Benchmarks/BigHome.h"
#include "Benchmarks/Pairs.h"
#include "Benchmarks/RunToEnd.h"
#include "BrellCore/Background/LoginItems.h"
#include "BrellCore/Background/RunProcess.h"

namespace {

using namespace brell;

// How time grows is measured over equal amounts of work: a short run would escape the interruptions that a
// long one meets.
constexpr std::size_t few = 1'000, many = 10'000;
constexpr int tenfold = 10;
constexpr std::uint32_t uid = 501;

BTMDump parsed(const std::string& text, std::size_t items) {
    auto dump = BTMDumpParser::parse(text);
    if (!dump || dump->items(uid).size() != items) throw std::runtime_error("items of the dump are missing");
    return *std::move(dump);
}

std::size_t splitIntoLines(const std::string& text) {
    const char* const end = text.data() + text.size();
    std::size_t lines = 0;
    for (const char* at = text.data(); at < end; ++lines) {
        const auto* lineEnd =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        at = lineEnd + 1;
    }
    return lines;
}

void compareDump(PairReport& report) {
    const std::string fewText = sampleDump(few), manyText = sampleDump(many);
    std::size_t lines = 0;
    report.compare(
        {.name = "dump of 10,000 items", .limit = 8, .callsPerMeasurement = 4},
        [&] { parsed(manyText, many); }, [&] { lines += splitIntoLines(manyText); });
    if (lines == 0) throw std::runtime_error("no line was counted");
    report.compare(
        {.name = "dump, 10,000 items over 10 x 1,000", .limit = 12.0 / tenfold},
        [&] { parsed(manyText, many); },
        [&] {
            for (int i = 0; i < tenfold; ++i) parsed(fewText, few);
        });
}

// Half of the records are known to the database, so that both kinds of row are made.
std::vector<LaunchAgentRecord> sampleRecords(std::size_t count) {
    std::vector<LaunchAgentRecord> records;
    for (std::size_t i = 0; i < count; ++i) {
        LaunchAgentRecord record{};
        const std::string label = sampleLabel(count / 2 + i);
        record.plist.path = sampleJobFile(sampleHome, count / 2 + i).string();
        record.plist.label = label;
        record.plist.program = "/Applications/Example.app/Contents/MacOS/helper";
        record.plist.runAtLoad = true;
        records.push_back(record);
    }
    return records;
}

void compareMerge(PairReport& report) {
    const BTMDump fewItems = parsed(sampleDump(few), few), manyItems = parsed(sampleDump(many), many);
    const auto fewRecords = sampleRecords(few), manyRecords = sampleRecords(many);
    const auto merge = [](const auto& records, const auto& items) {
        if (LoginItemsMerger::merge(records, {}, &items, uid).size() <= records.size())
            throw std::runtime_error("rows are missing");
    };
    report.compare(
        {.name = "merge, 10,000 of each over 10 x 1,000", .limit = 20.0 / tenfold},
        [&] { merge(manyRecords, manyItems); },
        [&] {
            for (int i = 0; i < tenfold; ++i) merge(fewRecords, fewItems);
        });
}

// Starts the program with no input and each of its outputs in a pipe, and reads these to their ends.
void spawnAndDrain(const char* program) {
    int out[2], err[2];
    for (int* pipe : {out, err}) {
        bare::checked(::pipe(pipe), "pipe");
        for (const int end : {pipe[0], pipe[1]}) ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    char* const arguments[] = {const_cast<char*>(program), nullptr};
    char* const environment[] = {nullptr};
    pid_t child = 0;
    if (posix_spawn(&child, program, &actions, nullptr, arguments, environment) != 0)
        throw std::runtime_error(std::string(program) + " can't be started");
    posix_spawn_file_actions_destroy(&actions);
    for (const int* pipe : {out, err}) {
        ::close(pipe[1]);
        char buffer[4096];
        while (::read(pipe[0], buffer, sizeof buffer) > 0) {
        }
        ::close(pipe[0]);
    }
    ::waitpid(child, nullptr, 0);
}

// One that obeys needs no grace period: it costs as much as one that takes that long.
void compareStopping(PairReport& report) {
    report.compare(
        {.name = "stop a command that does not end", .limit = 1.3},
        [] {
            runProcess("/bin/sleep", {"60"}, {0.1, nullptr});
        },
        [] {
            bare::runToEnd({"/bin/sleep", "0.1"});
        });
}

void compareCommand(PairReport& report) {
    constexpr const char* program = "/usr/bin/true";
    report.compare(
        {.name = "run a command", .limit = 1.3, .pairs = 201, .callsPerMeasurement = 5},
        [&] {
            runProcess(program, {}, {10, nullptr});
        },
        [&] { spawnAndDrain(program); });
}

}  // namespace

int main() {
    return measured([](PairReport& report) {
        compareDump(report);
        compareMerge(report);
        compareCommand(report);
        compareStopping(report);
    });
}
