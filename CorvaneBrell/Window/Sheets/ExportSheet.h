// Asks which of the active changes go into a preset, and for its name. Every change that a preset can carry
// is ticked at first.
#pragma once

#include <set>

#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

class QLineEdit;

namespace brell {

class ExportSheet final : public RequestSheet {
    Q_OBJECT
public:
    ExportSheet(AppModel& model, QWidget* window, const ExportRequest& request);

private:
    QWidget* row(const ExportRow& record);
    void choose(const std::string& tweakID, bool isChosen);
    void goOn(QWidget* window, const std::vector<ExportRow>& rows);

    QLineEdit* name_;
    std::set<std::string> chosen_;  // tweaks, also of rows that are not shown yet
    QPushButton* export_ = nullptr;
};

}  // namespace brell
