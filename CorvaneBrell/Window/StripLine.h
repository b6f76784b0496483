// One line of the strip: a symbol, words on one line that can be selected, and what can be done about it.
#pragma once

#include <QPushButton>
#include <QWidget>
#include <functional>
#include <vector>

#include "CorvaneBrell/Window/Appearance.h"

class QHBoxLayout;
class QToolButton;

namespace brell {

class SelectableText;

// Of words that are too long for the line the beginning is shown, with a button that tells them whole. Where
// buttons would leave no room for that, the last of them are in a menu.
class StripLine final : public QWidget {
    Q_OBJECT
public:
    // The title is what assistive technology calls the words, and what stands above them when they are told
    // whole.
    StripLine(const QString& title, const QString& symbol, Tone tone, QWidget* parent = nullptr);

    // The prefix, where there is one, stands before the words in the line only.
    void setWords(const QString& words, const QString& prefix = {});
    const QString& words() const { return words_; }
    QPushButton* addAction(const QString& text, std::function<void()> act);
    void addDismissal(std::function<void()> dismiss);
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fit();
    void showOthers();
    int taken(std::size_t shown) const;

    QString title_;
    QString words_, line_;
    SelectableText* text_;
    QPushButton* details_;
    QHBoxLayout* actions_;
    std::vector<QPushButton*> buttons_;
    QToolButton* dismissal_ = nullptr;
    QToolButton* others_;  // holds those that have no room
};

}  // namespace brell
