// The preferences of the user who runs the program.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "BrellCore/Preferences/PrefKey.h"

namespace brell {

class PreferenceStore;

// A store of these domains: macOS's user defaults, never root's; elsewhere property-list files in this
// folder, which the first write makes. Raises std::exception when there can be none.
std::unique_ptr<PreferenceStore> userPreferences(const std::filesystem::path& folder,
                                                 const DomainSet& domains);

// Where that store keeps a domain of the user with this home. To be looked at only: the file is the store's.
std::filesystem::path userPreferenceFile(const std::filesystem::path& home,
                                         const std::filesystem::path& folder, const std::string& domain);

// Raises std::runtime_error for root.
void refuseRoot(std::uint32_t effectiveUid);

}  // namespace brell
