#include "CorvaneBrell/Window/Row.h"

#include <QMouseEvent>
#include <QPainter>

#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

namespace {

constexpr int symbolPoints = 15;

// A word or two on a tinted ground.
class BadgeView final : public QFrame {
public:
    BadgeView(const RowBadge& badge, QWidget* parent) : QFrame(parent), tone_(badge.tone) {
        auto* line = new QHBoxLayout(this);
        line->setContentsMargins(7, 3, 9, 3);
        line->setSpacing(5);
        line->addWidget(new SymbolView(utf8(badge.symbol), badge.tone, symbolPoints));
        auto* text = new Paragraph(badge.text, Paragraph::Look::body);
        text->setMinimumWidth(text->sizeHint().width());
        line->addWidget(text);
        setToolTip(badge.help);
        setAccessibleName(badge.text);
        setAccessibleDescription(badge.help);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Appearance::tinted(tone_, palette()));
        painter.drawRoundedRect(rect(), 7, 7);
    }

private:
    Tone tone_;
};

QToolButton* arrowButton() {
    auto* arrow = new QToolButton;
    arrow->setAutoRaise(true);
    arrow->setIcon(symbolIcon("chevron.right"));
    arrow->setIconSize({14, 14});
    arrow->setMinimumSize(28, 28);
    arrow->setFocusPolicy(Qt::StrongFocus);
    arrow->hide();
    return arrow;
}

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

Row::Row(const QString& title, QWidget* parent)
    : QFrame(parent),
      titleText_(new Paragraph({}, Paragraph::Look::heading)),
      what_(new Paragraph({}, Paragraph::Look::secondary)),
      badges_(new QHBoxLayout),
      head_(new QHBoxLayout),
      texts_(new QVBoxLayout),
      column_(new QVBoxLayout(this)),
      arrow_(arrowButton()) {
    column_->setContentsMargins(16, 11, 12, 11);
    column_->setSpacing(8);
    column_->addLayout(head_);
    head_->setSpacing(10);
    texts_->setSpacing(3);
    texts_->addStretch(1);  // beside a higher control the texts stay together
    texts_->addWidget(titleText_);
    texts_->addWidget(what_);
    texts_->addStretch(1);
    badges_->setSpacing(6);
    auto* middle = new QVBoxLayout;  // the texts stay together beside a control that is higher
    middle->addStretch(1);
    middle->addLayout(texts_);
    middle->addStretch(1);
    head_->addLayout(middle, 1);
    head_->addLayout(badges_);
    head_->setAlignment(badges_, Qt::AlignVCenter);
    head_->addWidget(arrow_, 0, Qt::AlignVCenter);
    what_->hide();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    connect(arrow_, &QToolButton::clicked, this, [this] { setOpen(!isOpen()); });
    setTitle(title);
}

void Row::setTitle(const QString& title) {
    title_ = title;
    titleText_->setText(title);
    setAccessibleName(title);
    arrow_->setAccessibleName(tr("Details of %1").arg(title));
}

void Row::setWhat(const QString& text) {
    what_->setText(text);
    what_->setVisible(!text.isEmpty());
}

void Row::setBadges(const std::vector<RowBadge>& badges) {
    if (badges == shownBadges_) return;
    shownBadges_ = badges;
    while (QLayoutItem* item = badges_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const RowBadge& badge : badges) badges_->addWidget(new BadgeView(badge, this));
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
    texts_->insertWidget(texts_->count() - 1, notice_);
}

void Row::setControl(QWidget* control) {
    head_->addWidget(control, 0, Qt::AlignVCenter);
}

void Row::setDetails(std::function<QWidget*()> build) {
    build_ = std::move(build);
    arrow_->setVisible(build_ != nullptr);
}

void Row::setOpen(bool open) {
    if (open && !details_ && build_) {
        details_ = build_();
        column_->addWidget(details_);
    }
    if (details_) details_->setVisible(open);
    arrow_->setIcon(symbolIcon(open ? "chevron.down" : "chevron.right"));
    arrow_->setAccessibleDescription(open ? tr("Open") : tr("Closed"));
}

void Row::mouseReleaseEvent(QMouseEvent* event) {
    const bool onHead =
        event->button() == Qt::LeftButton && head_->geometry().contains(event->position().toPoint());
    if (onHead && build_) setOpen(!isOpen());
}

}  // namespace brell
