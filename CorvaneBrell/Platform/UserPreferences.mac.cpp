#include "CorvaneBrell/Platform/UserPreferences.h"

#include <stdexcept>

namespace brell {

// Never the files of another system: entries about them would stand in the journal of this Mac.
std::unique_ptr<PreferenceStore> userPreferences(const std::filesystem::path&, const DomainSet&) {
    throw std::runtime_error("This version cannot change this Mac yet; name a sample Mac with --sample-mac.");
}

}  // namespace brell
