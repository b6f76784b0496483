#include "CorvaneBrell/Window/Row.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>

#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Symbol.h"
#include "CorvaneBrell/Window/TabOrder.h"

namespace brell {

namespace {

constexpr int symbolPoints = 15, badgePoints = 14;

bool isLoud(Tone tone) {
    return tone == Tone::caution || tone == Tone::critical;
}

// A word or two, on a tinted ground where they ask for attention. One that the control says as well is quiet.
class BadgeView final : public QFrame {
public:
    BadgeView(const RowBadge& badge, QWidget* parent) : QFrame(parent), tone_(badge.tone) {
        auto* line = new QHBoxLayout(this);
        line->setContentsMargins(isLoud(tone_) ? 6 : 0, 1, isLoud(tone_) ? 7 : 0, 1);
        line->setSpacing(gap);
        line->addWidget(new SymbolView(utf8(badge.symbol), tone_, badgePoints));
        auto* text = new Paragraph(badge.text,
                                   isLoud(tone_) ? Paragraph::Look::bodySmall : Paragraph::Look::secondary);
        text->setMinimumWidth(text->sizeHint().width());
        line->addWidget(text);
        setToolTip(plainTip(badge.help));
        setAccessibleName(badge.text);
        setAccessibleDescription(badge.help);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    // For the longest of all badges, in whatever font.
    static QSize room() {
        static std::optional<std::pair<QFont, QSize>> known;  // every row with a badge asks
        const QFont font = QApplication::font();
        if (known && known->first == font) return known->second;
        const QSize words =
            Paragraph(QObject::tr("Changed outside Brell"), Paragraph::Look::bodySmall).sizeHint();
        constexpr int usualWidth = 156, usualHeight = 18;
        const QSize room =
            QSize(usualWidth, usualHeight)
                .expandedTo({words.width() + loudMargins + badgePoints + gap, words.height() + 2});
        known = {font, room};
        return room;
    }

protected:
    void paintEvent(QPaintEvent*) override {
        if (!isLoud(tone_)) return;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Appearance::tinted(tone_, palette()));
        painter.drawRoundedRect(rect(), 6, 6);
    }

private:
    static constexpr int gap = 5, loudMargins = 6 + 7;
    Tone tone_;
};

}  // namespace

QWidget* symbolLine(const QString& symbol, Tone tone, const QString& text, QWidget* parent) {
    auto* holder = new QWidget(parent);
    auto* line = new QHBoxLayout(holder);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    line->addWidget(new SymbolView(utf8(symbol), tone, symbolPoints), 0, Qt::AlignTop);
    line->addWidget(new Paragraph(text, Paragraph::Look::body), 1);
    return holder;
}

QToolButton* quietButton(const QString& symbol, QWidget* parent) {
    constexpr int side = 28;
    auto* button = new QToolButton(parent);
    button->setAutoRaise(true);
    button->setIcon(symbolIcon(utf8(symbol)));
    button->setIconSize({16, 16});
    button->setFixedSize(side, side);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

// Once its place is known.
void scrollIntoView(QWidget* opened) {
    constexpr int margin = 12;
    QTimer::singleShot(0, opened, [opened] {
        QWidget* above = opened->parentWidget();
        while (above && !qobject_cast<QScrollArea*>(above)) above = above->parentWidget();
        auto* scroll = qobject_cast<QScrollArea*>(above);
        if (!scroll || opened->isHidden()) return;
        scroll->widget()->layout()->activate();
        QEvent laidOut(QEvent::LayoutRequest);
        QCoreApplication::sendEvent(scroll, &laidOut);  // of a new page the bar has no range before
        const int top = opened->mapTo(scroll->widget(), QPoint()).y() - margin;
        const int bottom = top + opened->height() + 2 * margin;
        QScrollBar* bar = scroll->verticalScrollBar();
        const int seen = scroll->viewport()->height();
        if (bottom > bar->value() + seen) bar->setValue(std::min(top, bottom - seen));
    });
}

Row::Row(const QString& title, Columns columns, QWidget* parent)
    : QFrame(parent),
      titleText_(new Paragraph({}, Paragraph::Look::rowTitle)),
      what_(new Paragraph({}, Paragraph::Look::secondary)),
      arrow_(quietButton("chevron.right", this)),
      words_(new QVBoxLayout),
      layout_(new RowLayout(this)) {
    using Part = RowLayout::Part;
    if (columns == Columns::stateAndControl) layout_->setBadgeRoom(BadgeView::room());
    words_->setContentsMargins(0, 0, 0, 0);
    words_->setSpacing(2);
    words_->addWidget(what_);
    layout_->put(Part::title, titleText_);
    layout_->put(Part::words, words_);
    layout_->put(Part::arrow, arrow_);
    what_->hide();
    arrow_->hide();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    connect(arrow_, &QToolButton::clicked, this, &Row::toggle);
    setTitle(title);
}

void Row::setTitle(const QString& title) {
    titleText_->setText(title);
    setAccessibleName(title);
    arrow_->setAccessibleName(tr("Details of %1").arg(title));
}

void Row::setWhat(const QString& text) {
    what_->setText(text);
    what_->setVisible(!text.isEmpty());
}

void Row::setNotes(const QString& text) {
    if (!notes_ && text.isEmpty()) return;
    if (!notes_) {
        notes_ = new Paragraph({}, Paragraph::Look::small, this);
        layout_->put(RowLayout::Part::notes, notes_);
    }
    notes_->setText(text);
    notes_->setVisible(!text.isEmpty());
}

void Row::setBadge(const std::optional<RowBadge>& badge) {
    if (badge == shownBadge_) return;
    shownBadge_ = badge;
    auto* view = badge ? new BadgeView(*badge, this) : nullptr;
    layout_->put(RowLayout::Part::badge, view);
    if (view) view->show();
}

void Row::setNotice(const QString& text, const QString& symbol, Tone tone) {
    if (text.isEmpty()) return setNotices({});
    setNotices({{text, symbol, tone, {}}});
}

void Row::setNotices(const std::vector<RowBadge>& notices) {
    if (notices == shownNotices_) return;
    shownNotices_ = notices;
    delete notice_;
    notice_ = nullptr;
    if (notices.empty()) return;
    notice_ = new QWidget(this);
    auto* lines = new QVBoxLayout(notice_);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(3);
    for (const RowBadge& notice : notices)
        lines->addWidget(symbolLine(notice.symbol, notice.tone, notice.text, notice_));
    words_->insertWidget(1, notice_);
}

void Row::addBelow(QWidget* part) {
    words_->addWidget(part);
}

void Row::mark(const QStringList& words) {
    titleText_->mark(words);
    what_->mark(words);
}

void Row::setControl(QWidget* control) {
    control_ = control;
    layout_->put(RowLayout::Part::control, control);
}

void Row::setWayBack(const std::optional<RowWayBack>& wayBack) {
    if (wayBack == shownWayBack_) return;
    shownWayBack_ = wayBack;
    if (!wayBack_) {
        wayBack_ = quietButton("arrow.uturn.backward", this);
        layout_->put(RowLayout::Part::wayBack, wayBack_);
        connect(wayBack_, &QToolButton::clicked, this, &Row::wayBackAsked);
    }
    const bool hadFocus = wayBack_->hasFocus();
    wayBack_->setVisible(wayBack.has_value());
    if (!wayBack) {
        QWidget* next = hadFocus && control_ ? firstControl(control_) : nullptr;
        if (next) next->setFocus(Qt::OtherFocusReason);
        return;
    }
    const QString words = tr("Back to %1").arg(wayBack->leadsTo);
    wayBack_->setToolTip(plainTip(words));
    wayBack_->setAccessibleName(tr("%1: %2").arg(words, title()));
    wayBack_->setAccessibleDescription(tr("What was there before Brell is put back."));
    wayBack_->setEnabled(wayBack->isEnabled);
}

void Row::setDetails(std::function<QWidget*()> build) {
    build_ = std::move(build);
    arrow_->setVisible(build_ != nullptr);
}

void Row::setOpen(bool open) {
    if (open && !details_ && build_) {
        details_ = build_();
        layout_->put(RowLayout::Part::details, details_);
    }
    if (details_) details_->setVisible(open);
    arrow_->setIcon(symbolIcon(open ? "chevron.down" : "chevron.right"));
    arrow_->setAccessibleDescription(open ? tr("Open") : tr("Closed"));
}

void Row::toggle() {
    setOpen(!isOpen());
    if (isOpen()) scrollIntoView(this);
}

bool Row::isOnHead(const QMouseEvent& event) const {
    const bool isBelow = isOpen() && event.position().y() >= details_->y();
    return event.button() == Qt::LeftButton && !isBelow && rect().contains(event.position().toPoint());
}

void Row::mousePressEvent(QMouseEvent* event) {
    isPressed_ = isOnHead(*event);
}

void Row::mouseReleaseEvent(QMouseEvent* event) {
    if (std::exchange(isPressed_, false) && isOnHead(*event) && build_) toggle();
}

}  // namespace brell
