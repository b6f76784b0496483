#include "BrellCore/Background/JobPath.h"

#include <algorithm>
#include <system_error>

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::string_view fileScheme = "file://";

std::optional<unsigned> hexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
    return std::nullopt;
}

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        if (text.size() - i < 3) return std::nullopt;
        const auto high = hexDigit(text[i + 1]);
        const auto low = hexDigit(text[i + 2]);
        if (!high || !low) return std::nullopt;
        decoded += static_cast<char>(*high * 16 + *low);
        i += 2;
    }
    return decoded;
}

// Without empty, "." and ".." pieces.
fs::path withoutSteps(std::string_view path) {
    constexpr std::string_view back = "/..";
    const std::size_t last = (std::string(path) + "/").rfind("/../");
    if (last != std::string::npos) {
        std::error_code missing;
        const fs::path reached = fs::canonical(path.substr(0, last + back.size()), missing);
        if (!missing)
            return (reached / path.substr(std::min(last + back.size() + 1, path.size()))).lexically_normal();
    }
    return fs::path(path).lexically_normal();
}

}  // namespace

std::string standardizedPath(std::string_view path) {
    const bool plain = path.find("//") == std::string_view::npos && path.find("/.") == std::string_view::npos;
    std::string standard = plain ? std::string(path) : withoutSteps(path).string();
    while (standard.starts_with("//")) standard.erase(0, 1);  // elsewhere two slashes may mean a host
    while (standard.size() > 1 && standard.ends_with('/')) standard.pop_back();
    return standard;
}

std::optional<std::string> pathOfItemUrl(std::string_view url) {
    if (url.starts_with('/')) return standardizedPath(url);
    if (!url.starts_with(fileScheme)) return std::nullopt;
    const std::string_view rest = url.substr(fileScheme.size());
    const std::size_t slash = rest.find('/');  // a host may stand before it
    if (slash == std::string_view::npos) return std::nullopt;
    const std::string_view path = rest.substr(slash);
    const auto decoded = percentDecoded(path.substr(0, path.find_first_of("?#")));
    return decoded ? std::optional(standardizedPath(*decoded)) : std::nullopt;
}

fs::path resolvedPath(const fs::path& path) {
    std::error_code failed;
    fs::path found = fs::canonical(path, failed);
    if (!failed) return found;
    const fs::path folder = fs::canonical(path.parent_path(), failed);
    return failed ? path : folder / path.filename();
}

}  // namespace brell
