#include "CorvaneBrell/Platform/SettingsPanes.h"

namespace brell {

void openSettingsPane(const std::string&, std::function<void(bool opened)> answered) {
    answered(false);
}

}  // namespace brell
