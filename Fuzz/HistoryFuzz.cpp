// Any bytes are lines of a history or are passed over, and never take the lines around them along; and a line
// that was read, written again reads back the same.
#include <cstdint>
#include <vector>

#include "BrellCore/Journal/HistoryText.h"
#include "BrellCore/Journal/RebuildPlan.h"
#include "BrellCore/Support/Lines.h"
#include "Fuzz/Checks.h"

namespace {

using namespace brell;
using namespace brell::fuzz;

std::vector<HistoryLine> linesOf(std::string_view text, std::optional<TimeStamp> cutOff = std::nullopt) {
    HistoryReading reading;
    readHistoryLines(padded(text), cutOff, reading);
    return std::move(reading.lines);
}

HistoryLine goodLine() {
    HistoryLine line{*parseIso8601("2026-11-16T00:00:01Z"), EntryStatus::applied, {}};
    line.entry.tweakID = "dock.autohide";
    line.entry.status = line.event;
    line.entry.appliedAt = line.at;
    line.entry.macOSVersion = "26.1.0";
    return line;
}

std::size_t jsonLines(std::string_view text) {
    std::size_t count = 0;
    forEachLine(text, [&](std::string_view line) { count += isJson(line) ? 1 : 0; });
    return count;
}

void checkWrittenAgain(const HistoryLine& line) {
    const auto back = linesOf(historyLineText(line.at, line.entry));
    require(back == std::vector{HistoryLine{line.at, line.entry.status, line.entry}});
}

// The lines read between two good ones, which are there whatever stands between them.
std::vector<HistoryLine> linesAmongOthers(std::string_view text) {
    static const HistoryLine good = goodLine();
    static const std::string goodText = historyLineText(good.at, good.entry);
    std::vector<HistoryLine> lines = linesOf(goodText + std::string(text) + "\n" + goodText);
    require(lines.size() >= 2 && lines.front() == good && lines.back() == good);
    lines.erase(lines.begin());
    lines.pop_back();
    return lines;
}

void checkCutOff(std::string_view text, std::vector<HistoryLine> lines) {
    const TimeStamp cutOff = lines.front().at;
    std::erase_if(lines, [&](const HistoryLine& line) { return line.at < cutOff; });
    require(linesOf(text, cutOff) == lines);
}

// Lines that are not read for the sake of later ones change nothing about how each entry ended.
void checkLastLines(std::string_view text, std::vector<HistoryLine> lines) {
    HistoryReading all, last;
    all.lines = std::move(lines);
    readLastLines(padded(text), last);
    const RebuildPlan expected = planRebuild(std::move(all)), plan = planRebuild(std::move(last));
    require(plan.entries == expected.entries && plan.overtaken == expected.overtaken);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::vector<HistoryLine> lines = linesAmongOthers(text);
    if (lines.empty()) return 0;
    require(lines.size() <= jsonLines(text));
    require(linesOf(text) == lines);
    for (const HistoryLine& line : lines) checkWrittenAgain(line);
    checkLastLines(text, lines);
    checkCutOff(text, lines);
    return 0;
}
