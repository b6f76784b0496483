// The preferences of the user who runs the program.
#pragma once

#include <filesystem>
#include <memory>

#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

// A store of these domains: macOS's user defaults; elsewhere property-list files in this folder, which is
// made. Raises std::exception when there can be none.
std::unique_ptr<PreferenceStore> userPreferences(const std::filesystem::path& folder,
                                                 const DomainSet& domains);

}  // namespace brell
