// Shows every change that is put back, its keys where they are asked for and its commands, and asks.
#pragma once

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

namespace brell {

class RestoreSheet final : public RequestSheet {
    Q_OBJECT
public:
    RestoreSheet(AppModel& model, QWidget* window, const RestoreRequest& request);
};

}  // namespace brell
