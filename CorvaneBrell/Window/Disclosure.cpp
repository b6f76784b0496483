#include "CorvaneBrell/Window/Disclosure.h"

#include <QAbstractButton>
#include <QPainter>
#include <QVBoxLayout>

#include "CorvaneBrell/Window/Appearance.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

namespace {

// The arrow begins where texts do, whatever room a style leaves around the parts of a button.
class DisclosureButton final : public QAbstractButton {
public:
    QSize sizeHint() const override {
        return {wordsLeft + fontMetrics().horizontalAdvance(text()) + focusMargin, height};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (hasFocus()) {
            painter.setPen(QPen(palette().color(QPalette::Active, QPalette::Highlight), 2));
            painter.drawRoundedRect(QRectF(rect()).adjusted(wordsLeft - focusMargin, 2, -1, -2), 5, 5);
        }
        icon().paint(&painter, QRect(arrowLeft, (rect().height() - arrow) / 2, arrow, arrow));
        painter.setPen(isDown() ? Appearance::secondaryText(palette())
                                : palette().color(QPalette::Active, QPalette::WindowText));
        painter.drawText(rect().adjusted(wordsLeft, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text());
    }

private:
    static constexpr int height = 26, arrow = 14;
    static constexpr int arrowLeft = -3;  // a symbol has room around it
    static constexpr int wordsLeft = arrowLeft + arrow + 5, focusMargin = 4;
};

}  // namespace

Disclosure::Disclosure(const QString& title, const QString& name, std::function<QWidget*()> make,
                       QWidget* parent)
    : QWidget(parent), make_(std::move(make)), button_(new DisclosureButton) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(button_, 0, Qt::AlignLeft);
    button_->setText(title);
    button_->setAccessibleName(title + ": " + name);
    button_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    button_->setFocusPolicy(Qt::StrongFocus);
    connect(button_, &QAbstractButton::clicked, this, [this] {
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
