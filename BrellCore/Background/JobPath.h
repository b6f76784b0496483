// Where a background item stands on disk, in one form for the ways in which it is written. The database has
// two: file:///Library/x%20y.plist, or on newer systems /Library/x y.plist.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace brell {

// The path without empty, "." and ".." pieces and without a slash at its end. Looks at the disk only for a
// "..", which behind a link leads elsewhere than back.
std::string standardizedPath(std::string_view path);

// The standardised path that a file URL or a plain absolute path names; nothing for anything else, a URL with
// a broken escape included.
std::optional<std::string> pathOfItemUrl(std::string_view url);

// The path without links, which are looked up. A file that does not exist keeps its name in its folder, and
// the whole path where there is no such folder either.
std::filesystem::path resolvedPath(const std::filesystem::path& path);

}  // namespace brell
