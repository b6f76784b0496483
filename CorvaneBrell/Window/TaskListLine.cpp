#include "CorvaneBrell/Window/TaskListLine.h"

#include <QHBoxLayout>
#include <QPushButton>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

TaskListLine::TaskListLine(AppModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      words_(new Paragraph({}, Paragraph::Look::body)),
      button_(actionButton({})) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    line->addWidget(new SymbolView("info.circle", Tone::plain, 16));
    line->addWidget(words_, 1, Qt::AlignVCenter);
    line->addWidget(button_);
    connect(button_, &QPushButton::clicked, this, [this] {
        if (model_.state().taskListActivity) return model_.cancelTaskList();
        model_.askTaskList();
    });
}

void TaskListLine::refresh() {
    const AppState& state = model_.state();
    const bool isBeingRead = state.taskListActivity.has_value();
    if (isBeingRead)
        words_->setText(tr("Waiting for macOS, which may ask for an administrator's password."));
    else if (state.taskList == TaskList::hidden)
        words_->setText(
            tr("Items that apps registered with macOS may be missing here. Only an administrator can see "
               "macOS's list of them."));
    else
        words_->setText(tr("Items that apps registered with macOS may be missing here."));
    setActionText(button_, isBeingRead ? tr("Cancel") : tr("Read macOS's List of Background Items..."));
    button_->setHidden(state.taskList == TaskList::hidden);
    // At the first look it is there already if it will stay, so that no row moves.
    setHidden(state.taskList == TaskList::read ||
              (state.taskList == TaskList::unknown && model_.ownPreferences().readsTaskList()));
}

}  // namespace brell
