// Every tweak undone in one go, against the system calls that this takes.
#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <stdexcept>

#include "Benchmarks/BareJournal.h"
#include "Benchmarks/Pairs.h"
#include "BrellCore/Engine/TweakEngine.h"
#include "BrellCore/Journal/HistoryText.h"
#include "BrellCore/Support/DurableFile.h"

namespace {

using namespace brell;
using bare::JournalFiles;
namespace fs = std::filesystem;

// The engine on those files, freshly started before every measurement.
class Ours {
public:
    explicit Ours(const JournalFiles& files) : files_(files) {
        start();
        for (const Tweak& tweak : catalog_.all()) engine_->apply(tweak);
        entries = journal_->active();
        std::reverse(entries.begin(), entries.end());
        for (const auto& file : fs::recursive_directory_iterator(files.folder))
            if (file.is_regular_file()) applied_.emplace(file.path(), bare::read(file.path()));
    }

    void restart() {
        for (const auto& [file, contents] : applied_) replaceFile(file, contents, Durability::readersOnly);
        start();
    }
    void restoreAll() {
        if (engine_->restoreAll({}).restored.size() != entries.size())
            throw std::runtime_error("Not everything was restored.");
    }

    std::vector<JournalEntry> entries;  // in the order in which they are undone

private:
    void start() {
        engine_.reset();
        store_.emplace(files_.preferences, TweakCatalog::allowedDomains());
        journal_.emplace(files_.journal, files_.folder + "/history");
        engine_.emplace(*store_, *journal_, catalog_, EngineSettings{"26.1.0", 26, files_.script});
    }

    const JournalFiles& files_;
    const TweakCatalog catalog_{"/Users/jo"};
    std::map<fs::path, std::string> applied_;
    std::optional<PlistFileStore> store_;
    std::optional<Journal> journal_;
    std::optional<TweakEngine> engine_;
};

// The bytes of each step; which ones they are makes no difference to the system.
struct Bytes {
    std::string journal, historyLine, script;
    std::map<std::string, std::string> preferences;  // by file
};

void restoreBare(const JournalFiles& files, const std::vector<JournalEntry>& entries, const Bytes& bytes) {
    bare::stat(files.journal);
    const int lock = bare::takeLock(files);
    bare::stat(files.journal);
    for (const JournalEntry& entry : entries) {
        bare::stat(files.journal);
        for (const JournaledWrite& write : entry.writes) bare::stat(files.preferenceFile(write.key.domain));
        for (const JournaledWrite& write : entry.writes) {
            const std::string file = files.preferenceFile(write.key.domain);
            bare::stat(file);
            bare::replaceAndReadBack(file, bytes.preferences.at(file));
        }
        bare::saveEntry(files, bytes.journal, bytes.historyLine);
    }
    bare::stat(files.script);
    bare::read(files.script);
    bare::writeScript(files, bytes.script);
    ::close(lock);
}

}  // namespace

int main() {
    return measured([](PairReport& report) {
        const bare::ScratchFolder oursFolder, bareFolder;
        const JournalFiles oursFiles(oursFolder.path), bareFiles(bareFolder.path);
        Ours ours(oursFiles);
        fs::copy(oursFolder.path, bareFolder.path, fs::copy_options::recursive);
        Bytes bytes{bare::read(oursFiles.journal),
                    historyLineText(systemNow(), ours.entries.front()),
                    bare::read(oursFiles.script),
                    {}};
        for (const std::string& domain : TweakCatalog::allowedDomains())
            if (fs::exists(oursFiles.preferenceFile(domain)))
                bytes.preferences.emplace(bareFiles.preferenceFile(domain),
                                          bare::read(oursFiles.preferenceFile(domain)));
        report.compare(
            {.name = "undo every tweak",
             .limit = 1.12,
             .prepare =
                 [&] {
                     ours.restart();
                     ::sync();  // or the first synchronising of either side writes what was put back
                 }},
            [&] { ours.restoreAll(); }, [&] { restoreBare(bareFiles, ours.entries, bytes); });
    });
}
