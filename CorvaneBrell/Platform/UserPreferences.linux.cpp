#include "CorvaneBrell/Platform/UserPreferences.h"

#include "BrellCore/Preferences/PlistFileStore.h"

namespace fs = std::filesystem;

namespace brell {

std::unique_ptr<PreferenceStore> userPreferences(const fs::path& folder, const DomainSet& domains) {
    return std::make_unique<PlistFileStore>(folder, domains, PlistFileStore::Folder::withFirstWrite);
}

fs::path userPreferenceFile(const fs::path&, const fs::path& folder, const std::string& domain) {
    return PlistFileStore::fileOf(folder, domain);
}

}  // namespace brell
