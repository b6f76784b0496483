// Small helpers that every test may use.
#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace brell::testing {

// A folder of the test's own, removed with everything in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path path;  // absolute, without symbolic links
};

// The names of a folder's entries, hidden ones included; empty when there is no such folder.
std::set<std::string> namesIn(const std::filesystem::path& folder);

std::string contentsOf(const std::filesystem::path& file);
void setContents(const std::filesystem::path& file, std::string_view contents);  // makes the folders above

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
