// Qt's event loop as the model knows it.
#pragma once

#include <QObject>

#include "CorvaneBrell/Platform/MainLoop.h"

namespace brell {

// Made on the main thread; what was asked for and has not run yet ends with it.
class QtMainLoop final : public QObject, public MainLoop {
    Q_OBJECT
public:
    AwakeClock::time_point now() const override;
    void callAfter(std::chrono::milliseconds delay, std::function<void()> action) override;
    void post(std::function<void()> action) override;
};

}  // namespace brell
