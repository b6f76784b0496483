// A bar above the page: a symbol, words that can be selected, and what can be done about it.
#pragma once

#include <QFrame>
#include <QHBoxLayout>
#include <QPushButton>

#include "CorvaneBrell/Window/Appearance.h"

namespace brell {

class SelectableText;

class NoticeBar final : public QFrame {
    Q_OBJECT
public:
    // The name is what assistive technology calls the words.
    NoticeBar(const QString& name, const QString& symbol, Tone tone, QWidget* parent = nullptr);

    // Shows the bar with these words below a heading, if it has one; hides it when there are none.
    void setWords(const QString& words);
    void setHeading(const QString& heading) { heading_ = heading; }
    QString words() const { return words_; }
    QPushButton* addAction(const QString& text);

protected:
    void paintEvent(QPaintEvent*) override;

private:
    void insertHeading();

    Tone tone_;
    QString heading_;
    QString words_;
    SelectableText* text_;
    QHBoxLayout* line_;
};

}  // namespace brell
