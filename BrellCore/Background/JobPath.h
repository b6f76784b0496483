// Where a background item stands on disk, in one form for the ways in which it is written. The database has
// two: file:///Library/x%20y.plist, or on newer systems /Library/x y.plist.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace brell {

// The path without empty, "." and ".." pieces and without a slash at its end. Looks at no disk.
std::string standardizedPath(std::string_view path);

// The standardised path that a file URL or a plain absolute path names; nothing for anything else, a URL with
// a broken escape included.
std::optional<std::string> pathOfItemUrl(std::string_view url);

// The path without links, which are looked up; what does not exist stays as it is named.
std::filesystem::path resolvedPath(const std::filesystem::path& path);

}  // namespace brell
