#include "CorvaneBrell/Window/Disclosure.h"

#include <QToolButton>
#include <QVBoxLayout>

#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

Disclosure::Disclosure(const QString& title, const QString& name, std::function<QWidget*()> make,
                       QWidget* parent)
    : QWidget(parent), make_(std::move(make)), button_(new QToolButton) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(button_, 0, Qt::AlignLeft);
    button_->setAutoRaise(true);
    button_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button_->setText(title);
    button_->setAccessibleName(title + ": " + name);
    button_->setIconSize({14, 14});
    button_->setMinimumHeight(26);
    button_->setFocusPolicy(Qt::StrongFocus);
    connect(button_, &QToolButton::clicked, this, [this] {
        setOpen(!isOpen());
        if (isOpen()) scrollIntoView(this);
    });
    setOpen(false);
}

void Disclosure::setOpen(bool open) {
    if (open && !content_) {
        content_ = make_();
        layout()->addWidget(content_);
    }
    if (content_) content_->setVisible(open);
    button_->setIcon(symbolIcon(open ? "chevron.down" : "chevron.right"));
    button_->setAccessibleDescription(open ? tr("Open") : tr("Closed"));
}

}  // namespace brell
