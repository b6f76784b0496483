// Saving an entry against a bare durable write of the same bytes; reading journal and history against parsing
// the same files with simdjson and doing nothing with what they say.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "Benchmarks/Bare.h"
#include "Benchmarks/BigHome.h"
#include "Benchmarks/Pairs.h"
#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Journal/JournalRebuild.h"

namespace fs = std::filesystem;

namespace {

using namespace brell;

void compareUpsert(PairReport& report, std::size_t entries, double limit) {
    const bare::ScratchFolder ours, raw;
    writeSampleJournal(ours.path / "journal.json", entries);
    const auto journal = Journal::open(ours.path);
    JournalEntry changed = journal->all()[entries / 2];
    journal->upsert(changed);
    const std::string bytes = bare::read(ours.path / "journal.json");
    const std::string temporary = raw.path / ".journal.json.tmp", target = raw.path / "journal.json",
                      folder = raw.path;
    report.compare(
        {.name = "upsert into " + std::to_string(entries) + " entries", .limit = limit, .pairs = 101},
        [&] { journal->upsert(changed); }, [&] { bare::replaceDurably(temporary, target, bytes, folder); });
}

// Both sides read the file and parse it with a new parser: an opened journal keeps none.
void compareOpening(PairReport& report) {
    constexpr std::size_t entries = 10'000;
    const bare::ScratchFolder folder;
    const std::string file = folder.path / "journal.json";
    writeSampleJournal(file, entries);
    report.compare(
        {.name = "open a journal of 10,000 entries", .limit = 2.2}, [&] { Journal::open(folder.path); },
        [&] {
            simdjson::dom::parser parser;
            const simdjson::dom::element document = parser.load(file);
            if (!document.is_object()) throw std::runtime_error("not a journal");
        });
}

std::size_t parsedLines(simdjson::dom::parser& parser, const fs::path& file) {
    const simdjson::padded_string bytes = simdjson::padded_string::load(file.string());
    const char* const end = bytes.data() + bytes.size();
    std::size_t count = 0;
    for (const char* at = bytes.data(); at < end; ++count) {
        const auto* lineEnd =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        // Within the file's padding: no copy is needed.
        const simdjson::dom::element line = parser.parse(at, static_cast<std::size_t>(lineEnd - at), false);
        if (!line.is_object()) throw std::runtime_error("not a history line");
        at = lineEnd + 1;
    }
    return count;
}

// Both sides use one parser for all lines.
void compareHistory(PairReport& report) {
    constexpr std::size_t days = 100, linesPerDay = 1000;
    const bare::ScratchFolder folder;
    writeSampleHistory(folder.path, days, linesPerDay);
    const auto requireAll = [](std::size_t count) {
        if (count != days * linesPerDay) throw std::runtime_error("history lines are missing");
    };
    report.compare(
        {.name = "history of 100,000 lines", .limit = 3.5},
        [&] { requireAll(readHistory(folder.path, std::nullopt).size()); },
        [&] {
            simdjson::dom::parser parser;
            std::size_t count = 0;
            for (const auto& entry : fs::directory_iterator(folder.path))
                count += parsedLines(parser, entry.path());
            requireAll(count);
        });
}

// Ours makes the journal of the history; the bare side reads the one and writes the bytes of the other.
void compareRebuilding(PairReport& report) {
    constexpr std::size_t days = 100, linesPerDay = 1000;
    const bare::ScratchFolder folder;
    const fs::path journal = folder.path / "journal.json";
    writeSampleHistory(folder.path / "history", days, linesPerDay);
    const auto goOn = [](std::uintmax_t, std::uintmax_t) { return true; };
    const RebuildPlan plan = planRebuild(folder.path, goOn).value();
    const std::string bytes = JournalText::of(plan.entries);
    const auto damage = [&] {
        for (const auto& entry : fs::directory_iterator(folder.path))
            if (!entry.is_directory()) fs::remove(entry.path());
        std::ofstream(journal) << "damaged";
    };
    report.compare(
        {.name = "rebuild from 100,000 history lines", .limit = 1.5, .prepare = damage},
        [&] { rebuildJournal(folder.path, plan, goOn); },
        [&] {
            readHistory(folder.path / "history", std::nullopt);
            bare::replaceDurably(journal.string() + ".tmp", journal, bytes, folder.path);
        });
}

}  // namespace

int main() {
    return measured([](PairReport& report) {
        compareUpsert(report, 50, 1.15);
        compareUpsert(report, 1'000, 1.2);
        compareUpsert(report, 10'000, 1.25);
        compareOpening(report);
        compareHistory(report);
        compareRebuilding(report);
    });
}
