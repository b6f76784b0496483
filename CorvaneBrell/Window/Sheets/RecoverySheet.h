// Asks what to do about changes that an earlier run of Brell left unfinished.
#pragma once

#include "CorvaneBrell/Model/SheetRequest.h"
#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

namespace brell {

class RecoverySheet final : public RequestSheet {
    Q_OBJECT
public:
    RecoverySheet(AppModel& model, QWidget* window, const RecoveryRequest& request);
};

}  // namespace brell
