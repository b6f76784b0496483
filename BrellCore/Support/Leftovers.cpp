#include "BrellCore/Support/Leftovers.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <string>
#include <string_view>

#include "BrellCore/Support/Uuid.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::string_view ending = ".tmp";
constexpr std::size_t lengthOfUuid = 36;
constexpr std::time_t aDay = 24 * 60 * 60;

bool isTemporaryForOneOf(const fs::path& file, const std::vector<std::string>& targets) {
    const std::string name = targetOf(file).filename().string();
    return !name.empty() && std::any_of(targets.begin(), targets.end(), [&](const std::string& target) {
        return name == target || name.starts_with(target + ".");
    });
}

bool isOld(const fs::path& file) {
    struct stat status;
    return ::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_mtime < std::time(nullptr) - aDay;
}

void removeLeftoversIn(const fs::path& folder, const std::vector<std::string>& targets) {
    std::error_code failed;
    for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const fs::path& file = entry->path();
        if (isTemporaryForOneOf(file, targets) && isOld(file)) ::unlink(file.c_str());
    }
}

}  // namespace

fs::path temporaryFor(const fs::path& target) {
    std::string file = target.string();
    file.insert(file.rfind('/') + 1, ".");  // npos + 1 is the begin of a name without a folder
    file += "." + Uuid::random().text();
    file += ending;
    return file;
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

void removeLeftovers(const std::vector<fs::path>& targets) noexcept try {
    std::map<fs::path, std::vector<std::string>> namesIn;
    for (const fs::path& target : targets)
        namesIn[target.parent_path()].push_back(target.filename().string());
    for (const auto& [folder, names] : namesIn) removeLeftoversIn(folder, names);
} catch (const std::exception&) {
    // The next time, then.
}

}  // namespace brell
