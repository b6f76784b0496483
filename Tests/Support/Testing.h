// Small helpers that every test may use.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace brell::testing {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;
using Names = std::set<std::string>;

// A folder of the test's own, removed with everything in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path path;  // absolute, without symbolic links
};

// From now on TemporaryFolder makes its folders in memory, where the system has a place for that. For tests
// with thousands of durable writes: flushing to a disk would take most of their time, and whether the bytes
// reach one is not what they ask.
void keepFoldersInMemory();

// The names of a folder's entries, hidden ones included; empty when there is no such folder.
std::set<std::string> namesIn(const std::filesystem::path& folder);

std::string contentsOf(const std::filesystem::path& file);
// A file of Tests/Samples; the fuzz targets of its folder's name start from it, too.
std::string sample(const std::filesystem::path& name);
// One that is a table: a row a line, its columns parted by tabs.
std::vector<Texts> sampleRows(const std::filesystem::path& name);

void setContents(const std::filesystem::path& file, std::string_view contents);  // makes the folders above

// Everything in a folder by path within it, hidden names included: a file's bytes, "(folder)" for a folder.
std::map<std::string, std::string> everythingIn(const std::filesystem::path& folder);
// The paths below the folder that differ from what everythingIn gave before.
std::vector<std::string> changesIn(const std::filesystem::path& folder,
                                   std::map<std::string, std::string> before);

// The error of this type that the action throws; nothing when it throws none. Other types pass through.
template <class Error, class Action>
std::optional<Error> thrownBy(Action&& action) {
    try {
        action();
    } catch (const Error& error) {
        return error;
    }
    return std::nullopt;
}

// The record inside the error of this type that the action throws; nothing when it throws none.
template <class Error, class Action>
auto failureOf(Action&& action) {
    const auto error = thrownBy<Error>(std::forward<Action>(action));
    return error ? std::optional(error->failure()) : std::nullopt;
}

// what() of whatever the action throws; empty when it throws nothing.
template <class Action>
std::string messageOf(Action&& action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return {};
}

}  // namespace brell::testing
