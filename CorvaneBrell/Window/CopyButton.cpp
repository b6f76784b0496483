#include "CorvaneBrell/Window/CopyButton.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTimer>

#include "CorvaneBrell/Window/Page.h"

namespace brell {

QPushButton* copyButton(const QString& title, const QString& of, std::function<QString()> text) {
    constexpr int moment = 1500;
    auto* button = actionButton(title, "doc.on.doc");
    button->setAccessibleName(title + ": " + of);
    auto* timer = new QTimer(button);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, button, [button, title] { button->setText(title); });
    QObject::connect(button, &QPushButton::clicked, button, [button, timer, text = std::move(text)] {
        QGuiApplication::clipboard()->setText(text());
        button->setMinimumWidth(button->width());  // the buttons beside it stay where they are
        button->setText(QObject::tr("Copied"));
        timer->start(moment);
    });
    return button;
}

}  // namespace brell
