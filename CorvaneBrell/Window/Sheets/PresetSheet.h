// Shows what applying a preset would come to, tweak by tweak, and asks.
#pragma once

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

namespace brell {

class PresetSheet final : public RequestSheet {
    Q_OBJECT
public:
    PresetSheet(AppModel& model, QWidget* window, const PresetRequest& request);
};

}  // namespace brell
