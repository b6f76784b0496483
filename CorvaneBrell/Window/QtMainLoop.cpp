#include "CorvaneBrell/Window/QtMainLoop.h"

#include <QMetaObject>
#include <QTimer>

namespace brell {

AwakeClock::time_point QtMainLoop::now() const {
    return AwakeClock::now();
}

void QtMainLoop::callAfter(std::chrono::milliseconds delay, std::function<void()> action) {
    QTimer::singleShot(delay, Qt::PreciseTimer, this, std::move(action));
}

void QtMainLoop::post(std::function<void()> action) {
    QMetaObject::invokeMethod(this, std::move(action), Qt::QueuedConnection);
}

}  // namespace brell
