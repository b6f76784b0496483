// The crash-safe list of every change ever made, kept in one file that is replaced whole on each save.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Journal/History.h"
#include "BrellCore/Journal/JournalEntry.h"
#include "BrellCore/Journal/JournalError.h"
#include "BrellCore/Journal/JournalText.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/FileLock.h"

namespace brell {

// The purpose of a journal. Entries of a dry run were never carried out, so that undoing them would overwrite
// what the user chose: they have folders of their own, and a file in them that says so.
enum class JournalUse { changes, dryRun };

// One shared instance a journal directory and process; several processes may use the same directory. Any
// thread may call it. Every operation first reads the file again when it is no longer the one last read or
// written, and raises JournalError (cannotRead) when that fails; the list and the file then stay as they are.
//
// A journal that is removed, alone or with its folder, is not forgotten here: the list stays and is saved
// whole with the next entry. To one that others began anew the active entries are added that it does not
// know; the next exclusive() ends all but the last one of a tweak, which then leads back over the others.
//
// Order of locks: the engine's mutex, then the advisory lock (Exclusive), then this object's own mutex.
class Journal {
public:
    // While it lives no other process and no other thread can save an entry. For one thread at a time.
    class Exclusive {
    public:
        // Taking it ended an active change of a tweak beside the last one, which may lead elsewhere now.
        bool endedOvertaken() const { return endedOvertaken_; }

    private:
        friend class Journal;
        explicit Exclusive(FileLock lock) : lock_(std::move(lock)) {}
        mutable FileLock lock_;  // taken anew when its file was removed
        bool endedOvertaken_ = false;
    };

    // "Library/Application Support/Corvane Brell" in this home folder. Creates nothing.
    static std::filesystem::path defaultDirectory(const std::filesystem::path& home);

    static constexpr const char* fileName = "journal.json";
    static constexpr const char* dryRunMarkerName = "dry-run.txt";
    static bool isMarkedForDryRun(const std::filesystem::path& directory);
    static void markForDryRun(const std::filesystem::path& directory);  // raises ReplaceError
    static void checkNoDryRun(const std::filesystem::path& directory);  // raises JournalError (cannotRead)

    // The journal of this directory: its file, which may be a link, and the folder "history" in it. Creates
    // nothing. Raises JournalError (cannotRead) for a file that is damaged, of a newer format or for the
    // other use, as does each operation that finds such a file there later, and for one that others could
    // have written.
    static std::unique_ptr<Journal> open(const std::filesystem::path& directory, Clock clock = systemNow,
                                         JournalUse use = JournalUse::changes);
    Journal(const std::filesystem::path& file, std::filesystem::path historyDirectory,
            Clock clock = systemNow, JournalUse use = JournalUse::changes);

    const std::filesystem::path& fileURL() const { return file_; }
    const std::filesystem::path& historyDirectory() const { return historyDirectory_; }

    // Copies, in the order in which the entries were first saved.
    std::vector<JournalEntry> all();
    std::vector<JournalEntry> active();
    std::vector<Uuid> activeIDs();
    std::vector<JournalEntry> entries(EntryStatus status);
    std::optional<JournalEntry> entry(const Uuid& id);
    std::vector<JournalEntry> entries(const std::vector<Uuid>& ids);  // in this order; none for an unknown id
    std::optional<JournalEntry> activeEntry(std::string_view tweakID);

    // Every entry while no change is being made; nothing while one is, here or in another program: what
    // is not finished then may be theirs.
    std::optional<std::vector<JournalEntry>> allAtRest();

    // Waits for other holders, half a minute at most; then JournalError (isBusy), and (cannotWrite) when the
    // lock can't be taken or others could write the journal. Not re-entrant.
    Exclusive exclusive();

    // Saves a new entry or, in its place, a changed one: on stable storage when the call returns. Raises
    // JournalError (cannotWrite) when it can't; the list and the file then hold what they held before. The
    // history line is written on the way, if it can be. A lock that excludes nobody any more, because its
    // file was removed, is taken anew first; a new entry of a tweak that others changed meanwhile is refused
    // then.
    void upsert(const JournalEntry& entry) { upsert(entry, exclusive()); }
    void upsert(const JournalEntry& entry, const Exclusive& held);

    // Lines of the last so many days of 86400 seconds, or all; oldest first.
    std::vector<HistoryLine> history(std::optional<int> days = std::nullopt) const;

private:
    void checkUse() const;
    FileLock takenLock() const;
    bool isLost(const Exclusive& held) const;
    void save(const JournalEntry& entry, const Exclusive& held);
    void refreshLocked();
    void saveLocked(const JournalEntry& entry);
    void saveLocked(const std::vector<JournalEntry>& entries);
    void replaceLocked(const std::string& text);

    const std::filesystem::path file_;  // or a link to it
    const std::filesystem::path historyDirectory_;
    const Clock clock_;
    const JournalUse use_;

    std::mutex mutex_;  // guards the two below and every use of the file
    JournalText text_;
    std::optional<FileIdentity> identity_;  // of the file that text_ was read from or saved to
};

}  // namespace brell
