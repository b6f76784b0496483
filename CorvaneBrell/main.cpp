// The program with its window.

#include <QApplication>
#include <QBuffer>
#include <QStyleHints>
#include <QTimer>
#include <chrono>
#include <cmath>
#include <iostream>

#include "BrellCore/Support/DurableFile.h"
#include "CorvaneBrell/Console.h"
#include "CorvaneBrell/Headless/HeadlessCommands.h"
#include "CorvaneBrell/Headless/StartUp.h"
#include "CorvaneBrell/Machine.h"
#include "CorvaneBrell/Model/AppModel.h"
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

// Replaces what stands there, and follows no link. The file's name says which kind of picture it is.
void savePicture(const QImage& picture, const fs::path& file) {
    const std::string format = file.extension().string();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (format.empty() || !picture.save(&buffer, format.c_str() + 1))
        throw std::runtime_error("The picture could not be written to " + file.string() +
                                 ": its name does not end as that of a picture, such as .png.");
    constexpr unsigned permissions = 0644;
    replaceFile(file, {bytes.data(), static_cast<std::size_t>(bytes.size())}, Durability::readersOnly,
                permissions);
}

void scheduleSnapshot(const MainWindow& window, const LaunchOptions& options) {
    if (!options.snapshotPath) return;
    const auto delay = std::chrono::milliseconds(std::llround(options.snapshotDelay * 1000));
    QTimer::singleShot(delay, &window, [&window, options] {
        int status = ExitStatus::success;
        try {
            savePicture(window.picture(), *options.snapshotPath);
        } catch (const std::exception& error) {
            printLine(std::cerr, std::string("error: ") + error.what());
            status = ExitStatus::failure;
        }
        if (options.quitAfterSnapshot) QApplication::exit(status);
    });
}

int runWindow(const LaunchOptions& options) {
    makePastFor(options);
    QtMainLoop loop;
    const auto applications = applicationsFor(options, loop);
    AppModel model(options, loop, *applications, std::cout);
    MainWindow window(model);
    scheduleSnapshot(window, options);
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
