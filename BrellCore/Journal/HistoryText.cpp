#include "BrellCore/Journal/HistoryText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <vector>

#include "BrellCore/Journal/JournalJson.h"
#include "BrellCore/Support/JsonReader.h"

namespace brell {

namespace json = simdjson::ondemand;

namespace {

constexpr std::array<Member<HistoryLine>, 3> lineMembers{
    {{{"at"},
      [](json::value& value, std::string_view, HistoryLine& line) { line.at = readTimeStamp(value); }},
     {{"entry"},
      [](json::value& value, std::string_view, HistoryLine& line) {
          readJournalEntry(value.get_object(), line.entry);
      }},
     {{"event"}, [](json::value& value, std::string_view key, HistoryLine& line) {
          line.event = readEnum<EntryStatus>(value, key);
      }}}};

bool tryReadLine(json::parser& parser, simdjson::padded_string_view text, HistoryLine& line) try {
    json::document document = parser.iterate(text);
    readMembers(document.get_object(), lineMembers, line);
    return isAtEnd(document);
} catch (const std::exception&) {
    return false;
}

bool isWholeJson(json::parser& parser, simdjson::padded_string_view text) try {
    json::document document = parser.iterate(text);
    checkWellFormed(document.get_value());
    return isAtEnd(document);
} catch (const std::exception&) {
    return false;
}

bool isBlank(std::string_view line) {
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

// Of a line that can't be read: it is passed over, and the others still tell their story.
void countLoss(json::parser& parser, simdjson::padded_string_view text, HistoryReading& reading) {
    if (isBlank({text.data(), text.size()})) return;
    ++(isWholeJson(parser, text) ? reading.foreign : reading.torn);
}

// False for a line that is none, which is counted.
bool addLine(json::parser& parser, simdjson::padded_string_view text, HistoryReading& reading) {
    if (tryReadLine(parser, text, reading.lines.emplace_back())) return true;
    reading.lines.pop_back();
    countLoss(parser, text, reading);
    return false;
}

template <class Use>
void forEachLine(const std::string& text, Use&& use) {
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at < end;) {
        const auto* lineEnd =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        if (!lineEnd) lineEnd = end;
        const auto room = text.capacity() - static_cast<std::size_t>(at - text.data());
        use(simdjson::padded_string_view(at, static_cast<std::size_t>(lineEnd - at), room));
        at = lineEnd + 1;
    }
}

// True for a whole line that historyLineText made.
bool endsWithEvent(std::string_view line) {
    if (!line.ends_with("\"}")) return false;
    line.remove_suffix(2);
    const std::size_t quote = line.rfind('"');
    return quote != std::string_view::npos && fromRawValue<EntryStatus>(line.substr(quote + 1)) &&
           line.substr(0, quote).ends_with(",\"event\":");
}

// The identifier of the entry in a line as historyLineText makes it, found without reading the line: under
// the only key "id" that it can have. Empty for any other text.
std::string_view idIn(std::string_view line) {
    constexpr std::string_view key = "id\"", rest = ":\"";
    if (!line.starts_with("{\"at\":\"") || !endsWithEvent(line)) return {};
    if (line.find("\\u") != std::string_view::npos) return {};  // which may spell a key
    const std::size_t place = line.find(key);
    constexpr auto none = std::string_view::npos;
    if (place == none || line.find(key, place + 1) != none) return {};
    const std::string_view behind = line.substr(place + key.size());
    return line[place - 1] == '"' && behind.starts_with(rest) ? behind.substr(rest.size(), 36)
                                                              : std::string_view();
}

}  // namespace

std::string historyLineText(TimeStamp at, const JournalEntry& entry) {
    JsonWriter line(JsonWriter::Layout::compact);
    line.beginObject();
    line.key("at");
    line.string(iso8601(at));
    line.key("entry");
    writeJson(line, entry);
    line.key("event");
    line.string(rawValue(entry.status));
    line.endObject();
    return line.take() + '\n';
}

void readHistoryLines(const std::string& text, std::optional<TimeStamp> cutOff, HistoryReading& reading) {
    json::parser parser;
    forEachLine(text, [&](simdjson::padded_string_view line) {
        if (addLine(parser, line, reading) && cutOff && reading.lines.back().at < *cutOff)
            reading.lines.pop_back();
    });
}

// Backwards: a line is left unread only for the sake of one that could be read.
void readLastLines(const std::string& text, HistoryReading& reading) {
    std::vector<simdjson::padded_string_view> lines;
    forEachLine(text, [&](simdjson::padded_string_view line) { lines.push_back(line); });
    const auto begin = static_cast<std::ptrdiff_t>(reading.lines.size());
    json::parser parser;
    std::string known;  // the entry of the line that was read last
    for (std::size_t i = lines.size(); i-- > 0;)
        if ((known.empty() || idIn(lines[i]) != known) && addLine(parser, lines[i], reading))
            known = reading.lines.back().entry.id.text();
    std::reverse(reading.lines.begin() + begin, reading.lines.end());
}

}  // namespace brell
