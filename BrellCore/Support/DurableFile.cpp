#include "BrellCore/Support/DurableFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "BrellCore/Support/DiskFlush.h"
#include "BrellCore/Support/Leftovers.h"
#include "BrellCore/Support/UniqueFd.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

class RemoveOnExit {
public:
    explicit RemoveOnExit(const fs::path& file) : file_(file) {}
    RemoveOnExit(const RemoveOnExit&) = delete;
    RemoveOnExit& operator=(const RemoveOnExit&) = delete;
    ~RemoveOnExit() {
        if (!dismissed_) ::unlink(file_.c_str());
    }
    void dismiss() { dismissed_ = true; }

private:
    const fs::path& file_;
    bool dismissed_ = false;
};

bool writeAll(const UniqueFd& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace

std::string describe(const ReplaceFailure& failure) {
    const std::string reason = ": " + systemMessage(failure.code) + ".";
    switch (failure.step) {
        case ReplaceStep::createFolder:
            return "The folder " + failure.path.string() + " could not be created" + reason;
        case ReplaceStep::create:
            return "The file " + failure.path.string() + " could not be created" + reason;
        case ReplaceStep::write:
            return "The file " + failure.path.string() + " could not be written" + reason;
        case ReplaceStep::synchronize:
            return "The file " + failure.path.string() + " could not be brought to the disk" + reason;
        case ReplaceStep::rename:
            return "The file " + failure.path.string() + " could not be replaced" + reason;
    }
    return {};
}

ReplaceError::~ReplaceError() = default;

void replaceFile(const fs::path& target, std::string_view contents, Durability durability,
                 unsigned permissions) {
    const fs::path temporary = temporaryFor(target);  // in the same folder, so the rename is atomic
    const auto failedAt = [&](ReplaceStep step, const fs::path& path) {
        const int code = errno;  // first: copying the path may change it
        return ReplaceError({step, path, code});
    };

    std::error_code noFolder;
    UniqueFd file = openInFolder(temporary, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, permissions, noFolder);
    if (noFolder) throw ReplaceError({ReplaceStep::createFolder, target.parent_path(), noFolder.value()});
    if (!file) throw failedAt(ReplaceStep::create, temporary);
    RemoveOnExit leftover(temporary);

    if (!writeAll(file, contents)) throw failedAt(ReplaceStep::write, temporary);
    // Data before name: the rename can reach the disk ahead of bytes that are still in a cache.
    if (durability == Durability::powerCut && !flushToDisk(file))
        throw failedAt(ReplaceStep::synchronize, temporary);
    if (!file.close()) throw failedAt(ReplaceStep::write, temporary);

    if (::rename(temporary.c_str(), target.c_str()) != 0) throw failedAt(ReplaceStep::rename, target);
    leftover.dismiss();
    // Best effort: the new file is already in place when its folder's entry is flushed.
    if (durability == Durability::powerCut) flushFolder(target.parent_path());
}

}  // namespace brell
