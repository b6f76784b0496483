#include "CorvaneBrell/Platform/UserPreferences.h"

#include "BrellCore/Preferences/PlistFileStore.h"

namespace brell {

std::unique_ptr<PreferenceStore> userPreferences(const std::filesystem::path& folder,
                                                 const DomainSet& domains) {
    return std::make_unique<PlistFileStore>(folder, domains);
}

}  // namespace brell
