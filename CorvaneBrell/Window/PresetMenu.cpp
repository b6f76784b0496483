#include "CorvaneBrell/Window/PresetMenu.h"

#include "CorvaneBrell/Window/FileDialog.h"
#include "CorvaneBrell/Window/Message.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

namespace {

QFileDialog* presetDialog(QWidget* window, const QString& title, QFileDialog::AcceptMode mode) {
    auto* dialog = fileDialog(window, title);
    dialog->setAcceptMode(mode);
    dialog->setDefaultSuffix(qt(PresetFile::extension.substr(1)));
    dialog->setNameFilter(QMenu::tr("Brell presets (*%1)").arg(qt(PresetFile::extension)));
    return dialog;
}

}  // namespace

PresetMenu::PresetMenu(AppModel& model, QWidget* parent) : QMenu(tr("Presets"), parent) {
    setToolTipsVisible(true);
    for (const Preset& preset : Presets::shipped()) {
        QAction* action = addAction(label(qt(preset.name)) + "...");
        action->setToolTip(plainTip(qt(preset.summary)));
        connect(action, &QAction::triggered, this, [&model, &preset] { model.askPreset(preset); });
    }
    addSeparator();
    const auto ofTheJournal = [&](const QString& text, void (*act)(AppModel&, QWidget*)) {
        QAction* action =
            addAction(text, this, [&model, this, act] { act(model, parentWidget()->window()); });
        connect(this, &QMenu::aboutToShow, action,
                [&model, action] { action->setEnabled(!isLocked(model.state())); });
    };
    ofTheJournal(tr("Import Preset..."), importPreset);
    ofTheJournal(tr("Export Preset..."), exportActivePreset);
}

void importPreset(AppModel& model, QWidget* window) {
    QFileDialog* dialog = presetDialog(window, QMenu::tr("Import Preset"), QFileDialog::AcceptOpen);
    dialog->setFileMode(QFileDialog::ExistingFile);
    QObject::connect(dialog, &QFileDialog::fileSelected, window,
                     [&model](const QString& file) { model.importPreset(utf8(file)); });
    dialog->open();
}

void exportPreset(AppModel& model, QWidget* window, const Preset& preset) {
    QFileDialog* dialog = presetDialog(window, QMenu::tr("Export Preset"), QFileDialog::AcceptSave);
    dialog->selectFile(qt(PresetFile::slug(preset.name) + std::string(PresetFile::extension)));
    QObject::connect(dialog, &QFileDialog::fileSelected, window,
                     [&model, preset](const QString& file) { model.exportPreset(preset, utf8(file)); });
    dialog->open();
}

void exportActivePreset(AppModel& model, QWidget* window) {
    if (model.changedCount(Screen::journal) > 0) return model.askExport();
    tell(window, QMenu::tr("There is nothing to export"), QMenu::tr("No change of Brell is active."));
}

}  // namespace brell
