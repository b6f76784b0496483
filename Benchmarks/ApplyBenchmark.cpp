// One tweak applied, from its first check to its saved entry, against the system calls that this takes.
#include <sys/file.h>

#include <cstdio>
#include <optional>
#include <stdexcept>

#include "Benchmarks/Bare.h"
#include "Benchmarks/Pairs.h"
#include "BrellCore/Engine/TweakEngine.h"
#include "BrellCore/Preferences/PlistFileStore.h"
#include "Tests/Support/BigHome.h"

namespace {

using namespace brell;

const std::string domain = "com.apple.dock";
const std::string tweakID = "dock.autohide";
constexpr std::size_t entries = 50;

// The files that one application reads and replaces.
struct Files {
    explicit Files(const std::filesystem::path& root)
        : folder(root),
          journal(root / "journal.json"),
          script(root / "restore.sh"),
          history(root / "history" / (localDay(systemNow()) + ".jsonl")),
          lock(root / ".journal.lock"),
          preferences(root / "Preferences"),
          preference(root / "Preferences" / (domain + ".plist")) {}

    const std::string folder, journal, script, history, lock, preferences, preference;
};

// What the files held at the stages of one application.
struct Stages {
    std::string preferenceBefore, journalBefore;
    std::string journalCaptured, scriptCaptured, historyCaptured;
    std::string preferenceAfter, journalAfter, historyAfter;
};

// The engine on those files, freshly started before every application.
class Ours {
public:
    explicit Ours(const Files& files) : files_(files), catalog_("/Users/jo") {
        writeSampleJournal(files.journal, entries);
        PlistFileStore store(files.preferences, {domain});
        for (int i = 0; i < 40; ++i) store.write(PrefValue(i), {domain, "setting-" + std::to_string(i)});
        stages.preferenceBefore = bare::read(files.preference);
        stages.journalBefore = bare::read(files.journal);
    }

    void restart() {
        engine_.reset();
        replaceFile(files_.preference, stages.preferenceBefore, Durability::powerCut);
        replaceFile(files_.journal, stages.journalBefore, Durability::powerCut);
        store_.emplace(files_.preferences, TweakCatalog::allowedDomains());
        journal_.emplace(files_.journal, files_.folder + "/history");
        engine_.emplace(*store_, *journal_, catalog_, EngineSettings{"26.1.0", 26, files_.script});
    }

    void apply() { engine_->apply(*catalog_.tweak(tweakID)); }

    // Applies once, keeping what each stage left in the files.
    void applyOnceAndNote() {
        restart();
        engine_->setAfterCaptureHook([this](const JournalEntry&) {
            stages.journalCaptured = bare::read(files_.journal);
            stages.scriptCaptured = bare::read(files_.script);
            stages.historyCaptured = bare::read(files_.history);
        });
        apply();
        stages.preferenceAfter = bare::read(files_.preference);
        stages.journalAfter = bare::read(files_.journal);
        stages.historyAfter = bare::read(files_.history).substr(stages.historyCaptured.size());
    }

    Stages stages;

private:
    const Files& files_;
    const TweakCatalog catalog_;
    std::optional<PlistFileStore> store_;
    std::optional<Journal> journal_;
    std::optional<TweakEngine> engine_;
};

void appendLine(const std::string& file, std::string_view line) {
    const int descriptor = bare::open(file, O_RDWR | O_APPEND | O_CREAT);
    struct stat status;
    bare::checked(::fstat(descriptor, &status), file);
    char last;
    if (status.st_size > 0)
        bare::checked(static_cast<int>(::pread(descriptor, &last, 1, status.st_size - 1)), file);
    bare::writeOnce(descriptor, line);
    ::close(descriptor);
}

void saveEntry(const Files& files, std::string_view journal, std::string_view historyLine) {
    bare::stat(files.journal);
    bare::replaceDurably(files.folder + "/.journal.json.tmp", files.journal, journal, files.folder);
    bare::stat(files.journal);
    appendLine(files.history, historyLine);
}

// The calls of one application in their order, as strace shows them, but for those that make random
// identifiers; the bytes are at hand.
void applyBare(const Files& files, const Stages& stages) {
    bare::stat(files.journal);
    bare::read(files.preference);
    const int lock = bare::open(files.lock, O_RDWR | O_CREAT);
    bare::checked(::flock(lock, LOCK_EX | LOCK_NB), files.lock);
    bare::stat(files.lock);
    bare::stat(files.journal);
    bare::stat(files.preference);
    saveEntry(files, stages.journalCaptured, stages.historyCaptured);
    bare::stat(files.journal);
    bare::replaceDurably(files.folder + "/.restore.sh.tmp", files.script, stages.scriptCaptured,
                         files.folder);
    bare::stat(files.preference);
    bare::replace(files.preferences + "/.preference.tmp", files.preference, stages.preferenceAfter);
    bare::read(files.preference);
    saveEntry(files, stages.journalAfter, stages.historyAfter);
    ::close(lock);
}

}  // namespace

int main() try {
    const bare::ScratchFolder oursFolder, bareFolder;
    const Files oursFiles(oursFolder.path), bareFiles(bareFolder.path);
    Ours ours(oursFiles);
    ours.applyOnceAndNote();
    std::filesystem::copy(oursFolder.path, bareFolder.path, std::filesystem::copy_options::recursive);

    PairReport report;
    report.compare(
        {.name = "apply one tweak", .limit = 1.3, .pairs = 101, .prepare = [&] { ours.restart(); }},
        [&] { ours.apply(); }, [&] { applyBare(bareFiles, ours.stages); });
    return report.exitStatus();
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
}
