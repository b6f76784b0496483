#include "CorvaneBrell/Window/FileDialog.h"

#include <QFile>
#include <QSettings>
#include <map>
#include <memory>

namespace brell {

namespace {

// The toolkit's own notes about file dialogs.
class Diary {
public:
    Diary() : isThere_(QFile::exists(settings_.fileName())) {
        settings_.setFallbacksEnabled(false);  // on macOS they are the user's keys for every application
        settings_.beginGroup(QStringLiteral("FileDialog"));
        for (const QString& key : settings_.allKeys()) before_[key] = settings_.value(key);
    }

    void putBack() {
        settings_.sync();
        settings_.remove(QString());  // everything of the group
        for (const auto& [key, value] : before_) settings_.setValue(key, value);
        settings_.endGroup();
        settings_.sync();
        if (!isThere_ && settings_.allKeys().isEmpty()) QFile::remove(settings_.fileName());
    }

private:
    QSettings settings_{QSettings::UserScope, QStringLiteral("QtProject")};
    bool isThere_;
    std::map<QString, QVariant> before_;
};

}  // namespace

QFileDialog* fileDialog(QWidget* over, const QString& title, const QString& folder) {
    auto* dialog = new QFileDialog(over->window(), title, folder);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // The dialog writes while it is destroyed, before this is called.
    QObject::connect(dialog, &QObject::destroyed, [diary = std::make_shared<Diary>()] { diary->putBack(); });
    return dialog;
}

}  // namespace brell
