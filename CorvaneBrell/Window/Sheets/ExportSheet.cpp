// Asks which of the active changes go into a preset, and for its name. Every change that a preset can carry
// is ticked at first.

#include <QLineEdit>
#include <set>

#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Sheets/RequestSheet.h"
#include "CorvaneBrell/Window/Sheets/Sheets.h"
#include "CorvaneBrell/Window/TickBox.h"

namespace brell {

namespace {

class ExportSheet final : public RequestSheet {
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

ExportSheet::ExportSheet(AppModel& model, QWidget* window, const ExportRequest& request)
    : RequestSheet(model, window, tr("Export Preset"),
                   tr("What is ticked goes into the preset, each setting with its own value."),
                   &AppModel::cancelExport),
      name_(new QLineEdit(tr("My settings"))) {
    name_->setAccessibleName(tr("Name of the preset"));
    content()->addWidget(new Paragraph(tr("Name of the preset"), Paragraph::Look::secondary));
    content()->addWidget(name_);
    for (const ExportRow& record : request.rows)
        if (record.whyNot.empty()) chosen_.insert(record.tweakID);
    addCard(request.rows.size(), [this, rows = request.rows](std::size_t place) { return row(rows[place]); });
    export_ = addAnswers({}, [this, window, rows = request.rows] { goOn(window, rows); });
    setActionText(export_, tr("Export %1...").arg(request.rows.size()));  // room for the most
    export_->setDefault(true);                                            // nothing is changed by it
    name_->setFocus();
    name_->selectAll();
    choose({}, false);
}

QWidget* ExportSheet::row(const ExportRow& record) {
    auto* tick = new TickBox(qt(record.title), Paragraph::Look::heading);
    tick->setAccessibleName(tr("Export %1").arg(qt(record.title)));
    tick->setChecked(record.whyNot.empty());
    tick->setEnabled(record.whyNot.empty());
    connect(tick, &QCheckBox::toggled, this,
            [this, id = record.tweakID](bool isChosen) { choose(id, isChosen); });
    if (record.whyNot.empty()) return sheetRow({tick});
    tick->setAccessibleDescription(qt(record.whyNot));
    auto* reason = new Paragraph(qt(record.whyNot), Paragraph::Look::secondary);
    reason->setContentsMargins(TickBox::indent, 0, 0, 4);
    return sheetRow({tick, reason});
}

// The button says how many go in.
void ExportSheet::choose(const std::string& tweakID, bool isChosen) {
    if (isChosen)
        chosen_.insert(tweakID);
    else
        chosen_.erase(tweakID);
    export_->setText(tr("Export %1...").arg(chosen_.size()));
    export_->setEnabled(!chosen_.empty() && !isLocked(model().state()));
}

void ExportSheet::goOn(QWidget* window, const std::vector<ExportRow>& rows) {
    std::vector<std::string> ids;
    for (const ExportRow& record : rows)
        if (record.whyNot.empty() && chosen_.contains(record.tweakID)) ids.push_back(record.tweakID);
    const QString name = name_->text().trimmed();
    const Preset preset = ownPreset(utf8(name.isEmpty() ? tr("My settings") : name), std::move(ids));
    model().cancelExport();
    exportPreset(model(), window, preset);
}

}  // namespace

Sheet* sheetFor(AppModel& model, QWidget* window, const ExportRequest& request) {
    return new ExportSheet(model, window, request);
}

}  // namespace brell
