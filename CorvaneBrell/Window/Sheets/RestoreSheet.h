// Shows every key that a restore puts back, and asks.
#pragma once

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

namespace brell {

class RestoreSheet final : public RequestSheet {
    Q_OBJECT
public:
    RestoreSheet(AppModel& model, QWidget* window, const RestoreRequest& request);
};

}  // namespace brell
