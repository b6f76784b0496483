#include "BrellCore/Journal/JournalText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <stdexcept>
#include <utility>

#include "BrellCore/Journal/JournalError.h"
#include "BrellCore/Journal/JournalJson.h"
#include "BrellCore/Support/JsonReader.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace json = simdjson::ondemand;

namespace {

constexpr std::string_view beforeEntries = "{\n  \"entries\" : [\n    ";
constexpr std::string_view betweenEntries = ",\n    ";
constexpr std::string_view afterEntries = "\n  ],\n  \"format\" : 1\n}\n";
constexpr int entryDepth = 2;
constexpr std::array<KnownKey, 2> fileKeys{{{"entries"}, {"format"}}};

JournalError newerFormat(std::int64_t format) {
    return JournalError({JournalFailure::Kind::cannotRead,
                         fmt::format("the journal was written by a newer Brell (format {}); update Brell "
                                     "before changing anything",
                                     format)});
}

// An entry that is found by its identifier must be the only one.
void checkUnique(const std::vector<JournalEntry>& entries) {
    std::vector<Uuid> ids;
    ids.reserve(entries.size());
    for (const JournalEntry& entry : entries) ids.push_back(entry.id);
    std::sort(ids.begin(), ids.end());
    const auto twin = std::adjacent_find(ids.begin(), ids.end());
    if (twin != ids.end()) throw std::runtime_error("the entry " + twin->text() + " stands twice");
}

// The parser's own words mean nothing to a user with a damaged journal.
std::string reasonOf(const std::exception& error) {
    if (dynamic_cast<const simdjson::simdjson_error*>(&error))
        return "it is damaged, or something else than Brell wrote it";
    // The text that it quotes may end with a stop. An excerpt's three stay.
    std::string_view reason = error.what();
    if (reason.ends_with('.') && !reason.ends_with("...")) reason.remove_suffix(1);
    return std::string(reason);
}

std::string encoded(const JournalEntry& entry) {
    JsonWriter json(JsonWriter::Layout::pretty, entryDepth);
    writeJson(json, entry);
    return json.take();
}

}  // namespace

JournalText JournalText::read(std::string text) {
    JournalText journal;
    journal.text_ = std::move(text);
    try {
        journal.parse();
    } catch (const JournalError&) {
        throw;
    } catch (const std::exception& error) {
        const auto format = formatOf(journal.text_);
        if (format && *format > formatVersion) throw newerFormat(*format);
        throw std::runtime_error(reasonOf(error));
    }
    return journal;
}

std::string JournalText::of(const std::vector<JournalEntry>& entries) {
    constexpr std::size_t bytesOfMost = 1024;  // room that stays untouched costs nothing
    JsonWriter json(JsonWriter::Layout::pretty);
    json.reserve(entries.size() * bytesOfMost);
    json.beginObject();
    json.key(fileKeys[0].name);
    json.beginArray();
    for (const JournalEntry& entry : entries) writeJson(json, entry);
    json.endArray();
    json.key(fileKeys[1].name);
    json.integer(formatVersion);
    json.endObject();
    return json.take() + "\n";
}

std::string_view JournalText::textOf(std::size_t index) const {
    return std::string_view(text_).substr(spans_[index].begin, spans_[index].length);
}

// Puts the texts of entries together to a whole file.
class JournalText::Composer {
public:
    Composer(std::size_t entries, std::size_t bytes) {
        text.reserve(bytes + 256);
        spans.reserve(entries);
    }
    void add(std::string_view entry) {
        text += spans.empty() ? beforeEntries : betweenEntries;
        spans.push_back({text.size(), entry.size()});
        text += entry;
    }
    void end() { text += afterEntries; }

    std::string text;
    std::vector<Span> spans;
};

// Only the changed entry is encoded.
JournalText::Change JournalText::changed(const JournalEntry& entry) const {
    const auto place = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const JournalEntry& known) { return known.id == entry.id; });
    const auto index = static_cast<std::size_t>(place - entries_.begin());
    const std::string own = encoded(entry);
    Composer whole(spans_.size() + 1, text_.size() + own.size());
    for (std::size_t i = 0; i < std::max(spans_.size(), index + 1); ++i)
        whole.add(i == index ? std::string_view(own) : textOf(i));
    whole.end();
    return {std::move(whole.text), std::move(whole.spans), index, entry};
}

void JournalText::take(Change change) {
    if (change.index == entries_.size())
        entries_.push_back(std::move(change.entry));
    else
        entries_[change.index] = std::move(change.entry);
    spans_ = std::move(change.spans);
    text_ = std::move(change.text);
}

void JournalText::keepActiveOf(const JournalText& older) {
    std::set<Uuid> known;
    std::vector<std::size_t> unknown;
    for (std::size_t i = 0; i < older.entries_.size(); ++i) {
        const JournalEntry& entry = older.entries_[i];
        // A journal that only grew has each entry in its place.
        if (!entry.isActive() || (i < entries_.size() && entries_[i].id == entry.id)) continue;
        if (known.empty())
            for (const JournalEntry& here : entries_) known.insert(here.id);
        if (!known.contains(entry.id)) unknown.push_back(i);
    }
    if (unknown.empty()) return;
    Composer whole(spans_.size() + unknown.size(), text_.size() + older.text_.size());
    std::vector<JournalEntry> entries;
    entries.reserve(entries_.size() + unknown.size());
    for (const std::size_t i : unknown) {
        whole.add(older.textOf(i));
        entries.push_back(older.entries_[i]);
    }
    for (std::size_t i = 0; i < spans_.size(); ++i) whole.add(textOf(i));
    std::move(entries_.begin(), entries_.end(), std::back_inserter(entries));
    entries_ = std::move(entries);
    whole.end();
    text_ = std::move(whole.text);
    spans_ = std::move(whole.spans);
}

void JournalText::parse() {
    std::int64_t format = 0;
    KnownKeys known(fileKeys);
    json::parser parser;
    json::document document = startReading(parser, text_);
    for (json::field field : document.get_object()) {
        const KnownKey* key = known.met(field);
        if (!key) checkWellFormed(field.value());
        if (key && key->name == "format") format = field.value().get_int64();
        if (key && key->name == "entries")
            for (auto element : field.value().get_array()) {
                json::object object = element.get_object();
                const std::string_view raw = stripped(object.raw_json().value());
                object.reset();
                readJournalEntry(object, entries_.emplace_back());
                spans_.push_back({static_cast<std::size_t>(raw.data() - text_.data()), raw.size()});
            }
    }
    checkUnique(entries_);
    if (!isAtEnd(document)) throw std::runtime_error("something follows after its end");
    known.checkAllMet();
    if (format > formatVersion) throw newerFormat(format);
    if (format < 0) throw std::runtime_error(fmt::format("there is no format {}", format));
}

}  // namespace brell
