// Asks before macOS is asked for its list of background items.
#pragma once

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

namespace brell {

class TaskListSheet final : public RequestSheet {
    Q_OBJECT
public:
    TaskListSheet(AppModel& model, QWidget* window);
};

}  // namespace brell
