#include "BrellCore/Journal/Journal.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "BrellCore/Journal/JournalJson.h"
#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/JsonReader.h"
#include "BrellCore/Support/SystemMessage.h"
#include "BrellCore/Support/Text.h"

namespace fs = std::filesystem;

namespace brell {

namespace json = simdjson::ondemand;

namespace {

using Kind = JournalFailure::Kind;

constexpr std::chrono::seconds patience{30};
constexpr std::size_t mostBytes = 1024 * 1024 * 1024;

constexpr std::string_view beforeEntries = "{\n  \"entries\" : [\n    ";
constexpr std::string_view betweenEntries = ",\n    ";
constexpr std::string_view afterEntries = "\n  ],\n  \"format\" : 1\n}\n";
constexpr int entryDepth = 2;

JournalError cannotRead(std::string text) {
    return JournalError({Kind::cannotRead, std::move(text)});
}
JournalError cannotWrite(std::string text) {
    return JournalError({Kind::cannotWrite, std::move(text)});
}

JournalError newerFormat(std::int64_t format) {
    return cannotRead(
        fmt::format("the journal was written by a newer Brell (format {}); update Brell before "
                    "changing anything",
                    format));
}

JournalError cannotWrite(const ReplaceFailure& failure) {
    switch (failure.step) {
        case ReplaceStep::create: return cannotWrite("cannot create " + failure.path.string());
        case ReplaceStep::rename: return cannotWrite("rename failed: " + systemMessage(failure.code));
        case ReplaceStep::createFolder:
        case ReplaceStep::write:
        case ReplaceStep::synchronize: break;
    }
    return cannotWrite(failure.path.string() + ": " + systemMessage(failure.code));
}

// The file's format when it is one that this version does not know; looked for even in a file of another
// shape.
std::optional<std::int64_t> newerFormatOf(const std::string& text) try {
    json::parser parser;
    json::document document = startReading(parser, text);
    const std::int64_t format = document["format"].get_int64();
    return format > Journal::formatVersion ? std::optional(format) : std::nullopt;
} catch (const simdjson::simdjson_error&) {
    return std::nullopt;
}

// Of the file just saved. Nothing when the system can't say, so that the next operation reads the file again:
// what is saved can't be taken back by a failure any more.
std::optional<FileIdentity> identityOfSaved(const fs::path& file) try {
    return identityOf(file);
} catch (const ReadError&) {
    return std::nullopt;
}

// Saving replaces the file itself, not the link that leads to it.
fs::path withoutLink(const fs::path& file) {
    std::error_code failed;
    fs::path target = fs::is_symlink(file, failed) ? fs::canonical(file, failed) : fs::path();
    return failed || target.empty() ? file : target;
}

// A link to nowhere is no journal that was never written.
void checkNoLinkAt(const fs::path& file) {
    std::error_code failed;
    const fs::file_type type = fs::symlink_status(file, failed).type();
    if (type == fs::file_type::symlink)
        throw cannotRead(file.string() + ": it is a link to a file that is not there");
    if (type == fs::file_type::none) throw cannotRead(file.string() + ": " + failed.message());
}

void checkExcludes(const FileLock& lock) try {
    if (!lock.stillExcludes()) throw cannotWrite("its lock file was removed meanwhile");
} catch (const JournalError&) {
    throw;
} catch (const std::runtime_error& error) {
    throw cannotWrite(error.what());
}

// What is found by its identifier must be the only one.
void checkUnique(const std::vector<JournalEntry>& entries) {
    std::vector<Uuid> ids;
    ids.reserve(entries.size());
    for (const JournalEntry& entry : entries) ids.push_back(entry.id);
    std::sort(ids.begin(), ids.end());
    const auto twin = std::adjacent_find(ids.begin(), ids.end());
    if (twin != ids.end()) throw std::runtime_error("the entry " + twin->text() + " stands twice");
}

std::string encoded(const JournalEntry& entry) try {
    JsonWriter json(JsonWriter::Layout::pretty, entryDepth);
    writeJson(json, entry);
    return json.take();
} catch (const JsonWriteError& error) {
    throw cannotWrite(error.what());
}

}  // namespace

std::string describe(const JournalFailure& failure) {
    switch (failure.kind) {
        case Kind::cannotWrite:
            return "The change journal could not be written: " + failure.text + ". Nothing was changed.";
        case Kind::cannotRead: return "The change journal could not be read: " + failure.text + ".";
    }
    return {};
}

JournalError::~JournalError() = default;

fs::path Journal::defaultDirectory(const fs::path& home) {
    return home / "Library" / "Application Support" / "Corvane Brell";
}

std::unique_ptr<Journal> Journal::open(const fs::path& directory, Clock clock) {
    return std::make_unique<Journal>(directory / "journal.json", directory / "history", std::move(clock));
}

Journal::Journal(const fs::path& file, fs::path historyDirectory, Clock clock)
    : file_(withoutLink(file)), historyDirectory_(std::move(historyDirectory)), clock_(std::move(clock)) {
    refreshLocked();
}

std::vector<JournalEntry> Journal::all() {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    return contents_.entries;
}

std::vector<JournalEntry> Journal::active() {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    std::vector<JournalEntry> found;
    std::copy_if(contents_.entries.begin(), contents_.entries.end(), std::back_inserter(found),
                 [](const JournalEntry& entry) { return entry.isActive(); });
    return found;
}

std::vector<JournalEntry> Journal::entries(EntryStatus status) {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    std::vector<JournalEntry> found;
    std::copy_if(contents_.entries.begin(), contents_.entries.end(), std::back_inserter(found),
                 [&](const JournalEntry& entry) { return entry.status == status; });
    return found;
}

std::optional<JournalEntry> Journal::entry(const Uuid& id) {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    for (const JournalEntry& entry : contents_.entries)
        if (entry.id == id) return entry;
    return std::nullopt;
}

std::optional<JournalEntry> Journal::activeEntry(std::string_view tweakID) {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    for (const JournalEntry& entry : contents_.entries)
        if (entry.isActive() && entry.tweakID == tweakID) return entry;
    return std::nullopt;
}

Journal::Exclusive Journal::exclusive() try {
    auto lock = FileLock::acquire(file_.parent_path() / ".journal.lock", patience);
    if (!lock)
        throw cannotWrite(
            fmt::format("another Brell has been busy with it for {} seconds", patience.count()));
    return Exclusive(std::move(*lock));
} catch (const JournalError&) {
    throw;
} catch (const std::runtime_error& error) {
    throw cannotWrite(error.what());
}

void Journal::upsert(const JournalEntry& entry, const Exclusive& held) {
    const std::lock_guard lock(mutex_);
    checkExcludes(held.lock_);
    refreshLocked();
    saveLocked(entry);
    appendHistoryLine(historyDirectory_, clock_(), entry);
}

std::vector<HistoryLine> Journal::history(std::optional<int> days) const {
    std::optional<TimeStamp> cutOff;
    if (days) cutOff = clock_() - std::chrono::seconds(86400) * *days;
    return readHistory(historyDirectory_, cutOff);
}

Journal::Contents Journal::parsed(const std::string& text) {
    Contents contents;
    std::optional<std::int64_t> format;
    bool hasEntries = false;
    json::parser parser;
    json::document document = startReading(parser, text);
    for (auto field : document.get_object()) {
        const std::string_view key = field.unescaped_key();
        if ((key == "format" && format) || (key == "entries" && hasEntries))
            throw std::runtime_error(fmt::format("the key \"{}\" stands twice", key));
        if (key == "format") format = field.value().get_int64();
        if (key != "entries") continue;
        hasEntries = true;
        for (auto element : field.value().get_array()) {
            json::object object = element.get_object();
            const std::string_view raw = trimmed(object.raw_json().value());
            object.reset();
            contents.entries.push_back(readJournalEntry(object));
            contents.spans.push_back({static_cast<std::size_t>(raw.data() - text.data()), raw.size()});
        }
    }
    checkUnique(contents.entries);
    if (!isAtEnd(document)) throw std::runtime_error("something follows after its end");
    if (!hasEntries) throw std::runtime_error("the key \"entries\" is missing");
    if (!format) throw std::runtime_error("the key \"format\" is missing");
    if (*format > formatVersion) throw newerFormat(*format);
    if (*format < 0) throw std::runtime_error(fmt::format("there is no format {}", *format));
    return contents;
}

void Journal::refreshLocked() try {
    const auto identity = identityOf(file_);
    // A file that is gone does not empty the list: what undoes changes is kept, and saved again with the
    // next.
    if (!identity) checkNoLinkAt(file_);
    if (!identity || identity == contents_.identity) return;
    auto read = readFile(file_, mostBytes, simdjson::SIMDJSON_PADDING);
    if (!read) return;
    try {
        Contents fresh = parsed(read->bytes);
        fresh.text = std::move(read->bytes);
        fresh.identity = read->identity;
        contents_ = std::move(fresh);
    } catch (const JournalError&) {
        throw;
    } catch (const std::exception& error) {
        if (const auto format = newerFormatOf(read->bytes)) throw newerFormat(*format);
        throw cannotRead(file_.string() + ": " + error.what());
    }
} catch (const ReadError& error) {
    throw cannotRead(error.failure().path.string() + ": " + error.failure().reason);
}

// Only the changed entry is encoded; every other keeps its text.
void Journal::saveLocked(const JournalEntry& entry) try {
    const auto place = std::find_if(contents_.entries.begin(), contents_.entries.end(),
                                    [&](const JournalEntry& known) { return known.id == entry.id; });
    const auto index = static_cast<std::size_t>(place - contents_.entries.begin());
    const std::string changed = encoded(entry);

    std::string text;
    std::vector<Span> spans;
    text.reserve(contents_.text.size() + changed.size() + 256);
    spans.reserve(contents_.spans.size() + 1);
    text += beforeEntries;
    for (std::size_t i = 0; i < std::max(contents_.spans.size(), index + 1); ++i) {
        if (i > 0) text += betweenEntries;
        const std::size_t begin = text.size();
        if (i == index)
            text += changed;
        else
            text.append(contents_.text, contents_.spans[i].begin, contents_.spans[i].length);
        spans.push_back({begin, text.size() - begin});
    }
    text += afterEntries;

    replaceFile(file_, text, Durability::powerCut);
    if (place == contents_.entries.end())
        contents_.entries.push_back(entry);
    else
        *place = entry;
    contents_.spans = std::move(spans);
    contents_.text = std::move(text);
    contents_.identity = identityOfSaved(file_);
} catch (const ReplaceError& error) {
    throw cannotWrite(error.failure());
}

}  // namespace brell
