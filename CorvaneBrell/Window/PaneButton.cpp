#include "CorvaneBrell/Window/PaneButton.h"

#include <QPointer>

#include "CorvaneBrell/Platform/SettingsPanes.h"
#include "CorvaneBrell/Window/Message.h"
#include "CorvaneBrell/Window/Page.h"

namespace brell {

namespace {

void sayThatItDidNotOpen(QWidget* from, const QString& way) {
    tell(from, QObject::tr("System Settings could not be opened from here"),
         QObject::tr("On a Mac, open System Settings and choose %1.").arg(way));
}

}  // namespace

QPushButton* paneButton(std::string_view link, const QString& way) {
    auto* button = actionButton(QObject::tr("Open System Settings"), "gearshape");
    button->setAccessibleName(QObject::tr("Open System Settings: %1").arg(way));
    QObject::connect(button, &QPushButton::clicked, button, [button, link = std::string(link), way] {
        openSettingsPane(link, [from = QPointer<QWidget>(button), way](bool opened) {
            if (!opened && from) sayThatItDidNotOpen(from, way);
        });
    });
    return button;
}

}  // namespace brell
