// A bar at the head of the window, for what nothing works without: a symbol, words that can be selected, and
// what can be done about it.
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
    NoticeBar(const QString& name, const QString& words, const QString& symbol, Tone tone,
              QWidget* parent = nullptr);

    QString words() const;
    QPushButton* addAction(const QString& text);

protected:
    void paintEvent(QPaintEvent*) override;

private:
    Tone tone_;
    SelectableText* text_;
    QHBoxLayout* actions_;
};

}  // namespace brell
