#include "BrellCore/Journal/HistoryText.h"

#include <cstring>
#include <stdexcept>

#include "BrellCore/Journal/JournalJson.h"
#include "BrellCore/Support/JsonReader.h"

namespace brell {

namespace json = simdjson::ondemand;

namespace {

// Reads into the line's place in the list: moving so large a record once more is dear.
void readLine(json::object object, HistoryLine& line) {
    bool hasAt = false, hasEvent = false, hasEntry = false;
    for (auto field : object) {
        const std::string_view key = field.unescaped_key();
        if (key == "at") {
            line.at = readTimeStamp(field.value());
            hasAt = true;
        } else if (key == "entry") {
            line.entry = readJournalEntry(field.value().get_object());
            hasEntry = true;
        } else if (key == "event") {
            line.event = readEnum<EntryStatus>(field.value(), key);
            hasEvent = true;
        } else {
            checkWellFormed(field.value());
        }
    }
    if (!hasAt || !hasEvent || !hasEntry) throw std::runtime_error("a key is missing");
}

bool tryReadLine(json::parser& parser, simdjson::padded_string_view text, HistoryLine& line) try {
    json::document document = parser.iterate(text);
    readLine(document.get_object(), line);
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
    if (isBlank(text)) return;
    ++(isWholeJson(parser, text) ? reading.foreign : reading.torn);
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
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at < end;) {
        const auto* lineEnd =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        if (!lineEnd) lineEnd = end;
        const auto length = static_cast<std::size_t>(lineEnd - at);
        const auto room = text.capacity() - static_cast<std::size_t>(at - text.data());
        const simdjson::padded_string_view lineText(at, length, room);
        HistoryLine& line = reading.lines.emplace_back();
        const bool isRead = tryReadLine(parser, lineText, line);
        if (!isRead || (cutOff && line.at < *cutOff)) reading.lines.pop_back();
        if (!isRead) countLoss(parser, lineText, reading);
        at = lineEnd + 1;
    }
}

}  // namespace brell
