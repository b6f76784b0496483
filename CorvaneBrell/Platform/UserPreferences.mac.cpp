#include "CorvaneBrell/Platform/UserPreferences.h"

#include <unistd.h>

#include "BrellCore/Preferences/CFPreferencesStore.h"

namespace fs = std::filesystem;

namespace brell {

std::unique_ptr<PreferenceStore> userPreferences(const fs::path&, const DomainSet& domains) {
    refuseRoot(::geteuid());
    return std::make_unique<CFPreferencesStore>(domains, true, systemUserDefaults());
}

// Kept by the system's preferences daemon, which names the global domain's file in its own way.
fs::path userPreferenceFile(const fs::path& home, const fs::path&, const std::string& domain) {
    const std::string name = domain == globalDomain ? ".GlobalPreferences" : domain;
    return home / "Library" / "Preferences" / (name + ".plist");
}

}  // namespace brell
