#include "CorvaneBrell/Window/StripLine.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QToolButton>
#include <algorithm>

#include "CorvaneBrell/Window/Message.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

namespace {

constexpr int buttonHeight = 24;
constexpr int leastWords = 140;         // or, where there is more room, three tenths of it
constexpr qsizetype longestLine = 400;  // more than any window shows

}  // namespace

StripLine::StripLine(const QString& title, const QString& symbol, Tone tone, QWidget* parent)
    : QWidget(parent),
      title_(title),
      text_(new SelectableText(title)),
      details_(actionButton(tr("Details..."))),
      actions_(new QHBoxLayout),
      others_(quietButton("ellipsis.circle", this)) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    line->addWidget(new SymbolView(utf8(symbol), tone, 16));
    line->addWidget(text_, 1);
    line->addLayout(actions_);
    actions_->setSpacing(8);
    actions_->addWidget(details_);
    actions_->addWidget(others_);
    others_->setFixedSize(buttonHeight, buttonHeight);
    others_->setToolTip(tr("More"));
    others_->setAccessibleName(tr("%1: more").arg(title));
    others_->hide();
    connect(others_, &QToolButton::clicked, this, &StripLine::showOthers);
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
    actions_->insertWidget(actions_->indexOf(others_), button);
    buttons_.push_back(button);
    connect(button, &QPushButton::clicked, this, [act = std::move(act)] { act(); });
    return button;
}

void StripLine::addDismissal(std::function<void()> dismiss) {
    dismissal_ = quietButton("xmark.circle", this);
    dismissal_->setFixedSize(buttonHeight, buttonHeight);
    dismissal_->setToolTip(tr("Dismiss"));
    dismissal_->setAccessibleName(tr("Dismiss: %1").arg(title_));
    actions_->addWidget(dismissal_);
    connect(dismissal_, &QToolButton::clicked, this, [dismiss = std::move(dismiss)] { dismiss(); });
}

void StripLine::showOthers() {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (QPushButton* button : buttons_)
        if (button->isHidden())
            menu->addAction(button->text(), button, &QPushButton::click)->setEnabled(button->isEnabled());
    menu->popup(others_->mapToGlobal(others_->rect().topLeft()));
}

// What stands behind the words and their button when so many of the others are shown.
int StripLine::taken(std::size_t shown) const {
    const auto width = [this](const QWidget* widget) {
        return widget->sizeHint().expandedTo(widget->minimumSize()).width() + actions_->spacing();
    };
    int taken = dismissal_ ? width(dismissal_) : 0;
    if (shown < buttons_.size()) taken += width(others_);
    for (std::size_t i = 0; i < shown; ++i) taken += width(buttons_[i]);
    return taken;
}

// Whatever its buttons need, it takes the width of the page.
QSize StripLine::minimumSizeHint() const {
    return {leastWords, buttonHeight};
}

void StripLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fit();
}

void StripLine::fit() {
    const int symbol = layout()->itemAt(0)->sizeHint().width() + layout()->spacing();
    const int all = width() - symbol - layout()->spacing();
    const int least =
        std::max(leastWords, width() * 3 / 10) + details_->sizeHint().width() + actions_->spacing();
    std::size_t count = buttons_.size();
    while (count > 0 && all - taken(count) < least) --count;
    for (std::size_t i = 0; i < buttons_.size(); ++i) buttons_[i]->setVisible(i < count);
    others_->setVisible(count < buttons_.size());
    const int room = all - taken(count);
    const bool fits = words_.size() <= longestLine && text_->fontMetrics().horizontalAdvance(line_) <= room;
    details_->setVisible(!fits);
    const int left = fits ? room : room - details_->sizeHint().width() - actions_->spacing();
    const QString shown = fits ? line_ : text_->fontMetrics().elidedText(line_, Qt::ElideRight, left);
    if (text_->toPlainText() != shown) text_->setPlainText(shown);
}

}  // namespace brell
