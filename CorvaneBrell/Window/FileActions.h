// The files made of the journal for use elsewhere: the report and the restore script, as files or to read;
// and where files lie.
#pragma once

#include <filesystem>

class QWidget;

namespace brell {

class AppModel;

// Each opens a window of its own over the widget's and returns at once. The model must outlive the widget.
namespace FileActions {

void saveReport(AppModel& model, QWidget* over);
void saveRestoreScript(AppModel& model, QWidget* over);
void showRestoreScript(AppModel& model, QWidget* over);
void showJournalFolder(const AppModel& model);
void showInFinder(const std::filesystem::path& file, QWidget* over);  // selected in its folder

}  // namespace FileActions

}  // namespace brell
