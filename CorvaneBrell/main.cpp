// The program with its window.

#include <QApplication>
#include <QStyleHints>
#include <iostream>

#include "CorvaneBrell/Console.h"
#include "CorvaneBrell/HeadlessCommands.h"
#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "CorvaneBrell/SampleMac/SamplePast.h"
#include "CorvaneBrell/SampleMac/SimulatedApplications.h"
#include "CorvaneBrell/StartUp.h"
#include "CorvaneBrell/Version.h"
#include "CorvaneBrell/Window/Appearance.h"
#include "CorvaneBrell/Window/MainWindow.h"
#include "CorvaneBrell/Window/QtMainLoop.h"
#include "CorvaneBrell/Window/QtText.h"

namespace {

namespace fs = std::filesystem;
using namespace brell;

void introduce() {
    QApplication::setApplicationName("Corvane Brell");
    QApplication::setApplicationVersion(qt(version));
#ifndef Q_OS_MACOS  // which shows the bundle's icon and brings a palette of its own
    QApplication::setWindowIcon(QIcon(":/symbols/application.svg"));
    QApplication::setPalette(Appearance::following(QApplication::palette()));
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    QObject::connect(
        QGuiApplication::styleHints(), &QStyleHints::colorSchemeChanged, [](Qt::ColorScheme now) {
            QApplication::setPalette(now == Qt::ColorScheme::Dark ? Appearance::dark() : Appearance::light());
        });
#endif
#endif
}

// A sample Mac that is made for the window has been lived in, so that there is something of everything.
void prepareSample(const LaunchOptions& options) {
    if (!options.sampleMac || fs::exists(*options.sampleMac)) return;
    const SampleMac sample(*options.sampleMac);
    liveIn(sample, options.journalDirectory.value_or(Journal::defaultDirectory(sample.home())), systemNow());
}

std::unique_ptr<RunningApplications> applicationsFor(const LaunchOptions& options, MainLoop& loop) {
    if (options.sampleMac) return std::make_unique<SimulatedApplications>(loop);
    return systemApplications();
}

int runWindow(const LaunchOptions& options) {
    prepareSample(options);
    QtMainLoop loop;
    const auto applications = applicationsFor(options, loop);
    AppModel model(options, loop, *applications, std::cout);
    MainWindow window(model);
    int status = ExitStatus::success;
    model.scheduleSnapshot(
        [&](const fs::path& file) {
            if (window.picture().save(qt(file.string()))) return;
            printLine(std::cerr, "error: The picture could not be written to " + file.string() + ".");
            status = ExitStatus::failure;
        },
        [&] { QApplication::exit(status); });
    window.show();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const StartUp start = startUp(argc, argv);
    if (start.ended) return *start.ended;
    // Qt looks for words of its own in argv; what it leaves was read above.
    int noWords = 1;
    const QApplication app(noWords, argv);
    introduce();
    try {
        return ended(runWindow(start.options));
    } catch (const std::exception& error) {
        printLine(std::cerr, std::string("error: ") + error.what());
        return ExitStatus::cannotStart;
    }
}
