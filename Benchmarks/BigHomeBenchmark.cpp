// How time grows with the home: four times as much of everything, against four times the same work.
#include <QApplication>
#include <QLineEdit>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <stdexcept>

#include "Benchmarks/Bare.h"
#include "Benchmarks/BigHome.h"
#include "Benchmarks/Pairs.h"
#include "BrellCore/Background/LoginItems.h"
#include "BrellCore/Engine/Report.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Model/TweakSearch.h"
#include "CorvaneBrell/SampleMac/SampleContents.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "CorvaneBrell/SampleMac/SimulatedApplications.h"
#include "CorvaneBrell/Window/MainWindow.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtMainLoop.h"

namespace fs = std::filesystem;

namespace {

using namespace brell;

constexpr int fourfold = 4;
constexpr double limit = 2.5;  // ten times as long for four times as much

// A sample Mac with a journal, of this size.
struct Home {
    explicit Home(std::size_t entries) : size(entries), mac(folder.path / "mac") {
        writeJournal(journalDirectory() / "journal.json", sampleJournal(size, size / 4, mac.home()));
        writeSampleHistory(journalDirectory() / "history", 10, size);
        writeSampleAgents(mac.home(), size / 2);
        replaceFile(SampleContents::taskDumpFile(mac.systemRoot()), sampleDump(size, size / 4, mac.home()),
                    Durability::readersOnly);
    }

    fs::path journalDirectory() const { return folder.path / "journal"; }

    const std::size_t size;
    const bare::ScratchFolder folder;
    const SampleMac mac;
};

// The window over a home, with everything read and shown.
class OpenWindow {
public:
    explicit OpenWindow(const Home& home)
        : applications_(loop_), model(optionsOf(home), loop_, applications_, std::cout), window(model) {
        window.show();
        settle();
    }

    void settle() {
        do {
            takeTurn();
        } while (model.isBusy());
        QApplication::processEvents();
    }

    // In microseconds of this thread's work, so that a busy machine does not count.
    double longestTurn() const { return longestTurn_; }

    void show(Screen screen) {
        model.show(screen);
        settle();
    }

private:
    static double worked() {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) * 1e-3;
    }

    void takeTurn() {
        const double before = worked();
        QApplication::processEvents(QEventLoop::AllEvents, 5);
        longestTurn_ = std::max(longestTurn_, worked() - before);
    }

    static LaunchOptions optionsOf(const Home& home) {
        LaunchOptions options;
        options.sampleMac = home.mac.systemRoot();
        options.journalDirectory = home.journalDirectory();
        return options;
    }

    double longestTurn_ = 0;
    QtMainLoop loop_;
    SimulatedApplications applications_;

public:
    AppModel model;
    MainWindow window;
};

// One piece of work on the small home and on the large one.
class Growth {
public:
    Growth(PairReport& report, std::size_t size) : report_(report), few_(size), many_(fourfold * size) {}

    void compare(const std::string& name, const std::function<void(const Home&)>& work) {
        compare(
            name, [&] { work(many_); }, [&] { work(few_); });
    }

    void compare(const std::string& name, const std::function<void()>& many,
                 const std::function<void()>& few) {
        report_.compare({.name = name + ", 4 n over 4 x n", .limit = limit, .pairs = 11}, many, [&] {
            for (int i = 0; i < fourfold; ++i) few();
        });
    }

    const Home& few() const { return few_; }
    const Home& many() const { return many_; }

private:
    PairReport& report_;
    const Home few_, many_;
};

void compareReading(Growth& growth) {
    growth.compare("journal opened", [](const Home& home) { Journal::open(home.journalDirectory()); });
    growth.compare("journal, each entry found", [](const Home& home) {
        const auto journal = Journal::open(home.journalDirectory());
        std::vector<Uuid> ids;
        for (const JournalEntry& entry : journal->all()) ids.push_back(entry.id);
        if (journal->entries(ids).size() != home.size) throw std::runtime_error("entries are missing");
    });
    const TweakCatalog catalog(sampleHome.string());
    growth.compare("history told", [&](const Home& home) {
        const auto journal = Journal::open(home.journalDirectory());
        if (toldHistory(journal->history(), ChangeTitles(catalog)).empty())
            throw std::runtime_error("nothing is told");
    });
    growth.compare("report", [&](const Home& home) {
        const auto journal = Journal::open(home.journalDirectory());
        Report::markdown(*journal, catalog, "26.1.0", systemNow(), journal->active());
    });
    growth.compare("restore script", [](const Home& home) {
        RestoreScript::render(Journal::open(home.journalDirectory())->all(), systemNow());
    });
    growth.compare("login items merged", [](const Home& home) {
        const auto tools = home.mac.openTools();
        const LaunchAgentReader reader{*tools, home.mac.home(), SampleMac::uid, home.mac.systemRoot()};
        const BTMDump dump =
            BTMDumpParser::parse(bare::read(SampleContents::taskDumpFile(home.mac.systemRoot()))).value();
        LoginItemsMerger::merge(reader.listUserAgents(), reader.systemAgents(), &dump, SampleMac::uid);
    });
}

void compareSearch(Growth& growth) {
    const TweakCatalog catalog(sampleHome.string());
    const TweakSearch search(catalog, 26);
    const auto find = [&](const Home& home) {
        std::string query = "show s hidden f";
        for (std::size_t i = 0; i < home.size; ++i) query += " a hidden s";
        if (search.find(query).tweaks.empty()) throw std::runtime_error("nothing is found");
    };
    growth.compare("words searched for", find);
}

// Every page and the sheet of everything: the user never waits for the window.
void checkTurns(PairReport& report, const Home& home) {
    constexpr double most = 100'000;
    OpenWindow open(home);
    for (const Screen screen : allCases<Screen>()) open.show(screen);
    open.model.askRestoreAll();
    open.settle();
    report.check("longest turn of the window, 4 n", open.longestTurn(), most);
}

void compareWindow(Growth& growth) {
    OpenWindow few(growth.few()), many(growth.many());
    const auto compare = [&](const std::string& name, const std::function<void(OpenWindow&)>& work) {
        growth.compare(
            name, [&] { work(many); }, [&] { work(few); });
    };
    compare("refresh", [](OpenWindow& open) {
        open.model.refreshAll();
        open.settle();
    });
    for (OpenWindow* open : {&few, &many}) open->show(Screen::journal);
    compare("journal page", [](OpenWindow& open) {
        open.window.currentPage()->refresh({Topic::journal, Topic::history});
        open.settle();
    });
    compare("restore sheet", [](OpenWindow& open) {
        open.model.askRestoreAll();
        open.settle();
        open.model.cancelRestore();
        open.settle();
    });
    for (OpenWindow* open : {&few, &many}) open->show(Screen::loginItems);
    compare("login items page", [](OpenWindow& open) {
        open.window.currentPage()->refresh({Topic::loginItems, Topic::journal});
        open.settle();
    });
    compare("filter typed", [](OpenWindow& open) {
        auto* filter = open.window.currentPage()->findChild<QLineEdit*>();
        for (const char* typed : {"h", "helper", "helper1", "helper12", ""}) {
            filter->setText(typed);
            open.settle();
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    return measured([&](PairReport& report) {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::setenv("QT_LOGGING_RULES", "default.warning=false", 1);  // what this platform lacks is no news
        const QApplication app(argc, argv);
        Growth growth(report, 1'000);
        compareReading(growth);
        compareSearch(growth);
        compareWindow(growth);
        checkTurns(report, growth.many());
    });
}
