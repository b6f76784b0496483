// Asks which of the settings that others changed since are restored anyway. Nothing is ticked at first.
#pragma once

#include <utility>

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"
#include "CorvaneBrell/Window/TickBox.h"

namespace brell {

class DriftSheet final : public RequestSheet {
    Q_OBJECT
public:
    DriftSheet(AppModel& model, QWidget* window, const DriftRequest& request);

private:
    void enableRestore();
    QWidget* entryRow(const DriftedEntry& drifted);
    std::set<Uuid> ticked() const;

    QPushButton* restore_ = nullptr;                // while it waits for a tick
    std::vector<std::pair<Uuid, TickBox*>> ticks_;  // of the rows that are shown
};

}  // namespace brell
