// One row of a page: title, what it is, a badge, the way back, a control, and details that open below when
// the text or the arrow is clicked. Clicking the text never changes a setting.
#pragma once

#include <QFrame>
#include <QStringList>
#include <QToolButton>
#include <functional>
#include <optional>
#include <vector>

#include "CorvaneBrell/Window/Appearance.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/RowLayout.h"

class QVBoxLayout;

namespace brell {

// A state in words, with its symbol.
struct RowBadge {
    QString text;
    QString symbol;
    Tone tone;
    QString help;  // a sentence, shown as a tool tip
    bool operator==(const RowBadge&) const = default;
};

// The way back from a change of ours that is active.
struct RowWayBack {
    QString leadsTo;  // "41"
    bool isEnabled;
    bool operator==(const RowWayBack&) const = default;
};

class Row : public QFrame {
    Q_OBJECT
public:
    // Only a row that hasState can have a badge and a way back: their columns are kept in it.
    enum class Columns { control, stateAndControl };
    explicit Row(const QString& title, Columns columns = Columns::control, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    QString title() const { return titleText_->text(); }
    void setWhat(const QString& text);   // below the title; hidden when empty
    void setNotes(const QString& text);  // small, below that; hidden when empty
    void setBadge(const std::optional<RowBadge>& badge);
    // Why something is not possible here, or what is wrong: in plain sight, below the text. Empty: nothing.
    void setNotice(const QString& text, const QString& symbol = "info.circle", Tone tone = Tone::plain);
    void setNotices(const std::vector<RowBadge>& notices);  // several of these
    void addBelow(QWidget* part);                           // the words; the row takes it
    // Where these words begin a word of the title or the text they are marked.
    void mark(const QStringList& words);

    // The row takes it. At most one.
    void setControl(QWidget* control);
    QWidget* control() const { return control_; }
    // A quiet button while there is a way back. A focus in it goes on to the control.
    void setWayBack(const std::optional<RowWayBack>& wayBack);
    QToolButton* wayBack() const { return wayBack_; }  // nullptr while there never was one

    // Makes the details when they are opened for the first time; without it the row has none.
    void setDetails(std::function<QWidget*()> build);
    // The details as made; nullptr while they never were open.
    QWidget* details() const { return details_; }
    bool isOpen() const { return details_ && !details_->isHidden(); }
    void setOpen(bool open);
    void focusArrow() { arrow_->setFocus(Qt::OtherFocusReason); }

signals:
    void wayBackAsked();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent*) override {
    }  // the first click of the two has done what there is to do

private:
    bool isOnHead(const QMouseEvent& event) const;
    void toggle();

    Paragraph* titleText_;
    Paragraph* what_;
    Paragraph* notes_ = nullptr;
    QWidget* notice_ = nullptr;
    QWidget* control_ = nullptr;
    QToolButton* wayBack_ = nullptr;
    QToolButton* arrow_;
    QWidget* details_ = nullptr;
    QVBoxLayout* words_;
    RowLayout* layout_;
    std::function<QWidget*()> build_;
    std::optional<RowBadge> shownBadge_;
    std::optional<RowWayBack> shownWayBack_;
    std::vector<RowBadge> shownNotices_;
    bool isPressed_ = false;
};

// A symbol and a wrapping text beside it.
QWidget* symbolLine(const QString& symbol, Tone tone, const QString& text, QWidget* parent);

// A button of a row: a symbol without a frame, explained by what assistive technology and a tool tip say.
QToolButton* quietButton(const QString& symbol, QWidget* parent);

// Brings into sight what has just been opened in a page; its top, where there is not room for all of it.
void scrollIntoView(QWidget* opened);

}  // namespace brell
