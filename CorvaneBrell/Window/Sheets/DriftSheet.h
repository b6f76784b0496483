// Asks whether the setting that others changed since is restored anyway, or which of several. Nothing is
// ticked at first.
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
    void showCount();
    QWidget* entryRow(const DriftedEntry& drifted, bool isToBeTicked);
    std::set<Uuid> ticked() const;

    const std::size_t others_;                      // that are restored whatever is ticked
    QPushButton* restore_ = nullptr;                // where several are asked for
    std::vector<std::pair<Uuid, TickBox*>> ticks_;  // of the rows that are shown
};

}  // namespace brell
