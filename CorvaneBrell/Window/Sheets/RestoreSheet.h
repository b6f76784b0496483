// Shows what a restore puts back, or a last action undoes, before it is done. What others changed since
// stands in a section of its own with a box each; nothing is ticked at first.
#pragma once

#include <utility>

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"
#include "CorvaneBrell/Window/TickBox.h"

namespace brell {

class RestoreSheet final : public RequestSheet {
    Q_OBJECT
public:
    RestoreSheet(AppModel& model, QWidget* window, const RestoreRequest& request);
    RestoreSheet(AppModel& model, QWidget* window, const DriftRequest& request);

private:
    using Confirm = void (AppModel::*)(const std::set<Uuid>& ticked);

    void addDrifted(const DriftRequest& changes);
    QWidget* driftedRow(const DriftedEntry& drifted, bool isToBeTicked);
    void addConfirmation(const DriftRequest& changes, Confirm confirm);
    void showCount();
    std::set<Uuid> ticked() const;

    std::size_t others_ = 0;                        // that are restored whatever is ticked
    QPushButton* restore_ = nullptr;                // where it says how many it restores
    std::vector<std::pair<Uuid, TickBox*>> ticks_;  // of the rows that are shown
};

}  // namespace brell
