// Clicks and keys reach only what the user can have meant: a control that has just come under a resting
// pointer takes none, and what a held Return or Escape led to does not take its repetitions.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <chrono>

class QWidget;

namespace brell {

// Watches every widget of the program. The second click of a double click would otherwise change what the
// first one brought under the pointer: another row, the button of another notice, the answer of a sheet.
class Stillness final : public QObject {
    Q_OBJECT
public:
    explicit Stillness(QObject* parent);
    // For how long such a control takes no click; for tests, which have a time of their own.
    void setWaiting(std::chrono::milliseconds waiting) { waiting_ = waiting; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The control under the pointer: a button that gets another name stands for something else.
    struct Target {
        QPointer<QWidget> control;
        QString name;
        bool operator==(const Target& other) const { return control == other.control && name == other.name; }
    };
    static Target targetAt(const QPoint& place);

    void lookAgain();
    void follow(const QPoint& pointer);
    bool isTooSoon(const QPoint& pointer);

    QPoint pointer_;       // on the screen, where it was last heard of
    QPoint rest_{-1, -1};  // where it came to rest; a hand that clicks trembles around it
    Target target_;        // below it
    QElapsedTimer since_;  // it came there while the pointer rested; invalid when the user moved to it
    QTimer soon_;
    std::chrono::milliseconds waiting_{400};
};

}  // namespace brell
