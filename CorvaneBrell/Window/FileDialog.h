// Dialogs for files and folders that leave nothing behind.
#pragma once

#include <QFileDialog>

namespace brell {

// Over the window of this widget; it deletes itself when it is closed. The toolkit notes in preferences of
// its own which folders its dialogs showed; when the dialog is gone they are as they were before.
QFileDialog* fileDialog(QWidget* over, const QString& title, const QString& folder = {});

}  // namespace brell
