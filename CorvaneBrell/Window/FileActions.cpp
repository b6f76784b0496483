#include "CorvaneBrell/Window/FileActions.h"

#include <QDesktopServices>
#include <QDir>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPointer>
#include <QUrl>

#include "BrellCore/Engine/Report.h"
#include "BrellCore/Journal/JournalPlace.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/FileContents.h"
#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Platform/FileViewer.h"
#include "CorvaneBrell/Window/CopyButton.h"
#include "CorvaneBrell/Window/FileDialog.h"
#include "CorvaneBrell/Window/Message.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

namespace {

using Save = void (AppModel::*)(const std::filesystem::path&);

void askWhere(AppModel& model, QWidget* over, const QString& title, std::string_view proposedName,
              Save save) {
    auto* dialog = fileDialog(over, title, QDir::homePath());
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->selectFile(qt(proposedName));
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog, [&model, save](const QString& file) {
        if (!file.isEmpty()) (model.*save)(utf8(file));
    });
    dialog->open();
}

QPlainTextEdit* scriptView(const QString& script) {
    auto* view = new QPlainTextEdit(script);
    view->setAccessibleName(QObject::tr("Restore script"));
    view->setReadOnly(true);
    view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    view->setTabChangesFocus(true);
    view->setLineWrapMode(QPlainTextEdit::NoWrap);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return view;
}

// The command runs this file, which is kept up to date: a script that is pasted whole would not get through
// what an interactive shell makes of it.
void showScript(const QString& script, const std::filesystem::path& file, QWidget* over) {
    auto* window = new QDialog(over);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(QObject::tr("Restore Script"));
    auto* column = new QVBoxLayout(window);
    column->addWidget(
        new Paragraph(QObject::tr("This script puts back everything that is changed now, also where Brell "
                                  "itself is gone. The command runs it in Terminal, from %1.")
                          .arg(qt(file.string())),
                      Paragraph::Look::secondary));
    column->addWidget(scriptView(script), 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(copyButton(QObject::tr("Copy Command"), QObject::tr("restore script"),
                                  [file] { return qt("sh " + RestoreScript::quote(file.string())); }));
    auto* close = actionButton(QObject::tr("Close"));
    QObject::connect(close, &QPushButton::clicked, window, &QDialog::close);
    buttons->addWidget(close);
    column->addLayout(buttons);
    window->resize(680, 480);
    window->show();
}

// The one that the last change left: without its journal, or of an older one, no other can be made. Where
// others may write, it may be theirs.
void showKeptScript(const AppModel& model, QWidget* over) try {
    constexpr std::size_t most = 64 * 1024 * 1024;
    const std::filesystem::path file = model.journalDirectory() / RestoreScript::fileName;
    if (const auto reason = whyNotTrusted({file.parent_path(), file}))
        throw std::runtime_error(*reason + ".");
    const auto kept = readFile(file, most);
    if (kept) return showScript(qt(kept->bytes), file, over->window());
    tell(
        over, QObject::tr("There is no restore script"),
        QObject::tr("%1 does not exist: no change that Brell made was still active when it was last written.")
            .arg(qt(file.string())));
} catch (const std::exception& error) {
    tell(over, QObject::tr("The restore script could not be read"), qt(error.what()));
}

}  // namespace

void FileActions::showJournalFolder(const AppModel& model) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(qt(model.journalDirectory().string())));
}

void FileActions::showInFinder(const std::filesystem::path& file, QWidget* over) {
    std::error_code unknown;
    if (!std::filesystem::exists(std::filesystem::symlink_status(file, unknown)))
        return tell(over, QObject::tr("The file is not there any more"),
                    QObject::tr("%1 does not exist.").arg(qt(file.string())));
    if (!selectInFileViewer(file))
        QDesktopServices::openUrl(QUrl::fromLocalFile(qt(file.parent_path().string())));
}

void FileActions::saveReport(AppModel& model, QWidget* over) {
    if (model.whyNothingReal()) return model.saveReport({});  // there is none, and the model says why
    askWhere(model, over, QObject::tr("Save Report"), Report::fileName, &AppModel::saveReport);
}

void FileActions::saveRestoreScript(AppModel& model, QWidget* over) {
    if (model.state().journalLack) return model.saveRestoreScript({});  // it says why not
    askWhere(model, over, QObject::tr("Save Restore Script"), RestoreScript::exportName,
             &AppModel::saveRestoreScript);
}

void FileActions::showRestoreScript(AppModel& model, QWidget* over) {
    if (isLocked(model.state()) || model.state().journalLack) return showKeptScript(model, over);
    const QPointer<QWidget> window = over->window();
    const std::filesystem::path file = model.journalDirectory() / RestoreScript::fileName;
    model.makeRestoreScript([window, file](const std::string& script) {
        if (window) showScript(qt(script), file, window);
    });
}

}  // namespace brell
