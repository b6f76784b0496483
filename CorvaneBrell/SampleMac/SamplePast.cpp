#include "CorvaneBrell/SampleMac/SamplePast.h"

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Background/AgentToggle.h"
#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Engine/TweakEngine.h"
#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/PropertyList.h"
#include "CorvaneBrell/SampleMac/PreferenceMarks.h"
#include "CorvaneBrell/SampleMac/SampleContents.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

using namespace std::chrono_literals;
constexpr std::chrono::days day{1};

// Brell as it ran on this Mac, first on the macOS before the present one. Stays where it is made.
class Past {
public:
    Past(const SampleMac& sample, const fs::path& journalDirectory, TimeStamp now)
        : sample_(sample),
          now_(now),
          journal_(Journal::open(journalDirectory, clock_)),
          older_(*store_, *journal_, catalog_,
                 {"15.6.1", 15, journalDirectory / RestoreScript::fileName, clock_}),
          engine_(*store_, *journal_, catalog_,
                  {SampleMac::osVersion.text(), SampleMac::osVersion.major,
                   journalDirectory / RestoreScript::fileName, clock_}) {}
    Past(const Past&) = delete;
    Past& operator=(const Past&) = delete;

    void unfold();

private:
    void goTo(std::chrono::seconds ago) { then_ = now_ - ago; }
    const Tweak& tweak(std::string_view id) const { return *catalog_.tweak(id); }
    void chooseScreenshotFolder();
    void turnAgentOff(const std::string& label);
    void breakOff(const Tweak& tweak);

    const SampleMac& sample_;
    const TimeStamp now_;
    TimeStamp then_;
    const Clock clock_ = [this] { return then_; };
    const TweakCatalog catalog_{sample_.home().string()};
    const std::unique_ptr<PlistFileStore> store_ = sample_.openPreferences();
    const std::unique_ptr<SimulatedTools> tools_ = sample_.openTools();
    const std::unique_ptr<Journal> journal_;
    TweakEngine older_;
    TweakEngine engine_;
};

void Past::unfold() {
    goTo(41 * day + 2h);
    older_.apply(tweak("finder.folders_first"));
    goTo(34 * day + 6h);
    const Uuid magnified = engine_.apply(tweak("dock.magnify")).id;
    goTo(33 * day + 1h);
    engine_.restore(magnified, false);
    goTo(26 * day + 9h);
    engine_.apply(tweak("dock.size"), std::vector<PrefValue>{36}, "small");
    goTo(19 * day + 4h);
    engine_.apply(tweak("mc.keep_space_order"));
    goTo(15 * day + 7h);
    engine_.apply(tweak("dock.autohide_instant"));
    goTo(12 * day + 5h);
    chooseScreenshotFolder();
    goTo(12 * day + 4h);
    engine_.apply(tweak("text.no_autocapitalize"));
    goTo(8 * day + 3h);
    engine_.resetToDefault(tweak("misc.always_show_scrollbars"));
    // Meanwhile another tool has its own idea of how long the Dock waits.
    store_->write(0.5, {std::string(Domains::dock), "autohide-delay"});
    goTo(5 * day + 8h);
    turnAgentOff("us.zoom.updater");
    goTo(1 * day + 3h);
    engine_.apply(tweak("panels.expanded_save"));
    goTo(1h);
    breakOff(tweak("finder.drives_on_desktop"));
}

void Past::chooseScreenshotFolder() {
    const fs::path folder = sample_.home() / "Pictures" / "Screenshots";
    fs::create_directories(folder);
    engine_.apply(tweak("shot.folder"), std::vector<PrefValue>{folder.string()});
}

void Past::turnAgentOff(const std::string& label) {
    AgentToggle toggle(*tools_, engine_, SampleMac::uid, sample_.launchAgents());
    toggle.turnOff({LaunchAgentPlist::read(sample_.launchAgents() / (label + ".plist")), AgentScope::user,
                    AgentOverride::absent, LoadedState::unknown()});
}

// As when the power goes between the durable capture and the first write.
void Past::breakOff(const Tweak& tweak) {
    struct PowerCut : std::exception {};
    engine_.setAfterCaptureHook([](const JournalEntry&) { throw PowerCut(); });
    try {
        engine_.apply(tweak);
    } catch (const PowerCut&) {
        engine_.setAfterCaptureHook(nullptr);
    }
}

// A dictionary where a true or false belongs. The store takes none, so the file is written past it; while it
// holds one, nothing else of its domain can be changed either.
void storeDictionary(const fs::path& preferences) {
    constexpr std::size_t mostBytes = 1 << 20;
    const fs::path file = preferences / (std::string(Domains::timeMachine) + ".plist");
    PlistDictionary keys;
    if (const auto contents = readFile(file, mostBytes)) {
        const PlistValue root = readPropertyList(contents->bytes);
        if (const auto* present = root.as<PlistDictionary>()) keys = *present;
    }
    keys.set("DoNotOfferNewDisksForBackup", {PlistDictionary{{{"Archive", {true}}}}});
    replaceFile(file, writeXmlPropertyList({std::move(keys)}), Durability::readersOnly);
}

const PreferenceMarks& marks() {
    static const PreferenceMarks all{
        {{std::string(globalDomain), "ApplePressAndHoldEnabled"}},           // kb.hold_to_repeat
        {{std::string(globalDomain), "NSDocumentSaveNewDocumentsToCloud"}},  // docs.save_to_disk
    };
    return all;
}

// One that can't be read holds something, too.
bool holdsAnything(const fs::path& journalDirectory) try {
    return !Journal::open(journalDirectory)->all().empty();
} catch (const JournalError&) {
    return true;
}

}  // namespace

void makePast(const SampleMac& sample, const fs::path& journalDirectory, TimeStamp now) {
    const auto isLeftAlone = [&] {
        return readPreferenceMarks(sample.systemRoot()) || holdsAnything(journalDirectory);
    };
    if (isLeftAlone()) return;
    const FileLock lock = SampleContents::lock(sample.systemRoot());
    if (isLeftAlone()) return;
    Past(sample, journalDirectory, now).unfold();
    storeDictionary(sample.preferences());
    // The last that is added: with them the past is whole.
    writePreferenceMarks(sample.systemRoot(), marks());
}

}  // namespace brell
