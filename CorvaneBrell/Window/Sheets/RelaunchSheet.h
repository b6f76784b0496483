// Asks before Finder or the Dock is quit and opened again.
#pragma once

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

namespace brell {

class RelaunchSheet final : public RequestSheet {
    Q_OBJECT
public:
    RelaunchSheet(AppModel& model, QWidget* window, const RelaunchRequest& request);
};

}  // namespace brell
