#include "CorvaneBrell/Window/Sidebar.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>

#include "CorvaneBrell/Window/Appearance.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SearchField.h"
#include "CorvaneBrell/Window/Symbol.h"
#include "CorvaneBrell/Window/TypeSize.h"

namespace brell {

namespace {

constexpr int countRole = Qt::UserRole + 1;
// Properties of the list.
constexpr auto marksNone = "marksNone";        // the results of a search are shown instead of a page
constexpr auto usesKeyboard = "usesKeyboard";  // so that the focus has to be seen
constexpr int textLeft = 34, textRight = 8, rowMargin = 2;  // of a row
constexpr QMargins margins(10, 14, 6, 10);

// Symbol, title, and the count at the right.
class PageDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return {QStyledItemDelegate::sizeHint(option, index).width(), heightFor(12, 30)};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto is = [&](const char* property) {
            return option.widget && option.widget->property(property).toBool();
        };
        const bool isCurrent = option.state & QStyle::State_Selected;
        const bool selected = isCurrent && !is(marksNone);
        const QPalette& palette = option.palette;
        const QRect place = option.rect.adjusted(rowMargin, 1, -rowMargin, -1);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (selected) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(palette.color(QPalette::Active, QPalette::Highlight));
            painter->drawRoundedRect(place, 6, 6);
        }
        if (isCurrent && is(usesKeyboard) && option.widget->hasFocus()) {
            painter->setPen(QPen(
                palette.color(QPalette::Active, selected ? QPalette::HighlightedText : QPalette::Highlight),
                1));
            painter->setBrush(Qt::NoBrush);
            painter->drawRoundedRect(QRectF(place).adjusted(2.5, 2.5, -2.5, -2.5), 4, 4);
        }
        const QIcon icon = index.data(Qt::DecorationRole).value<QIcon>();
        const QRect symbol(place.left() + 9, place.center().y() - 7, 16, 16);
        icon.paint(painter, symbol, Qt::AlignCenter, selected ? QIcon::Selected : QIcon::Normal);
        painter->setPen(
            palette.color(QPalette::Active, selected ? QPalette::HighlightedText : QPalette::WindowText));
        const int count = index.data(countRole).toInt();
        const QString countText = count > 0 ? QString::number(count) : QString();
        const int countWidth = count > 0 ? option.fontMetrics.horizontalAdvance(countText) + 8 : 0;
        const QRect text = place.adjusted(textLeft, 0, -textRight - countWidth, 0);
        const QString title = index.data(Qt::UserRole).toString();
        painter->drawText(text, Qt::AlignVCenter | Qt::AlignLeft,
                          option.fontMetrics.elidedText(title, Qt::ElideRight, text.width()));
        if (!selected) painter->setPen(Appearance::secondaryText(palette));
        painter->drawText(place.adjusted(0, 0, -9, 0), Qt::AlignVCenter | Qt::AlignRight, countText);
        painter->restore();
    }
};

QListWidget* pageList() {
    auto* list = new QListWidget;
    list->setAccessibleName(QListWidget::tr("Pages"));
    list->setItemDelegate(new PageDelegate(list));
    list->setFrameShape(QFrame::NoFrame);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->viewport()->setAutoFillBackground(false);
    for (std::size_t i = 0; i < enumTexts<Screen>.size(); ++i) {
        const auto screen = static_cast<Screen>(i);
        auto* item = new QListWidgetItem(symbolIcon(symbol(screen)), qt(title(screen)), list);
        item->setData(Qt::UserRole, qt(title(screen)));
    }
    return list;
}

// For every title with a count beside it.
int widthOf(const QListWidget& list) {
    int titles = 0;
    for (int i = 0; i < list.count(); ++i)
        titles = std::max(titles, list.fontMetrics().horizontalAdvance(
                                      list.item(i)->data(Qt::UserRole).toString() + "  9"));
    constexpr int usual = 208;
    return std::max(usual, margins.left() + margins.right() + 2 * rowMargin + textLeft + titles + textRight);
}

// The words that assistive technology reads: "Finder, 3 active changes".
QString spoken(const QString& title, std::size_t count) {
    if (count == 0) return title;
    return count == 1 ? QListWidget::tr("%1, 1 active change").arg(title)
                      : QListWidget::tr("%1, %2 active changes").arg(title).arg(count);
}

}  // namespace

Sidebar::Sidebar(AppModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      search_(searchField(tr("Search"), tr("Search settings, login items and pages"))),
      pages_(pageList()) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margins);
    column->setSpacing(10);
    column->addWidget(search_);
    column->addWidget(pages_, 1);
    setFixedWidth(widthOf(*pages_));
    search_->installEventFilter(this);
    pages_->installEventFilter(this);
    pages_->viewport()->installEventFilter(this);
    connect(search_, &QLineEdit::textChanged, this, &Sidebar::searched);
    connect(pages_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (pages_->hasFocus()) search_->clear();  // the user goes to another page
        model_.show(static_cast<Screen>(row));
    });
    connect(pages_, &QListWidget::itemClicked, this, [this] { search_->clear(); });
}

int Sidebar::heightOfAll() const {
    const int rows = pages_->count() * pages_->sizeHintForRow(0);
    return margins.top() + search_->sizeHint().height() + layout()->spacing() + rows + margins.bottom();
}

void Sidebar::refresh() {
    pages_->setCurrentRow(static_cast<int>(model_.state().screen));
    for (int i = 0; i < pages_->count(); ++i) {
        QListWidgetItem* item = pages_->item(i);
        const std::size_t count = model_.changedCount(static_cast<Screen>(i));
        item->setData(countRole, static_cast<int>(count));
        item->setData(Qt::AccessibleTextRole, spoken(item->data(Qt::UserRole).toString(), count));
    }
}

void Sidebar::setSearching(bool searching) {
    pages_->setProperty(marksNone, searching);
    pages_->viewport()->update();
}

bool Sidebar::eventFilter(QObject* watched, QEvent* event) {
    if (watched != search_) {
        noteHowTheListIsUsed(*event);
        return QWidget::eventFilter(watched, event);
    }
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Down:
        case Qt::Key_Return:
        case Qt::Key_Enter: emit entered(); return true;
        default: return QWidget::eventFilter(watched, event);
    }
}

void Sidebar::noteHowTheListIsUsed(const QEvent& event) {
    const auto note = [this](bool byKeyboard) {
        pages_->setProperty(usesKeyboard, byKeyboard);
        pages_->viewport()->update();
    };
    if (event.type() == QEvent::MouseButtonPress) note(false);
    if (event.type() == QEvent::KeyPress) note(true);
    if (event.type() != QEvent::FocusIn) return;
    const Qt::FocusReason reason = static_cast<const QFocusEvent&>(event).reason();
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason)
        note(true);
}

}  // namespace brell
