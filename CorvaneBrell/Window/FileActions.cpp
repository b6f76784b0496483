#include "CorvaneBrell/Window/FileActions.h"

#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPointer>

#include "BrellCore/Engine/Report.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/CopyButton.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

namespace {

using Save = void (AppModel::*)(const std::filesystem::path&);

void askWhere(AppModel& model, QWidget* over, const QString& title, std::string_view proposedName,
              Save save) {
    auto* dialog = new QFileDialog(over->window(), title, QDir::homePath());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
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

void showScript(const QString& script, QWidget* over) {
    auto* window = new QDialog(over);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(QObject::tr("Restore Script"));
    auto* column = new QVBoxLayout(window);
    column->addWidget(new Paragraph(QObject::tr("Run in Terminal, this script puts back everything that is "
                                                "changed now, also where Brell itself is gone."),
                                    Paragraph::Look::secondary));
    column->addWidget(scriptView(script), 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(
        copyButton(QObject::tr("Copy"), QObject::tr("restore script"), [script] { return script; }));
    auto* close = actionButton(QObject::tr("Close"));
    QObject::connect(close, &QPushButton::clicked, window, &QDialog::close);
    buttons->addWidget(close);
    column->addLayout(buttons);
    window->resize(680, 480);
    window->show();
}

}  // namespace

void FileActions::saveReport(AppModel& model, QWidget* over) {
    if (model.whyNothingReal()) return model.saveReport({});  // there is none, and the model says why
    askWhere(model, over, QObject::tr("Save Report"), Report::fileName, &AppModel::saveReport);
}

void FileActions::saveRestoreScript(AppModel& model, QWidget* over) {
    askWhere(model, over, QObject::tr("Save Restore Script"), RestoreScript::exportName,
             &AppModel::saveRestoreScript);
}

void FileActions::showRestoreScript(AppModel& model, QWidget* over) {
    const QPointer<QWidget> window = over->window();
    model.makeRestoreScript([window](const std::string& script) {
        if (window) showScript(qt(script), window);
    });
}

}  // namespace brell
