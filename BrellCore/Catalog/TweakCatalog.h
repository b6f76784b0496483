// Every tweak there is, and the domains they may touch: the single source of what may be written.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "BrellCore/Catalog/Tweak.h"

namespace brell {

// The domains that tweaks write to, beside globalDomain.
namespace Domains {
inline constexpr std::string_view finder = "com.apple.finder";
inline constexpr std::string_view desktopServices = "com.apple.desktopservices";
inline constexpr std::string_view dock = "com.apple.dock";
inline constexpr std::string_view screencapture = "com.apple.screencapture";
inline constexpr std::string_view crashReporter = "com.apple.CrashReporter";
inline constexpr std::string_view timeMachine = "com.apple.TimeMachine";
inline constexpr std::string_view adLib = "com.apple.AdLib";
inline constexpr std::string_view spotlight = "com.apple.Spotlight";
}  // namespace Domains

// Immutable once built; may be read from any thread. Tweaks stay where they are as long as the catalog lives.
class TweakCatalog {
public:
    // home is the absolute path of the user's home folder. Raises std::logic_error when two tweaks have the
    // same id.
    explicit TweakCatalog(std::string home);
    TweakCatalog(const TweakCatalog&) = delete;  // the index points into the list
    TweakCatalog& operator=(const TweakCatalog&) = delete;

    static const DomainSet& allowedDomains();

    const std::vector<Tweak>& all() const { return all_; }  // in display order
    const Tweak* tweak(std::string_view id) const;          // nullptr when unknown
    std::string titleOf(std::string_view id) const;         // the id itself when unknown
    std::vector<std::string> titlesOf(const std::vector<std::string>& ids) const;
    std::vector<const Tweak*> available(int major) const;  // by macOS major version, in display order
    const std::string& home() const { return home_; }
    const std::string& homeFileURL() const { return homeFileURL_; }  // ends with a slash, as for any folder

private:
    std::string home_;
    std::string homeFileURL_;
    std::vector<Tweak> all_;
    std::unordered_map<std::string_view, const Tweak*> byID_;
};

}  // namespace brell
