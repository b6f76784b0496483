#include "CorvaneBrell/Window/Sheets/TaskListSheet.h"

namespace brell {

TaskListSheet::TaskListSheet(AppModel& model, QWidget* window)
    : RequestSheet(
          model, window, tr("Read macOS's list of background items?"),
          tr("macOS keeps a list of what apps registered to start by themselves, and gives it through "
             "a tool of its own, sfltool. For that tool macOS may ask for an administrator's "
             "password. Brell never sees the password and changes nothing in the list."),
          &AppModel::cancelTaskList) {
    addNote("info.circle", Tone::plain,
            tr("You can leave it out: what launchd knows is shown without it. Once macOS has given the list, "
               "Brell reads it when this page is opened and at Refresh."));
    addAnswers(tr("Read the List"), [this] { this->model().confirmTaskList(); });
}

}  // namespace brell
