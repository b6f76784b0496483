// Asks before a damaged journal is rebuilt from its history, and tells what came of it.
#pragma once

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

namespace brell {

class RebuildSheet final : public RequestSheet {
    Q_OBJECT
public:
    RebuildSheet(AppModel& model, QWidget* window, const RebuildRequest& request);
};

class RebuildReportSheet final : public RequestSheet {
    Q_OBJECT
public:
    RebuildReportSheet(AppModel& model, QWidget* window, const RebuildReport& report);
};

}  // namespace brell
