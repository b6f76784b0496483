// The calls that keeping a journal takes, in their order, as strace shows them, but for those that make
// random identifiers; the bytes are at hand.
#pragma once

#include <sys/file.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "Benchmarks/Bare.h"
#include "BrellCore/Preferences/PlistFileStore.h"
#include "BrellCore/Support/TimeStamp.h"

namespace brell::bare {

// The files that Brell reads and replaces in one folder.
struct JournalFiles {
    explicit JournalFiles(const std::filesystem::path& root)
        : folder(root),
          journal(root / "journal.json"),
          script(root / "restore.sh"),
          history(root / "history" / (localDay(systemNow()) + ".jsonl")),
          lock(root / ".journal.lock"),
          marker(root / "dry-run.txt"),
          preferences(root / "Preferences") {}

    std::string preferenceFile(const std::string& domain) const {
        return PlistFileStore::fileOf(preferences, domain).string();
    }

    const std::string folder, journal, script, history, lock, marker;
    const std::filesystem::path preferences;
};

// Asks whether something stands there, and whether it is a link.
inline void look(const std::string& file) {
    struct stat status;
    ::lstat(file.c_str(), &status);
}

inline int takeLock(const JournalFiles& files) {
    look(files.journal);
    stat(files.folder);
    stat(files.journal);
    look(files.journal);
    const int lock = open(files.lock, O_RDWR | O_CREAT);
    checked(::flock(lock, LOCK_EX | LOCK_NB), files.lock);
    stat(files.lock);
    return lock;
}

inline void appendLine(const std::string& file, std::string_view line) {
    const int descriptor = open(file, O_RDWR | O_APPEND | O_CREAT);
    struct stat status;
    checked(::fstat(descriptor, &status), file);
    char last;
    if (status.st_size > 0)
        checked(static_cast<int>(::pread(descriptor, &last, 1, status.st_size - 1)), file);
    writeOnce(descriptor, line);
    ::close(descriptor);
}

inline void saveEntry(const JournalFiles& files, std::string_view journal, std::string_view historyLine) {
    look(files.journal);
    stat(files.lock);
    stat(files.journal);
    look(files.marker);
    look(files.journal);
    replaceDurably(files.folder + "/.journal.json.tmp", files.journal, journal, files.folder);
    stat(files.journal);
    appendLine(files.history, historyLine);
}

inline void writeScript(const JournalFiles& files, std::string_view script) {
    stat(files.journal);
    stat(files.journal);
    replaceDurably(files.folder + "/.restore.sh.tmp", files.script, script, files.folder);
    stat(files.script);
}

inline void replaceAndReadBack(const std::string& file, std::string_view bytes) {
    stat(file);
    replace(file + ".tmp", file, bytes);
    read(file);
}

}  // namespace brell::bare
