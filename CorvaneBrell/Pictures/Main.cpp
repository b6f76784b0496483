// Makes pictures of everything the window shows, over a sample Mac of their own.

#include <QApplication>
#include <QLabel>
#include <QTemporaryDir>
#include <QTextCursor>
#include <filesystem>
#include <iostream>

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Support/DurableFile.h"
#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Pictures/FewColors.h"
#include "CorvaneBrell/Pictures/Scenes.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "CorvaneBrell/SampleMac/SamplePast.h"
#include "CorvaneBrell/SampleMac/SimulatedApplications.h"
#include "CorvaneBrell/Window/Appearance.h"
#include "CorvaneBrell/Window/QtMainLoop.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SelectableText.h"

namespace {

namespace fs = std::filesystem;
using namespace brell;

struct Format {
    QSize size;
    fs::path folder;
};

// The folder of the sample Mac is another one each time: what lies in it is shown as on a Mac of its own.
void showAsOnAMac(const std::string& root) {
    const QString folder = qt(root);
    for (QWidget* widget : QApplication::allWidgets()) {
        if (auto* label = qobject_cast<QLabel*>(widget); label && label->text().contains(folder))
            label->setText(label->text().remove(folder));
        if (auto* text = qobject_cast<SelectableText*>(widget))
            for (QTextCursor found; !(found = text->document()->find(folder)).isNull();)
                found.removeSelectedText();
    }
    for (int turn = 0; turn < 3; ++turn)  // layouts within layouts
        QApplication::processEvents(QEventLoop::AllEvents, 20);
}

// Every picture of the scene that is set, or false when one can't be written.
bool takePictures(MainWindow& window, const std::string& name, const std::vector<Format>& formats) {
    for (const Format& format : formats) {
        for (const bool dark : {false, true}) {
            QApplication::setPalette(dark ? Appearance::dark() : Appearance::light());
            window.resize(format.size);
            settle(window);
            showAsOnAMac(window.model().options().sampleMac->string());
            const fs::path file = format.folder / (name + (dark ? "-dark.png" : "-light.png"));
            constexpr int smallest = 0;  // of the qualities: the most compression
            const QImage picture = inFewColors(window.picture().convertToFormat(QImage::Format_RGB32));
            if (!picture.save(qt(file.string()), "PNG", smallest)) {
                std::cerr << "error: The picture could not be written to " << file.string() << ".\n";
                return false;
            }
        }
    }
    return true;
}

// The scenes, one after the other in one window; false when a picture can't be written.
bool show(const std::vector<Scene>& scenes, const LaunchOptions& options,
          const std::vector<Format>& formats) {
    QtMainLoop loop;
    SimulatedApplications applications(loop);
    AppModel model(options, loop, applications, std::cerr);
    MainWindow window(model);
    window.show();
    for (const Scene& scene : scenes) {
        settle(window);
        scene.begin(window);
        settle(window);
        if (!takePictures(window, scene.name, formats)) return false;
        scene.end(window);
    }
    return true;
}

// As an installer does it behind the user's back.
void installAnAgent(const SampleMac& sample) {
    constexpr const char* program = "/Applications/Kestrel Dispatch.app/Contents/MacOS/dispatch";
    const fs::path file = sample.systemRoot() / fs::path(program).relative_path();
    fs::create_directories(file.parent_path());
    replaceFile(file, "", Durability::readersOnly);
    replaceFile(
        sample.launchAgents() / "com.kestrelworks.dispatch.plist",
        "<plist><dict><key>Label</key><string>com.kestrelworks.dispatch</string><key>Program</key><string>" +
            std::string(program) + "</string><key>RunAtLoad</key><true/></dict></plist>",
        Durability::readersOnly);
}

int run(const std::vector<Format>& formats) {
    const QTemporaryDir folder;
    LaunchOptions options;
    options.sampleMac = fs::path(utf8(folder.path())) / "Macintosh";
    const SampleMac sample(*options.sampleMac);
    makePast(sample, Journal::defaultDirectory(sample.home()), systemNow());
    for (const Format& format : formats) fs::create_directories(format.folder);
    bool shown = show(scenesOfTrouble(), options, formats);
    installAnAgent(sample);
    shown = shown && show(everydayScenes(), options, formats);
    replaceFile(Journal::defaultDirectory(sample.home()) / "journal.json", "damaged",
                Durability::readersOnly);
    shown = shown && show(scenesOfDamage(), options, formats) && show(scenesOfLeaving(), options, formats);
    return shown ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

// The words: a folder, and --all before it for the sizes between which people resize the window.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList words = QApplication::arguments().mid(1);
    if (words.isEmpty()) {
        std::cerr << "error: The pictures need a folder.\n";
        return EXIT_FAILURE;
    }
    const fs::path folder(utf8(words.back()));
    std::vector<Format> formats{{QSize(1100, 760), folder}};
    if (words.front() == "--all") {
        formats.push_back({QSize(1600, 1000), folder / "large"});
        formats.push_back({QSize(820, 560), folder / "small"});
    }
    try {
        return run(formats);
    } catch (const std::exception& error) {
        std::cerr << "error: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
