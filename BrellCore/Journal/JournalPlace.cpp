#include "BrellCore/Journal/JournalPlace.h"

#include <fmt/format.h>

#include <chrono>

#include "BrellCore/Journal/JournalError.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/Ownership.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

using Kind = JournalFailure::Kind;

constexpr std::chrono::seconds patience{30};

}  // namespace

fs::path historyFolder(const fs::path& directory) {
    return directory / "history";
}

fs::path withoutLink(const fs::path& journal) {
    const auto cannotWrite = [&](const std::string& reason) {
        return JournalError({Kind::cannotWrite, journal.string() + ": " + reason});
    };
    std::error_code failed;
    const fs::file_type type = fs::symlink_status(journal, failed).type();
    if (type == fs::file_type::none) throw cannotWrite(failed.message());
    if (type != fs::file_type::symlink) return journal;
    fs::path target = fs::canonical(journal, failed);
    if (failed) throw cannotWrite("it is a link to a file that is not there");
    return target;
}

fs::path lockIn(const fs::path& folder) {
    return folder / ".journal.lock";
}

FileLock takeLock(const fs::path& lockFile) {
    auto lock = FileLock::acquire(lockFile, patience);
    if (!lock)
        throw JournalError({Kind::isBusy, fmt::format("another change has been under way for {} seconds",
                                                      patience.count())});
    return *std::move(lock);
}

std::vector<fs::path> sourcesOf(const fs::path& journal) {
    std::error_code unknown;
    const fs::path real = fs::is_symlink(journal, unknown) ? fs::canonical(journal, unknown) : journal;
    std::vector<fs::path> sources{journal.parent_path(), real};
    if (real != journal) sources.push_back(real.parent_path());
    return sources;
}

std::optional<std::string> whyNotTrusted(const std::vector<fs::path>& sources) {
    for (const fs::path& source : sources)
        if (auto reason = whyNotOnlyOurs(source))
            return *reason + ", so that others could choose what an undo puts back";
    return std::nullopt;
}

fs::path rebuildMark(const fs::path& journal) {
    return journal.string() + ".rebuilding";
}

bool isTaken(const fs::path& path) {
    std::error_code failed;
    const fs::file_type type = fs::symlink_status(path, failed).type();
    if (type == fs::file_type::none) throw ReadError({path, failed.message(), failed.value()});
    return type != fs::file_type::not_found;
}

fs::path freeName(const fs::path& file, const std::string& ending) {
    for (int n = 1;; ++n) {
        fs::path name = file;
        name += ending + (n > 1 ? "-" + std::to_string(n) : "");
        if (!isTaken(name)) return name;
    }
}

std::error_code giveName(const fs::path& file, const fs::path& name) {
    std::error_code failed;
    if (fs::is_symlink(file, failed))
        fs::copy_symlink(file, name, failed);
    else
        fs::create_hard_link(file, name, failed);
    return failed;
}

std::optional<std::string> whyNoFreshStart(const fs::path& journal) {
    std::error_code failed;
    const fs::file_type mark = fs::symlink_status(rebuildMark(journal), failed).type();
    if (mark == fs::file_type::not_found) return std::nullopt;
    return mark == fs::file_type::none ? failed.message() : "its rebuilding was interrupted";
}

}  // namespace brell
