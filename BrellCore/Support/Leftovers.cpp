#include "BrellCore/Support/Leftovers.h"

#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <string>
#include <string_view>

#include "BrellCore/Support/Uuid.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::string_view ending = ".tmp";
constexpr std::size_t lengthOfUuid = 36;
constexpr std::time_t aDay = 24 * 60 * 60;

bool isTemporaryFor(const fs::path& file, const std::string& target) {
    const std::string name = targetOf(file).filename().string();
    return name == target || name.starts_with(target + ".");
}

bool isOld(const fs::path& file) {
    struct stat status;
    return ::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_mtime < std::time(nullptr) - aDay;
}

}  // namespace

fs::path temporaryFor(const fs::path& target) {
    return target.parent_path() /
           ("." + target.filename().string() + "." + Uuid::random().text() + std::string(ending));
}

fs::path targetOf(const fs::path& temporary) {
    const std::string text = temporary.filename().string();
    std::string_view name = text;
    if (!name.starts_with('.') || !name.ends_with(ending)) return {};
    name.remove_prefix(1);
    name.remove_suffix(ending.size());
    if (name.size() <= lengthOfUuid || !Uuid::parse(name.substr(name.size() - lengthOfUuid))) return {};
    name.remove_suffix(lengthOfUuid);
    if (!name.ends_with('.')) return {};
    name.remove_suffix(1);
    return temporary.parent_path() / name;
}

void removeLeftovers(const fs::path& target) noexcept try {
    const std::string name = target.filename().string();
    std::error_code failed;
    for (fs::directory_iterator entry(target.parent_path(), failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const fs::path& file = entry->path();
        if (isTemporaryFor(file, name) && isOld(file)) ::unlink(file.c_str());
    }
} catch (const std::exception&) {
    // The next time, then.
}

}  // namespace brell
