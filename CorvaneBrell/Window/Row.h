// One row of a page: title, badges, what it is, a control at the right, and details that open below when the
// text or the arrow is clicked. Clicking the text never changes a setting.
#pragma once

#include <QBoxLayout>
#include <QFrame>
#include <QToolButton>
#include <functional>
#include <optional>
#include <vector>

#include "CorvaneBrell/Window/Appearance.h"
#include "CorvaneBrell/Window/Paragraph.h"

namespace brell {

// A state in words, with its symbol.
struct RowBadge {
    QString text;
    QString symbol;
    Tone tone;
    QString help;  // a sentence, shown as a tool tip
    bool operator==(const RowBadge&) const = default;
};

class Row : public QFrame {
    Q_OBJECT
public:
    explicit Row(const QString& title, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    void setWhat(const QString& text);  // below the title; hidden when empty
    void setBadges(const std::vector<RowBadge>& badges);
    // Why something is not possible here, or what is wrong: in plain sight, below the text. Empty: nothing.
    void setNotice(const QString& text, const QString& symbol = "info.circle", Tone tone = Tone::plain);
    void setNotices(const std::vector<RowBadge>& notices);  // several of these

    // The row takes it. At most one.
    void setControl(QWidget* control);

    // Makes the details when they are opened for the first time; without it the row has none.
    void setDetails(std::function<QWidget*()> build);
    // The details as made; nullptr while they never were open.
    QWidget* details() const { return details_; }
    bool isOpen() const { return details_ && !details_->isHidden(); }
    void setOpen(bool open);
    void focusArrow() { arrow_->setFocus(Qt::OtherFocusReason); }

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QString title_;
    Paragraph* titleText_;
    Paragraph* what_;
    QWidget* notice_ = nullptr;
    QHBoxLayout* badges_;
    QHBoxLayout* head_;
    QVBoxLayout* texts_;
    QVBoxLayout* column_;
    QToolButton* arrow_;
    QWidget* details_ = nullptr;
    std::function<QWidget*()> build_;
    std::vector<RowBadge> shownBadges_, shownNotices_;
};

// A symbol and a wrapping text beside it.
QWidget* symbolLine(const QString& symbol, Tone tone, const QString& text, QWidget* parent);

}  // namespace brell
