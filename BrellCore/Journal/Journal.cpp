#include "BrellCore/Journal/Journal.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "BrellCore/Journal/JournalPlace.h"
#include "BrellCore/Journal/RebuildPlan.h"
#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/JsonReader.h"
#include "BrellCore/Support/JsonWriter.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

using Kind = JournalFailure::Kind;

JournalError cannotRead(std::string text) {
    return JournalError({Kind::cannotRead, std::move(text)});
}
JournalError cannotWrite(std::string text) {
    return JournalError({Kind::cannotWrite, std::move(text)});
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

// Of the file just saved. Nothing when the system can't say, so that the next operation reads the file again:
// what is saved can't be taken back by a failure any more.
std::optional<FileIdentity> identityOfSaved(const fs::path& file) try {
    return identityOf(file);
} catch (const ReadError&) {
    return std::nullopt;
}

// Beside the file itself: the same one whichever link leads there.
fs::path lockFile(const fs::path& journal) {
    return lockIn(withoutLink(journal).parent_path());
}

void checkTrusted(const fs::path& journal) try {
    if (auto reason = whyNotTrusted(sourcesOf(journal))) throw cannotRead(*std::move(reason));
} catch (const std::system_error& error) {
    throw cannotRead(error.what());
}

// Of each tweak while nothing kept others away: an entry that is not known yet is refused beside theirs.
void checkOnlyOne(const JournalEntry& saved, const std::vector<JournalEntry>& entries) {
    bool othersAreActive = false;
    for (const JournalEntry& entry : entries) {
        if (entry.id == saved.id) return;
        if (entry.isActive() && entry.tweakID == saved.tweakID) othersAreActive = true;
    }
    if (othersAreActive) throw cannotWrite("another Brell has changed " + saved.tweakID + " meanwhile");
}

// Gives the action's result; every error in it means that the journal can't be written.
template <class Action>
auto asCannotWrite(Action&& action) try {
    return action();
} catch (const JournalError&) {
    throw;
} catch (const std::runtime_error& error) {
    throw cannotWrite(error.what());
}

}  // namespace

fs::path Journal::defaultDirectory(const fs::path& home) {
    return home / "Library" / "Application Support" / "Corvane Brell";
}

bool Journal::isMarkedForDryRun(const fs::path& directory) {
    std::error_code unknown;
    return fs::exists(fs::symlink_status(directory / dryRunMarkerName, unknown));
}

void Journal::markForDryRun(const fs::path& directory) {
    replaceFile(directory / dryRunMarkerName,
                "The journal in this folder is a dry run's: none of its changes was ever made.\n"
                "Brell uses the folder for nothing else. It can be removed.\n",
                Durability::powerCut);
}

void Journal::checkNoDryRun(const fs::path& directory) {
    if (isMarkedForDryRun(directory))
        throw cannotRead((directory / dryRunMarkerName).string() +
                         " says that it is a dry run's, whose changes were never made");
}

std::unique_ptr<Journal> Journal::open(const fs::path& directory, Clock clock, JournalUse use) {
    return std::make_unique<Journal>(directory / fileName, historyFolder(directory), std::move(clock), use);
}

Journal::Journal(const fs::path& file, fs::path historyDirectory, Clock clock, JournalUse use)
    : file_(file), historyDirectory_(std::move(historyDirectory)), clock_(std::move(clock)), use_(use) {
    checkTrusted(file_);
    refreshLocked();
    checkUse();
}

std::vector<JournalEntry> Journal::all() {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    return text_.entries();
}

std::optional<std::vector<JournalEntry>> Journal::allAtRest() {
    const fs::path lock = lockFile(file_);
    std::error_code unknown;
    if (!fs::exists(lock, unknown)) return all();  // nor can anybody hold one that can't be reached
    std::optional<FileLock> held;
    try {
        held = FileLock::acquire(lock, std::chrono::milliseconds(0));
    } catch (const std::runtime_error&) {
        return all();  // nobody can hold such a lock
    }
    if (!held) return std::nullopt;
    return all();
}

std::vector<JournalEntry> Journal::active() {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    std::vector<JournalEntry> found;
    std::copy_if(text_.entries().begin(), text_.entries().end(), std::back_inserter(found),
                 [](const JournalEntry& entry) { return entry.isActive(); });
    return found;
}

std::vector<Uuid> Journal::activeIDs() {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    std::vector<Uuid> found;
    for (const JournalEntry& entry : text_.entries())
        if (entry.isActive()) found.push_back(entry.id);
    return found;
}

std::vector<JournalEntry> Journal::entries(EntryStatus status) {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    std::vector<JournalEntry> found;
    std::copy_if(text_.entries().begin(), text_.entries().end(), std::back_inserter(found),
                 [&](const JournalEntry& entry) { return entry.status == status; });
    return found;
}

std::optional<JournalEntry> Journal::entry(const Uuid& id) {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    for (const JournalEntry& entry : text_.entries())
        if (entry.id == id) return entry;
    return std::nullopt;
}

// One look at every entry, however many are asked for.
std::vector<JournalEntry> Journal::entries(const std::vector<Uuid>& ids) {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    std::map<Uuid, const JournalEntry*> wanted;
    for (const Uuid& id : ids) wanted.emplace(id, nullptr);
    for (const JournalEntry& entry : text_.entries())
        if (const auto place = wanted.find(entry.id); place != wanted.end()) place->second = &entry;
    std::vector<JournalEntry> found;
    for (const Uuid& id : ids)
        if (const JournalEntry* entry = wanted.at(id)) found.push_back(*entry);
    return found;
}

std::optional<JournalEntry> Journal::activeEntry(std::string_view tweakID) {
    const std::lock_guard lock(mutex_);
    refreshLocked();
    for (const JournalEntry& entry : text_.entries())
        if (entry.isActive() && entry.tweakID == tweakID) return entry;
    return std::nullopt;
}

Journal::Exclusive Journal::exclusive() {
    Exclusive held(asCannotWrite([this] { return takenLock(); }));
    const std::lock_guard lock(mutex_);
    refreshLocked();
    // One that was begun anew meanwhile knew nothing of the changes that were kept here. The history goes on
    // telling it as it was, so that a rebuilding comes to the same.
    if (const auto changed = endOvertaken(text_.entries()); !changed.empty()) {
        saveLocked(changed);
        held.endedOvertaken_ = true;
    }
    return held;
}

FileLock Journal::takenLock() const {
    if (auto reason = whyNotTrusted(sourcesOf(file_))) throw cannotWrite(*std::move(reason));
    return takeLock(lockFile(file_));
}

bool Journal::isLost(const Exclusive& held) const {
    return asCannotWrite([&] { return held.lock_.file() != lockFile(file_) || !held.lock_.stillExcludes(); });
}

void Journal::upsert(const JournalEntry& entry, const Exclusive& held) try {
    save(entry, held);
} catch (const JournalError&) {
    if (!isLost(held)) throw;
    save(entry, held);  // its folder was removed in the middle of it
}

void Journal::save(const JournalEntry& entry, const Exclusive& held) {
    const bool wasLost = isLost(held);
    // Before the mutex, which a holder of that lock may want.
    if (wasLost) held.lock_ = asCannotWrite([this] { return takenLock(); });
    const std::lock_guard lock(mutex_);
    refreshLocked();
    if (wasLost) checkOnlyOne(entry, text_.entries());
    saveLocked(entry);
    appendHistoryLine(historyDirectory_, clock_(), entry);
}

std::vector<HistoryLine> Journal::history(std::optional<int> days) const {
    std::optional<TimeStamp> cutOff;
    if (days) cutOff = clock_() - std::chrono::seconds(86400) * *days;
    return readHistory(historyDirectory_, cutOff);
}

// At every look at another file, too: one that was begun meanwhile may be for the other use.
void Journal::checkUse() const {
    const fs::path folder = file_.parent_path();
    if (use_ == JournalUse::changes) return checkNoDryRun(folder);
    std::error_code unknown;
    if (!isMarkedForDryRun(folder) && fs::exists(file_, unknown))
        throw cannotRead(file_.string() + ": it holds changes that were made, which a dry run leaves alone");
}

void Journal::refreshLocked() try {
    const auto identity = identityOf(file_);
    // A file that is gone does not empty the list: what undoes changes is kept, and saved again with the
    // next.
    if (const auto reason = identity ? std::nullopt : whyNoFreshStart(file_))
        throw cannotRead(file_.string() + ": " + *reason);
    if (!identity || identity == identity_) return;
    checkUse();
    auto read = readFile(file_, JournalText::mostBytes, simdjson::SIMDJSON_PADDING);
    if (!read) return;
    try {
        JournalText text = JournalText::read(std::move(read->bytes));
        text.keepActiveOf(text_);
        text_ = std::move(text);
        identity_ = read->identity;
    } catch (const JournalError&) {
        throw;
    } catch (const std::exception& error) {
        throw cannotRead(file_.string() + ": " + error.what());
    }
} catch (const ReadError& error) {
    throw cannotRead(error.failure().path.string() + ": " + error.failure().reason);
}

void Journal::saveLocked(const JournalEntry& entry) {
    asCannotWrite([&] {
        JournalText::Change change = text_.changed(entry);
        replaceLocked(change.text);
        text_.take(std::move(change));
    });
}

// In one replacement: half of what belongs together could not be told from what is whole.
void Journal::saveLocked(const std::vector<JournalEntry>& entries) {
    asCannotWrite([&] {
        JournalText text = text_;
        for (const JournalEntry& entry : entries) text.take(text.changed(entry));
        replaceLocked(text.text());
        text_ = std::move(text);
    });
}

void Journal::replaceLocked(const std::string& text) try {
    checkUse();
    if (use_ == JournalUse::dryRun && !isMarkedForDryRun(file_.parent_path()))
        markForDryRun(file_.parent_path());
    replaceFile(withoutLink(file_), text, Durability::powerCut);
    identity_ = identityOfSaved(file_);
} catch (const ReplaceError& error) {
    throw cannotWrite(error.failure());
}

}  // namespace brell
