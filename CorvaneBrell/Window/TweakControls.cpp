#include "CorvaneBrell/Window/TweakControls.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>
#include <QVBoxLayout>

#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/FileDialog.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Switch.h"

namespace brell {

namespace {

constexpr qsizetype longestChoice = 36;

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
                control->setPosition(state.isOn);
                control->setEnabled(state.canChange);
            }};
}

// The choices, then macOS's own value, then what was there before a change of ours. Nothing of it is picked
// while another value is stored.
class TweakChoices final : public ChoiceBox {
public:
    TweakChoices(AppModel& model, const Tweak& tweak, const ChoiceKind& kind) : model_(model), tweak_(tweak) {
        for (const Choice& choice : kind.choices) addItem(qt(choice.title), qt(choice.id));
        addItem(tr("macOS default"));
        systemDefault_ = count() - 1;
        connect(this, &QComboBox::activated, this, &TweakChoices::pick);
    }

    void show(const TweakRowState& state) {
        if (model_.isChanging(tweak_.id)) return;
        setPlaceholderText(state.isOn ? tr("Another value") : tr("Not known"));
        setBefore(state.undo && state.undo->leadsToAValue ? qt(state.undo->leadsTo) : QString());
        setCurrentIndex(indexOf(state));
    }

private:
    void setBefore(const QString& value) {
        const QString words =
            value.isEmpty() ? value : tr("As before Brell (%1)").arg(inBrief(value, longestChoice));
        const int place = systemDefault_ + 1;
        if (itemText(place) == words) return;
        removeItem(place);
        if (!words.isEmpty()) addItem(words);
    }

    // Also of a choice that is in effect because macOS's own value is the same.
    int indexOf(const TweakRowState& state) const {
        if (state.choiceID) return findData(qt(*state.choiceID));
        return state.nothingStored ? systemDefault_ : -1;
    }

    void pick(int index) {
        if (!model_.isChanging(tweak_.id) && index == indexOf(tweakRowState(model_, tweak_))) return;
        if (index == systemDefault_)
            model_.useSystemDefault(tweak_.id);
        else if (index > systemDefault_)
            model_.restore(tweak_.id);
        else
            model_.applyChoice(tweak_.id, utf8(itemData(index).toString()));
    }

    AppModel& model_;
    const Tweak& tweak_;
    int systemDefault_;
};

TweakControl makeChoices(AppModel& model, const Tweak& tweak, const ChoiceKind& kind) {
    auto* control = new TweakChoices(model, tweak, kind);
    control->setAccessibleName(qt(tweak.title));
    control->setAccessibleDescription(qt(tweak.explanation.takesEffect));
    return {control, [control](const TweakRowState& state) {
                control->show(state);
                control->setEnabled(state.canChange);
            }};
}

void chooseFolder(AppModel& model, const Tweak& tweak, const QString& start, QWidget* parent) {
    auto* dialog = fileDialog(parent, qt(tweak.title), start);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setLabelText(QFileDialog::Accept, QFileDialog::tr("Use This Folder"));
    QObject::connect(dialog, &QFileDialog::fileSelected, parent, [&model, &tweak](const QString& folder) {
        model.apply(tweak.id, std::vector<PrefValue>{PrefValue(utf8(folder))});
    });
    dialog->open();
}

// The place of the second button is kept while it has nothing to do.
TweakControl makeFolder(AppModel& model, const Tweak& tweak) {
    auto* control = new QWidget;
    auto* column = new QVBoxLayout(control);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    auto* choose = actionButton(QWidget::tr("Choose..."), "folder");
    choose->setAccessibleName(QWidget::tr("Choose the folder: %1").arg(qt(tweak.title)));
    choose->setAccessibleDescription(qt(tweak.explanation.takesEffect));
    auto* previous = actionButton(QWidget::tr("Restore previous location"));
    previous->setMinimumWidth(0);  // it has just the room of its column
    previous->setAccessibleName(QWidget::tr("Restore previous location: %1").arg(qt(tweak.title)));
    QSizePolicy policy = previous->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    previous->setSizePolicy(policy);
    column->addWidget(choose);
    column->addWidget(previous);
    QObject::connect(choose, &QPushButton::clicked, control, [&model, &tweak, control] {
        const QString now = qt(tweakRowState(model, tweak).folder.value_or(""));
        chooseFolder(model, tweak, QFileInfo(now).isDir() ? now : qt(model.catalog().home()), control);
    });
    QObject::connect(previous, &QPushButton::clicked, control, [&model, &tweak] { model.restore(tweak.id); });
    return {control, [choose, previous](const TweakRowState& state) {
                choose->setEnabled(state.canChange);
                if (!state.undo && previous->hasFocus()) choose->setFocus();
                previous->setVisible(state.undo.has_value());
                previous->setEnabled(state.canUndo);
                const QString where =
                    state.undo ? QWidget::tr("Back to %1").arg(qt(state.undo->leadsTo)) : QString();
                previous->setToolTip(plainTip(where));
                previous->setAccessibleDescription(where);
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
