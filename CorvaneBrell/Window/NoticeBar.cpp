#include "CorvaneBrell/Window/NoticeBar.h"

#include <QPainter>

#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

NoticeBar::NoticeBar(const QString& name, const QString& symbol, Tone tone, QWidget* parent)
    : QFrame(parent), tone_(tone), text_(new SelectableText(name)), line_(new QHBoxLayout(this)) {
    line_->setContentsMargins(14, 9, 10, 9);
    line_->setSpacing(10);
    line_->addWidget(new SymbolView(utf8(symbol), tone, 18), 0, Qt::AlignVCenter);
    line_->addWidget(text_, 1, Qt::AlignVCenter);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    hide();
}

void NoticeBar::setWords(const QString& words) {
    if (words != words_) {
        words_ = words;
        text_->setPlainText(words);
        if (!heading_.isEmpty()) insertHeading();
    }
    setVisible(!words.isEmpty());
}

void NoticeBar::insertHeading() {
    QTextCharFormat bold;
    bold.setFontWeight(QFont::DemiBold);
    QTextCursor cursor(text_->document());
    cursor.insertText(heading_, bold);
    cursor.insertBlock({}, {});
}

QPushButton* NoticeBar::addAction(const QString& text) {
    QPushButton* button = actionButton(text);
    line_->addWidget(button, 0, Qt::AlignVCenter);
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
