#include "Trust/Scenes.h"

#include <cerrno>
#include <cstdio>

#include "BrellCore/Journal/JournalLeaving.h"
#include "BrellCore/Journal/JournalRebuild.h"
#include "BrellCore/Support/Failure.h"

namespace brell::trust {

namespace {

using Sentences = std::vector<std::string>;

constexpr const char* drives = "finder.drives_on_desktop";  // several keys of one domain
constexpr const char* magnify = "dock.magnify";
constexpr const char* plain = "homebrew.mxcl.redis";
constexpr const char* slow = "com.pebblewick.indexer";
constexpr const char* disabled = "com.spotify.client.startuphelper";
constexpr const char* stillLoaded = "com.tallowgate.agent";  // and disabled
constexpr const char* neverLoaded = "org.fernwright.notes";

void nothing(Rig&) {}

// A journal with something of everything in it.
void some(Rig& rig) {
    rig.engine.restore(rig.engine.apply(rig.tweak("dock.size")).id, false);
    rig.engine.apply(rig.tweak(drives));
    rig.engine.apply(rig.tweak(magnify));
}

Sentences reasonsOf(const RestoreAllOutcome& outcome) {
    Sentences sentences;
    for (const auto& [id, reason] : outcome.failed) sentences.push_back(reason);
    return sentences;
}

// An operation that gives an entry when it succeeds, and otherwise raises.
template <class Action>
auto raising(Action action) {
    return [action](Rig& rig) {
        action(rig);
        return Sentences();
    };
}

Sentences recover(Rig& rig) {
    return reasonsOf(rig.engine.recoverInterrupted());
}

Sentences restoreAll(Rig& rig) {
    return reasonsOf(rig.engine.restoreAll({}));
}

Sentences rebuild(Rig& rig) {
    return rebuildFromHistory(rig.journalDirectory);
}

void moveToTrash(const std::filesystem::path& folder) {
    if (std::rename(folder.c_str(), trashFor(folder).c_str()) != 0)
        throw std::runtime_error(systemMessage(errno));
}

// A change that could not be restored keeps the journal in its place.
Sentences leave(Rig& rig) {
    Sentences sentences = restoreAll(rig);
    try {
        leaveJournal(rig.journal, moveToTrash);
    } catch (const JournalError& error) {
        sentences.push_back(error.what());
    }
    return sentences;
}

void cutInHalf(const std::filesystem::path& journal) {
    std::filesystem::resize_file(journal, std::filesystem::file_size(journal) / 2);
}

void replaceByAFolder(const std::filesystem::path& journal) {
    std::filesystem::remove(journal);
    testing::setContents(journal / "inside", "somebody else's");
}

void replaceByAnEmptyOne(const std::filesystem::path& journal) {
    testing::setContents(journal, R"({"entries": [], "format": 1})");
}

auto turningOff(const char* label) {
    return raising([label](Rig& rig) { rig.toggle.turnOff(rig.agent(label)); });
}

auto turningOn(const char* label) {
    return raising([label](Rig& rig) { rig.toggle.turnOn(rig.agent(label)); });
}

auto turningOffAnd(const std::function<void(const std::filesystem::path& jobFile)>& then) {
    return [then](Rig& rig) {
        rig.toggle.turnOff(rig.agent(plain));
        then(rig.agent(plain).plist.path);
    };
}

}  // namespace

const std::vector<Scene>& scenes() {
    static const std::vector<Scene> all{
        {"apply, the first", nothing, raising([](Rig& rig) { rig.engine.apply(rig.tweak(drives)); })},
        {"apply among others", some,
         raising([](Rig& rig) { rig.engine.apply(rig.tweak("dock.autohide_instant")); })},
        {"turn off what was set before", some,
         raising([](Rig& rig) { rig.engine.turnOff(rig.tweak("finder.path_bar"), false); })},
        {"turn off", some, raising([](Rig& rig) { rig.engine.turnOff(rig.tweak(drives), false); })},
        {"restore", some,
         raising([](Rig& rig) { rig.engine.restore(rig.journal.activeEntry(magnify).value().id, false); })},
        {"restore all",
         [](Rig& rig) {
             some(rig);
             rig.toggle.turnOff(rig.agent(plain));
         },
         restoreAll},
        {"turn an agent off", some, turningOff(plain)},
        {"turn a slow agent off", nothing, turningOff(slow)},
        {"turn off an agent that was never loaded", nothing, turningOff(neverLoaded)},
        {"turn an agent on", nothing, turningOn(disabled)},
        {"turn on a disabled agent that is still loaded", nothing, turningOn(stillLoaded)},
        {"turn an agent back on", turningOff(plain), turningOn(plain)},
        {"restore agents that were half off",
         [](Rig& rig) {
             rig.toggle.turnOff(rig.agent(neverLoaded));
             rig.toggle.turnOn(rig.agent(stillLoaded));
         },
         restoreAll},
        {"restore an agent that was turned on", turningOn(disabled), restoreAll},
        {"restore an agent whose job file was renamed", turningOffAnd([](const auto& file) {
             std::filesystem::rename(file, file.parent_path() / "new.plist");
         }),
         restoreAll},
        {"restore an agent whose job file was removed",
         turningOffAnd([](const auto& file) { std::filesystem::remove(file); }), restoreAll},
        {"recover", [](Rig& rig) { rig.breakOff(drives); }, recover},
        {"recover an agent",
         [](Rig& rig) {
             some(rig);
             rig.breakOffAgent(plain);
         },
         recover},
        {"rebuild a journal that was cut", some, rebuild, cutInHalf},
        {"rebuild a journal in whose place a folder stands", some, rebuild, replaceByAFolder},
        {"rebuild a journal that lacks changes", some, rebuild, replaceByAnEmptyOne},
        {"leave", some, leave},
        {"leave with an agent off", turningOff(plain), leave},
    };
    return all;
}

std::filesystem::path trashFor(const std::filesystem::path& journalDirectory) {
    return journalDirectory.parent_path() / "Trash";
}

void damageJournal(const Scene& scene, const Rig& rig) {
    if (scene.damage) scene.damage(rig.journalDirectory / "journal.json");
}

std::vector<std::string> rebuildFromHistory(const std::filesystem::path& journalDirectory) {
    const auto toTheEnd = [](std::uintmax_t, std::uintmax_t) { return true; };
    const RebuildPlan plan = planRebuild(journalDirectory, toTheEnd).value();
    if (!plan.unread.empty()) return plan.unread;  // a user waits until these days can be read
    const auto failure = rebuildJournal(journalDirectory, plan, toTheEnd).value().scriptFailure;
    return failure ? Sentences{*failure} : Sentences();
}

}  // namespace brell::trust
