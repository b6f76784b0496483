#include "CorvaneBrell/Window/Page.h"

#include <QPushButton>
#include <QScrollBar>
#include <algorithm>

#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/ScrolledContent.h"
#include "CorvaneBrell/Window/Symbol.h"
#include "CorvaneBrell/Window/TabOrder.h"
#include "CorvaneBrell/Window/TypeSize.h"

namespace brell {

namespace {

using PageColumn::margin;

// A scroll area whose content never scrolls sideways and leaves its colour to the window.
QScrollArea* plainScrollArea() {
    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->viewport()->setAutoFillBackground(false);
    return scroll;
}

}  // namespace

int PageColumn::widest() {
    return widthFor(110, 920);
}

QWidget* PageColumn::in(QWidget* parent) {
    auto* column = new QWidget;
    column->setMaximumWidth(widest());
    auto* line = new QHBoxLayout(parent);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(column);
    return column;
}

Page::Page(const QString& title, const QString& purpose, QWidget* parent)
    : QWidget(parent),
      tools_(new QHBoxLayout),
      content_(new QVBoxLayout),
      scroll_(plainScrollArea()),
      empty_(new QWidget),
      emptyText_(new Paragraph({}, Paragraph::Look::secondary)),
      emptyColumn_(new QVBoxLayout(empty_)) {
    setAccessibleName(title);
    auto* titles = new QVBoxLayout;
    titles->setSpacing(2);
    titles->addWidget(new Paragraph(title, Paragraph::Look::title));
    titles->addWidget(new Paragraph(purpose, Paragraph::Look::secondary));
    auto* titleLine = new QHBoxLayout;
    titleLine->setSpacing(12);
    titleLine->addLayout(titles, 1);
    titleLine->addLayout(tools_);
    tools_->setSpacing(8);
    auto* head = new QWidget;
    headColumn_ = new QVBoxLayout(PageColumn::in(head));
    headColumn_->setContentsMargins(margin, 16, margin, 10);
    headColumn_->setSpacing(10);
    headColumn_->addLayout(titleLine);

    emptyColumn_->setContentsMargins(8, 24, 8, 24);
    emptyColumn_->setSpacing(12);
    emptyColumn_->addWidget(emptyText_);
    empty_->setObjectName("emptyState");
    empty_->hide();

    auto* column = new QWidget;
    column->setMaximumWidth(PageColumn::widest());
    rows_ = new QVBoxLayout(column);
    rows_->setContentsMargins(margin, 4, margin, margin);
    rows_->setSpacing(0);
    content_->setSpacing(14);
    rows_->addWidget(empty_);
    rows_->addLayout(content_);
    rows_->addStretch(1);

    auto* holder = new ScrolledContent;
    line_ = new QHBoxLayout(holder);
    line_->setContentsMargins(0, 0, 0, 0);
    line_->addWidget(column);
    scroll_->setWidget(holder);
    holder->setAutoFillBackground(false);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(0);
    all->addWidget(head);
    all->addWidget(scroll_, 1);
    new TabOrder(this, holder);
    connect(scroll_->verticalScrollBar(), &QScrollBar::rangeChanged, this, [this] { alignColumn(); });
}

// Rows and tools begin and end at the same places: the scroll bar takes its room from the margin where the
// column is as wide as the page, and has a counterpart at the left where the column stands in the middle.
void Page::alignColumn() {
    const QScrollBar* bar = scroll_->verticalScrollBar();
    const int taken = bar->maximum() > 0 ? bar->sizeHint().width() : 0;
    const bool isInTheMiddle = scroll_->width() >= PageColumn::widest() + taken;
    rows_->setContentsMargins(margin, 4, isInTheMiddle ? margin : margin - std::min(taken, margin), margin);
    line_->setContentsMargins(isInTheMiddle ? taken : 0, 0, 0, 0);
}

void Page::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    alignColumn();
}

bool Page::lead(const QString& name) {
    auto* row = findChild<Row*>(name);
    if (!row || !row->isVisibleTo(this)) return false;
    row->setOpen(true);
    scroll_->verticalScrollBar()->setValue(0);
    scrollIntoView(row);
    if (row->isOpen())
        row->focusArrow();
    else if (QWidget* first = firstControl(row))
        first->setFocus(Qt::TabFocusReason);
    return true;
}

void Page::setHeadLine(QWidget* line) {
    headColumn_->addWidget(line);
}

void Page::setEmptyState(const QString& sentence) {
    emptyText_->setText(sentence);
    empty_->setVisible(!sentence.isEmpty());
}

QPushButton* Page::addEmptyAction(const QString& text) {
    auto* button = actionButton(text);
    emptyColumn_->addWidget(button, 0, Qt::AlignLeft);
    return button;
}

Paragraph* sectionHeading(const QString& text) {
    return new Paragraph(text, Paragraph::Look::heading);
}

QPushButton* actionButton(const QString& text, const QString& symbol) {
    auto* button = new QPushButton(text);
    if (!symbol.isEmpty()) button->setIcon(symbolIcon(utf8(symbol)));
    button->setMinimumHeight(28);
    button->setAutoDefault(false);
    setActionText(button, text);
    return button;
}

void setActionText(QPushButton* button, const QString& text) {
    constexpr int room = 28;  // some styles leave none beside the words
    const int picture = button->icon().isNull() ? 0 : button->iconSize().width() + 4;
    button->setText(text);
    button->setMinimumWidth(button->fontMetrics().horizontalAdvance(text) + picture + room);
}

}  // namespace brell
