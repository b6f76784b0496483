// One tweak applied, from its first check to its saved entry, against the system calls that this takes.
#include <cstdio>
#include <optional>
#include <stdexcept>

#include "Benchmarks/BareJournal.h"
#include "Benchmarks/BigHome.h"
#include "Benchmarks/Pairs.h"
#include "BrellCore/Engine/TweakEngine.h"

namespace {

using namespace brell;
using bare::JournalFiles;

const std::string domain = "com.apple.dock";
const std::string tweakID = "dock.autohide";
constexpr std::size_t entries = 50;

// The files' contents at the stages of one application.
struct Stages {
    std::string preferenceBefore, journalBefore;
    std::string journalCaptured, scriptCaptured, historyCaptured;
    std::string preferenceAfter, journalAfter, historyAfter;
};

// The engine on those files, freshly started before every application.
class Ours {
public:
    explicit Ours(const JournalFiles& files) : files_(files), catalog_("/Users/jo") {
        writeSampleJournal(files.journal, entries);
        PlistFileStore store(files.preferences, {domain});
        for (int i = 0; i < 40; ++i) store.write(PrefValue(i), {domain, "setting-" + std::to_string(i)});
        stages.preferenceBefore = bare::read(files.preferenceFile(domain));
        stages.journalBefore = bare::read(files.journal);
    }

    void restart() {
        engine_.reset();
        replaceFile(files_.preferenceFile(domain), stages.preferenceBefore, Durability::powerCut);
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
        stages.preferenceAfter = bare::read(files_.preferenceFile(domain));
        stages.journalAfter = bare::read(files_.journal);
        stages.historyAfter = bare::read(files_.history).substr(stages.historyCaptured.size());
    }

    Stages stages;

private:
    const JournalFiles& files_;
    const TweakCatalog catalog_;
    std::optional<PlistFileStore> store_;
    std::optional<Journal> journal_;
    std::optional<TweakEngine> engine_;
};

void applyBare(const JournalFiles& files, const Stages& stages) {
    const std::string preference = files.preferenceFile(domain);
    bare::stat(files.journal);
    bare::read(preference);
    const int lock = bare::takeLock(files);
    bare::stat(files.journal);
    bare::stat(preference);
    bare::saveEntry(files, stages.journalCaptured, stages.historyCaptured);
    bare::stat(files.script);
    bare::read(files.script);
    bare::writeScript(files, stages.scriptCaptured);
    bare::stat(preference);
    bare::replaceAndReadBack(preference, stages.preferenceAfter);
    bare::saveEntry(files, stages.journalAfter, stages.historyAfter);
    bare::stat(files.journal);
    bare::stat(files.script);
    bare::look(files.journal);
    for (const auto& folder : {std::filesystem::path(files.folder), files.preferences}) bare::list(folder);
    ::close(lock);
}

}  // namespace

int main() {
    return measured([](PairReport& report) {
        const bare::ScratchFolder oursFolder, bareFolder;
        const JournalFiles oursFiles(oursFolder.path), bareFiles(bareFolder.path);
        Ours ours(oursFiles);
        ours.applyOnceAndNote();
        std::filesystem::copy(oursFolder.path, bareFolder.path, std::filesystem::copy_options::recursive);
        report.compare(
            {.name = "apply one tweak", .limit = 1.15, .pairs = 101, .prepare = [&] { ours.restart(); }},
            [&] { ours.apply(); }, [&] { applyBare(bareFiles, ours.stages); });
    });
}
