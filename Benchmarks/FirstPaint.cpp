// Ends as soon as a window has painted itself: Brell's over the sample Mac named, without a word an empty
// one.
#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QTimer>
#include <iostream>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/SampleMac/SimulatedApplications.h"
#include "CorvaneBrell/Window/Appearance.h"
#include "CorvaneBrell/Window/MainWindow.h"
#include "CorvaneBrell/Window/QtMainLoop.h"

namespace {

class EndAfterPaint final : public QObject {
public:
    explicit EndAfterPaint(QWidget& window) { window.installEventFilter(this); }

protected:
    bool eventFilter(QObject* window, QEvent* event) override {
        if (event->type() == QEvent::Paint) QTimer::singleShot(0, qApp, &QApplication::quit);
        return QObject::eventFilter(window, event);
    }
};

int shown(QWidget& window) {
    const EndAfterPaint end(window);
    window.show();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    int noWords = 1;
    const QApplication app(noWords, argv);
    QApplication::setPalette(brell::Appearance::light());
    if (argc < 2) {
        QMainWindow empty;
        empty.resize(1100, 760);
        return shown(empty);
    }
    brell::LaunchOptions options;
    options.sampleMac = argv[1];
    brell::QtMainLoop loop;
    brell::SimulatedApplications applications(loop);
    brell::AppModel model(options, loop, applications, std::cout);
    brell::MainWindow window(model);
    return shown(window);
}
