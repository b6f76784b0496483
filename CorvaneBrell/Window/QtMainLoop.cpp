#include "CorvaneBrell/Window/QtMainLoop.h"

#include <QMetaObject>
#include <QTimer>

namespace brell {

std::chrono::steady_clock::time_point QtMainLoop::now() const {
    return std::chrono::steady_clock::now();
}

void QtMainLoop::callAfter(std::chrono::milliseconds delay, std::function<void()> action) {
    QTimer::singleShot(delay, Qt::PreciseTimer, this, std::move(action));
}

void QtMainLoop::post(std::function<void()> action) {
    QMetaObject::invokeMethod(this, std::move(action), Qt::QueuedConnection);
}

}  // namespace brell
