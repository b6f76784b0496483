#include "BrellCore/Journal/JournalRebuild.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <set>

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Journal/JournalPlace.h"
#include "BrellCore/Journal/JournalText.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/DiskFlush.h"
#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/JsonReader.h"
#include "BrellCore/Support/JsonWriter.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

using Kind = JournalFailure::Kind;

JournalError cannotRebuild(std::string text) {
    return JournalError({Kind::cannotRebuild, std::move(text)});
}
JournalError cannotRebuild(const fs::path& path, int code) {
    return cannotRebuild(path.string() + ": " + systemMessage(code));
}

JournalError cannotRead(std::string text) {
    return JournalError({Kind::cannotRead, std::move(text)});
}

// Everything else may be gone the next time: a missing permission, a disk that is not there with the file
// that a link leads to.
bool isDamage(const ReadFailure& failure) {
    std::error_code unknown;
    const bool leadsNowhere = fs::status(failure.path, unknown).type() == fs::file_type::not_found;
    return (failure.code == 0 && !leadsNowhere) || failure.code == EIO || failure.code == ELOOP;
}

void checkTrusted(const std::vector<fs::path>& sources) try {
    if (auto reason = whyNotTrusted(sources)) throw cannotRead(*std::move(reason));
} catch (const std::system_error& error) {
    throw cannotRead(error.what());
}

// Its lines are to say what an undo puts back.
void checkHistoryTrusted(const fs::path& directory) {
    std::vector<fs::path> sources{directory, historyFolder(directory)};
    std::error_code failed;
    for (fs::directory_iterator entry(sources[1], failed), end; !failed && entry != end;
         entry.increment(failed))
        sources.push_back(entry->path());
    checkTrusted(sources);
}

std::optional<std::string> damageOf(std::string text) try {
    JournalText::read(std::move(text));
    return std::nullopt;
} catch (const JournalError&) {
    throw;
} catch (const std::exception& error) {
    return error.what();
}

void replace(const fs::path& file, const std::string& text) try {
    replaceFile(file, text, Durability::powerCut);
} catch (const ReplaceError& error) {
    throw cannotRebuild(error.failure().path, error.failure().code);
}

// A thing that can't have two names, such as a folder, leaves its place before the new journal takes it. The
// mark tells a program that starts in between.
void moveAside(const fs::path& file, const fs::path& aside) {
    replace(rebuildMark(file), "");
    if (::rename(file.c_str(), aside.c_str()) != 0) {
        const int code = errno;
        ::unlink(rebuildMark(file).c_str());
        throw cannotRebuild(aside, code);
    }
}

// Where there are no second names: what only this one holds must not be out of its place if this is stopped.
void copyAside(const fs::path& file, const fs::path& aside) {
    if (const auto read = readFile(file, JournalText::mostBytes)) replace(aside, read->bytes);
}

// Gives its new name; nothing where there is no journal.
std::optional<fs::path> keepAside(const fs::path& file, std::string_view ending, TimeStamp now) try {
    if (!isTaken(file)) return std::nullopt;
    for (;;) {
        const fs::path aside = freeName(file, std::string(ending) + localMoment(now));
        const std::error_code failed = giveName(file, aside);
        if (failed == std::errc::file_exists) continue;
        if (failed) (ending == damagedEnding ? moveAside : copyAside)(file, aside);
        flushFolder(file.parent_path());
        return aside;
    }
} catch (const ReadError& error) {
    throw cannotRebuild(error.failure().path, error.failure().code);
}

// None where the script can't be read.
std::vector<std::string> unknownChangesIn(const fs::path& script, Journal& journal) try {
    return RestoreScript::unknownChanges(script, journal);
} catch (const ReadError&) {
    return {};
}

// The script that stands there may know of a change whose history lines a power cut took: it is kept, too.
void renewScript(Rebuilt& rebuilt, const fs::path& script, const RebuildPlan& plan, TimeStamp now) try {
    rebuilt.scriptBefore = RestoreScript::keepAside(script, now);
    rebuilt.isLacking =
        rebuilt.scriptBefore && !unknownChangesIn(script, *Journal::open(script.parent_path())).empty();
    RestoreScript::save(script, RestoreScript::render(plan.entries, now));
} catch (const std::exception& error) {
    rebuilt.scriptFailure = error.what();
}

// Gives the word for what is kept of it.
std::string_view checkToBeRebuilt(const fs::path& directory) {
    if (journalDamage(directory)) return damagedEnding;
    if (lackOfChanges(*Journal::open(directory))) return beforeEnding;
    throw cannotRebuild("it is not damaged");
}

// The one that a Brell which can read the journal takes; a damaged one is replaced where it stands.
FileLock lockOf(const fs::path& directory, std::string_view ending) try {
    const fs::path journal = directory / Journal::fileName;
    return takeLock(lockIn(ending == damagedEnding ? directory : withoutLink(journal).parent_path()));
} catch (const JournalError&) {
    throw;
} catch (const std::runtime_error& error) {
    throw cannotRebuild(error.what());
}

std::vector<fs::path> keptScripts(const fs::path& folder) try {
    return RestoreScript::allIn(folder);
} catch (const fs::filesystem_error&) {
    return {};  // none that could be read
}

// Those that have no end in the history, by the names that scripts give them.
std::set<std::string> changesWithoutEnd(const fs::path& history) {
    RebuildPlanner planner;
    const auto take = [&](std::vector<HistoryLine>& lines, std::uintmax_t, std::uintmax_t) {
        planner.take(lines);
        return true;
    };
    HistoryReading rest = readLastOfHistory(history, take);
    const RebuildPlan plan = std::move(planner).finish(std::move(rest));
    const std::set<Uuid> overtaken(plan.overtaken.begin(), plan.overtaken.end());
    std::set<std::string> names;
    for (const JournalEntry& entry : plan.entries)
        if (entry.isActive() || overtaken.contains(entry.id)) names.insert(RestoreScript::nameOf(entry));
    return names;
}

}  // namespace

std::optional<std::string> journalDamage(const fs::path& directory) try {
    Journal::checkNoDryRun(directory);
    checkTrusted({directory});
    const fs::path file = directory / Journal::fileName;
    auto read = readFile(file, JournalText::mostBytes, simdjson::SIMDJSON_PADDING);
    if (!read) return whyNoFreshStart(file);
    checkTrusted(sourcesOf(file));
    return damageOf(std::move(read->bytes));
} catch (const ReadError& error) {
    if (isDamage(error.failure())) return error.failure().reason;
    throw cannotRead(error.failure().path.string() + ": " + error.failure().reason);
}

std::optional<std::string> lackOfChanges(Journal& journal) {
    const fs::path folder = journal.fileURL().parent_path(), script = folder / RestoreScript::fileName;
    if (!unknownChangesIn(script, journal).empty()) return RestoreScript::undoesUnknown(script);
    std::optional<std::set<std::string>> endless;  // the whole history is read for it: once, if at all
    for (const fs::path& kept : keptScripts(folder)) {
        const auto changes = kept == script ? std::vector<std::string>() : unknownChangesIn(kept, journal);
        if (changes.empty()) continue;
        if (!endless) endless = changesWithoutEnd(journal.historyDirectory());
        if (std::any_of(changes.begin(), changes.end(),
                        [&](const std::string& change) { return endless->contains(change); }))
            return RestoreScript::undoesUnknown(kept);
    }
    return std::nullopt;
}

std::optional<RebuildPlan> planRebuild(const fs::path& directory, const RebuildProgress& goOn) {
    checkHistoryTrusted(directory);
    RebuildPlanner planner;
    if (!journalDamage(directory)) planner.know(Journal::open(directory)->all());
    bool goesOn = true;
    HistoryReading rest =
        readLastOfHistory(historyFolder(directory), [&](auto& lines, auto done, auto total) {
            planner.take(lines);
            return goesOn = goOn(done, total);
        });
    if (!goesOn) return std::nullopt;
    return std::move(planner).finish(std::move(rest));
}

std::optional<Rebuilt> rebuildJournal(const fs::path& directory, const RebuildPlan& confirmed,
                                      const RebuildProgress& goOn, const Clock& clock) {
    std::string_view ending = checkToBeRebuilt(directory);  // first, so that a refusal makes no lock's file
    const FileLock lock = lockOf(directory, ending);
    ending = checkToBeRebuilt(directory);  // again: another program may have rebuilt it meanwhile
    const auto plan = planRebuild(directory, goOn);
    if (!plan) return std::nullopt;
    if (*plan != confirmed) throw cannotRebuild("its history tells something else than before");
    if (plan->entries.empty()) throw cannotRebuild("its history holds no change");

    const fs::path file = directory / Journal::fileName;
    const TimeStamp now = clock();
    const std::string text = JournalText::of(plan->entries);
    Rebuilt rebuilt;
    rebuilt.before = keepAside(file, ending, now);
    replace(file, text);
    ::unlink(rebuildMark(file).c_str());
    renewScript(rebuilt, directory / RestoreScript::fileName, *plan, now);
    return rebuilt;
}

}  // namespace brell
