#include "CorvaneBrell/Window/TweakControls.h"

#include <QAccessible>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>
#include <QVBoxLayout>

#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Switch.h"

namespace brell {

namespace {

constexpr int longestFolderText = 34;

TweakControl makeSwitch(AppModel& model, const Tweak& tweak) {
    auto* control = new Switch;
    control->setAccessibleName(qt(tweak.title));
    control->setAccessibleDescription(qt(tweak.explanation.takesEffect));
    QObject::connect(control, &Switch::clicked, control, [&model, &tweak, control] {
        if (model.isChanging(tweak.id)) return;  // what this click means is known when that is done
        if (control->isChecked())
            model.turnOff(tweak.id);
        else
            model.apply(tweak.id);
    });
    return {control, [control](const TweakRowState& state) {
                control->setChecked(state.isOn);
                control->setEnabled(state.canChange);
            }};
}

// The choices, then macOS's own value; nothing of it is picked while another value is stored.
TweakControl makeChoices(AppModel& model, const Tweak& tweak, const ChoiceKind& kind) {
    auto* control = new ChoiceBox;
    control->setAccessibleName(qt(tweak.title));
    control->setAccessibleDescription(qt(tweak.explanation.takesEffect));
    control->setPlaceholderText(ChoiceBox::tr("Another value"));
    for (const Choice& choice : kind.choices) control->addItem(qt(choice.title), qt(choice.id));
    control->addItem(ChoiceBox::tr("macOS default"));
    const int systemDefault = control->count() - 1;
    const auto shown = [control, systemDefault](const TweakRowState& state) {
        if (state.choiceID) return control->findData(qt(*state.choiceID));  // also by macOS's own value
        return state.nothingStored ? systemDefault : -1;
    };
    QObject::connect(control, &ChoiceBox::activated, control,
                     [&model, &tweak, control, systemDefault, shown](int index) {
                         if (!model.isChanging(tweak.id) && index == shown(tweakRowState(model, tweak)))
                             return;
                         if (index == systemDefault)
                             model.useSystemDefault(tweak.id);
                         else
                             model.applyChoice(tweak.id, utf8(control->itemData(index).toString()));
                     });
    return {control, [&model, &tweak, control, shown](const TweakRowState& state) {
                if (!model.isChanging(tweak.id)) control->setCurrentIndex(shown(state));
                control->setEnabled(state.canChange);
            }};
}

// The end of a path says most about it.
QString shortened(const QString& path) {
    const QString name = QDir::toNativeSeparators(path);
    return name.size() <= longestFolderText ? name : "…" + name.right(longestFolderText - 1);
}

void chooseFolder(AppModel& model, const Tweak& tweak, const QString& start, QWidget* parent) {
    auto* dialog = new QFileDialog(parent->window(), qt(tweak.title), start);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setLabelText(QFileDialog::Accept, QFileDialog::tr("Use This Folder"));
    QObject::connect(dialog, &QFileDialog::fileSelected, parent, [&model, &tweak](const QString& folder) {
        model.apply(tweak.id, std::vector<PrefValue>{PrefValue(utf8(folder))});
    });
    dialog->open();
}

QString folderText(const TweakRowState& state) {
    if (state.nothingStored) return QWidget::tr("macOS default");
    if (!state.folder) return QWidget::tr("Not known");
    return state.folder->empty() ? QWidget::tr("Empty") : shortened(qt(*state.folder));
}

TweakControl makeFolder(AppModel& model, const Tweak& tweak) {
    auto* control = new QWidget;
    auto* column = new QVBoxLayout(control);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    auto* path = new Paragraph({}, Paragraph::Look::secondary);
    auto* choose = actionButton(QWidget::tr("Choose..."), "folder");
    choose->setAccessibleName(QWidget::tr("Choose the folder: %1").arg(qt(tweak.title)));
    choose->setAccessibleDescription(qt(tweak.explanation.takesEffect));
    auto* previous = actionButton(QWidget::tr("Restore previous location"), "arrow.uturn.backward");
    previous->setAccessibleName(QWidget::tr("Restore previous location: %1").arg(qt(tweak.title)));
    column->addWidget(path);
    column->addWidget(choose);
    column->addWidget(previous);
    control->setFocusProxy(choose);
    QObject::connect(choose, &QPushButton::clicked, control, [&model, &tweak, control] {
        const QString now = qt(tweakRowState(model, tweak).folder.value_or(""));
        chooseFolder(model, tweak, QFileInfo(now).isDir() ? now : qt(model.catalog().home()), control);
    });
    QObject::connect(previous, &QPushButton::clicked, control, [&model, &tweak] { model.turnOff(tweak.id); });
    return {control, [&model, path, choose, previous](const TweakRowState& state) {
                path->setText(folderText(state));
                path->setToolTip(qt(state.folder.value_or("")));
                choose->setEnabled(state.canChange);
                previous->setVisible(state.undo.has_value());
                previous->setEnabled(!model.state().startupError);
            }};
}

}  // namespace

TweakControl makeTweakControl(AppModel& model, const Tweak& tweak) {
    if (const auto* choices = std::get_if<ChoiceKind>(&tweak.kind))
        return makeChoices(model, tweak, *choices);
    if (std::holds_alternative<FolderKind>(tweak.kind)) return makeFolder(model, tweak);
    return makeSwitch(model, tweak);
}

}  // namespace brell
