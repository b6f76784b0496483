#include "Tests/Trust/Scenes.h"

namespace brell::trust {

namespace {

using Sentences = std::vector<std::string>;

constexpr const char* drives = "finder.drives_on_desktop";  // several keys of one domain
constexpr const char* magnify = "dock.magnify";
constexpr const char* plain = "homebrew.mxcl.redis";
constexpr const char* slow = "com.pebblewick.indexer";
constexpr const char* disabled = "com.spotify.client.startuphelper";

void nothing(Rig&) {}

// A journal with something of everything in it.
void some(Rig& rig) {
    rig.engine.restore(rig.engine.apply(rig.tweak("dock.size")).id, false);
    rig.engine.apply(rig.tweak(drives));
    rig.engine.apply(rig.tweak(magnify));
}

std::vector<std::string> reasonsOf(const RestoreAllOutcome& outcome) {
    Sentences sentences;
    for (const auto& [id, reason] : outcome.failed) sentences.push_back(reason);
    return sentences;
}

// What gives an entry when it succeeds, and otherwise raises.
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
         [](Rig& rig) { return reasonsOf(rig.engine.restoreAll({})); }},
        {"turn an agent off", some, raising([](Rig& rig) { rig.toggle.turnOff(rig.agent(plain)); })},
        {"turn a slow agent off", nothing, raising([](Rig& rig) { rig.toggle.turnOff(rig.agent(slow)); })},
        {"turn an agent on", nothing, raising([](Rig& rig) { rig.toggle.turnOn(rig.agent(disabled)); })},
        {"turn an agent back on", [](Rig& rig) { rig.toggle.turnOff(rig.agent(plain)); },
         raising([](Rig& rig) { rig.toggle.turnOn(rig.agent(plain)); })},
        {"recover", [](Rig& rig) { rig.breakOff(drives); }, recover},
        {"recover an agent",
         [](Rig& rig) {
             some(rig);
             rig.breakOffAgent(plain);
         },
         recover},
    };
    return all;
}

}  // namespace brell::trust
