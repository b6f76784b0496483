// Shows the exact commands that turn LaunchAgents off or on, and asks.
#pragma once

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

namespace brell {

class AgentConfirmSheet final : public RequestSheet {
    Q_OBJECT
public:
    AgentConfirmSheet(AppModel& model, QWidget* window, const AgentConfirmRequest& request);
};

}  // namespace brell
