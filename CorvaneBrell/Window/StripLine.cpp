#include "CorvaneBrell/Window/StripLine.h"

#include <QHBoxLayout>
#include <QToolButton>

#include "CorvaneBrell/Window/Message.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

namespace {

constexpr int buttonHeight = 24;
constexpr qsizetype longestLine = 400;  // more than any window shows

}  // namespace

StripLine::StripLine(const QString& title, const QString& symbol, Tone tone, QWidget* parent)
    : QWidget(parent),
      title_(title),
      text_(new SelectableText(title)),
      details_(actionButton(tr("Details..."))),
      actions_(new QHBoxLayout) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    line->addWidget(new SymbolView(utf8(symbol), tone, 16));
    line->addWidget(text_, 1);
    line->addLayout(actions_);
    actions_->setSpacing(8);
    actions_->addWidget(details_);
    text_->setLineWrapMode(QTextEdit::NoWrap);
    text_->setFixedHeight(text_->fontMetrics().height() + 2);
    details_->setMinimumHeight(buttonHeight);
    details_->setAccessibleName(tr("%1: all of it").arg(title));
    connect(details_, &QPushButton::clicked, this, [this] { tell(this, title_, words_); });
}

void StripLine::setWords(const QString& words, const QString& prefix) {
    words_ = words;
    line_ = prefix + words.left(longestLine).simplified();
    fit();
}

QPushButton* StripLine::addAction(const QString& text, std::function<void()> act) {
    QPushButton* button = actionButton(text);
    button->setMinimumHeight(buttonHeight);
    actions_->addWidget(button);
    connect(button, &QPushButton::clicked, this, [act = std::move(act)] { act(); });
    return button;
}

void StripLine::addDismissal(std::function<void()> dismiss) {
    QToolButton* button = quietButton("xmark.circle", this);
    button->setFixedSize(buttonHeight, buttonHeight);
    button->setToolTip(tr("Dismiss"));
    button->setAccessibleName(tr("Dismiss: %1").arg(title_));
    actions_->addWidget(button);
    connect(button, &QToolButton::clicked, this, [dismiss = std::move(dismiss)] { dismiss(); });
}

void StripLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fit();
}

void StripLine::fit() {
    int taken = 0;
    for (int i = 1; i < actions_->count(); ++i)
        taken += actions_->itemAt(i)->sizeHint().width() + actions_->spacing();
    const int symbol = layout()->itemAt(0)->sizeHint().width() + layout()->spacing();
    const int room = width() - symbol - taken - layout()->spacing();
    const bool fits = words_.size() <= longestLine && text_->fontMetrics().horizontalAdvance(line_) <= room;
    details_->setVisible(!fits);
    const int left = fits ? room : room - details_->sizeHint().width() - actions_->spacing();
    const QString shown = fits ? line_ : text_->fontMetrics().elidedText(line_, Qt::ElideRight, left);
    if (text_->toPlainText() != shown) text_->setPlainText(shown);
}

}  // namespace brell
