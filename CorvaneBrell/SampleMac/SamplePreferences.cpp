#include <utility>
#include <vector>

#include "CorvaneBrell/SampleMac/SampleContents.h"

namespace brell {

namespace {

// The settings that its user has made in the years before Brell came, some of it with the same keys, some
// with others.
const std::vector<std::pair<PrefKey, PrefValue>>& livedInPreferences() {
    static const std::vector<std::pair<PrefKey, PrefValue>> preferences{
        {{"com.apple.finder", "ShowPathbar"}, true},
        {{"com.apple.finder", "FXPreferredViewStyle"}, "clmv"},
        {{"com.apple.finder", "FXDefaultSearchScope"}, "SCev"},
        {{"com.apple.finder", "WarnOnEmptyTrash"}, true},
        {{"com.apple.finder", "FXRecentFolders"},
         PrefValue::StringArray{"Tax & Receipts", "L'été 2025", "<drafts>"}},
        {{"com.apple.dock", "autohide"}, false},
        {{"com.apple.dock", "autohide-delay"}, 0.24},
        {{"com.apple.dock", "tilesize"}, 41},
        {{"com.apple.dock", "largesize"}, 91.5},
        {{"com.apple.dock", "orientation"}, "left"},
        {{"com.apple.dock", "mod-count"}, 1187},
        {{"NSGlobalDomain", "AppleShowAllExtensions"}, true},
        {{"NSGlobalDomain", "NSAutomaticQuoteSubstitutionEnabled"}, false},
        {{"NSGlobalDomain", "AppleShowScrollBars"}, "WhenScrolling"},
        {{"NSGlobalDomain", "AppleLanguages"}, PrefValue::StringArray{"en-GB", "de-DE"}},
        {{"NSGlobalDomain", "NSWindowResizeTime"}, 0.2},
        {{"com.apple.screencapture", "location"}, "~/Desktop"},
        {{"com.apple.screencapture", "type"}, "png"},
        {{"com.apple.AdLib", "allowApplePersonalizedAdvertising"}, true},
    };
    return preferences;
}

}  // namespace

void SampleContents::addPreferences(PlistFileStore& store) {
    for (const auto& [key, value] : livedInPreferences()) store.write(value, key);
}

}  // namespace brell
