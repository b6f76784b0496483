#include "CorvaneBrell/Window/NoticeBar.h"

#include <QPainter>

#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

NoticeBar::NoticeBar(const QString& name, const QString& words, const QString& symbol, Tone tone,
                     QWidget* parent)
    : QFrame(parent), tone_(tone), text_(new SelectableText(name)), actions_(new QHBoxLayout) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(14, 9, 10, 9);
    line->setSpacing(10);
    line->addWidget(new SymbolView(utf8(symbol), tone, 18), 0, Qt::AlignTop);
    auto* column = new QVBoxLayout;
    column->setSpacing(8);
    column->addWidget(text_);
    column->addLayout(actions_);
    line->addLayout(column, 1);
    actions_->setSpacing(8);
    actions_->addStretch(1);
    text_->setPlainText(words);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
}

QString NoticeBar::words() const {
    return text_->toPlainText();
}

QPushButton* NoticeBar::addAction(const QString& text) {
    QPushButton* button = actionButton(text);
    actions_->insertWidget(actions_->count() - 1, button);
    return button;
}

void NoticeBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Appearance::toned(tone_, palette()), 1));
    painter.setBrush(Appearance::tinted(tone_, palette()));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
}

}  // namespace brell
