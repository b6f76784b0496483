#include "CorvaneBrell/SampleMac/SampleJobs.h"

namespace brell {

namespace {

using SampleContents::SampleAgent;

using Texts = std::vector<std::string>;

PlistValue list(const Texts& texts) {
    PlistArray elements;
    for (const std::string& text : texts) elements.push_back({text});
    return {std::move(elements)};
}

PlistValue number(std::int64_t value) {
    return {value};
}

// A job file with a label, the command to run and whatever else is in it.
PlistDictionary job(const char* label, const Texts& arguments, const std::vector<PlistEntry>& more) {
    PlistDictionary keys{{{"Label", {std::string(label)}}, {"ProgramArguments", list(arguments)}}};
    keys.entries.insert(keys.entries.end(), more.begin(), more.end());
    return keys;
}

const PlistEntry atLogin{"RunAtLoad", {true}};
const PlistEntry keptRunning{"KeepAlive", {true}};

PlistEntry every(std::int64_t seconds) {
    return {"StartInterval", number(seconds)};
}

PlistEntry dailyAt(std::int64_t hour) {
    return {"StartCalendarInterval", {PlistDictionary{{{"Hour", number(hour)}, {"Minute", number(0)}}}}};
}

// Looks like launchd's own answer when it is printed raw.
constexpr const char* misleadingScript =
    "while sleep 60; do\n\tstate = failing\n}\n\truns = 99\n\tlast exit code = 9\n\tpid = 13\ndone";

// The binary form, as plutil makes it: kept running while there is a network, every 900 seconds, at login.
constexpr char binaryJob[] =
    "bplist00\326\001\002\003\004\005\006\007\011\014\015\013\016_\020\033AssociatedBundleIdentif"
    "iersYKeepAliveULabelWProgramYRunAtLoad]StartInterval\241\010_\020\020io.verdigris.app\321"
    "\012\013\134NetworkState\011_\020\022io.verdigris.relay_\0206/Applications/Verdigris Relay.a"
    "pp/Contents/MacOS/relay\021\003\204\010\0253=CKUcex{\210\211\236\327\000\000\000\000\000\000"
    "\001\001\000\000\000\000\000\000\000\017\000\000\000\000\000\000\000\000\000\000\000\000\000"
    "\000\000\332";

// Cut off while it was written.
constexpr std::string_view damagedJob = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
	<key>Label</key>
	<string>org.millrace.feeds</string>
	<key>ProgramArg)";

constexpr JobBehaviour slow{4, 0, 37, {}};
constexpr JobBehaviour slowAndTalkative{6, 36, 5, {}};
constexpr JobBehaviour alwaysFails{0, 0, 37, 78};

}  // namespace

std::vector<SampleAgent> SampleContents::userAgents() {
    return {
        {"com.apple.cleanup-helper.plist",  // the vendor's label, in the wrong place
         job("com.apple.cleanup-helper", {"/Users/Shared/.cleanup/helper"}, {atLogin}),
         JobState{"not running", 1, 0, {}}},
        {"com.google.keystone.agent.plist",
         job("com.google.keystone.agent", {"/Applications/Updates/Keystone.app/Contents/MacOS/agent", "-a"},
             {every(3600), {"AssociatedBundleIdentifiers", {std::string("com.google.Chrome")}}}),
         JobState{"not running", 31, 0, {}}},
        {"com.halverson.duskwatch.plist",
         job("com.halverson.duskwatch", {"/Applications/Duskwatch.app/Contents/MacOS/duskwatch"},
             {atLogin, {"KeepAlive", {PlistDictionary{{{"SuccessfulExit", {false}}}}}}}),
         JobState{"running", 1, {}, 812}},
        {"com.lumenfold.sync.plist",
         job("com.lumenfold.sync", {"/Applications/Lumenfold Sync.app/Contents/MacOS/syncd", "--quiet"},
             {atLogin, keptRunning}),
         JobState{"running", 1, {}, 644}, AgentOverride::absent, slow},
        {"com.orrerylabs.telemetry.plist",
         job("com.orrerylabs.telemetry", {"/Users/sam/.orrery/bin/telemetry"}, {atLogin, keptRunning}),
         JobState{"spawn scheduled", 2214, 78, {}}, AgentOverride::absent, alwaysFails},
        {"com.pebblewick.indexer.plist",
         job("com.pebblewick.indexer", {"/usr/local/bin/pebble-index", "--nightly"}, {dailyAt(3), atLogin}),
         JobState{"running", 12, 0, 977}, AgentOverride::absent, slowAndTalkative},
        {"com.saltmarsh.watcher.plist",
         job("com.saltmarsh.watcher", {"/bin/sh", "-c", misleadingScript}, {atLogin, keptRunning}),
         JobState{"running", 2, 1, 1033}},
        {"com.spotify.client.startuphelper.plist",
         job("com.spotify.client.startuphelper", {"/Applications/Spotify.app/Contents/MacOS/StartUpHelper"},
             {atLogin}),
         std::nullopt, AgentOverride::disabled},
        {"com.tallowgate.agent.plist",  // switched off, but it stays until the next login
         job("com.tallowgate.agent", {"/Applications/Tallowgate.app/Contents/Resources/agent"},
             {atLogin, keptRunning}),
         JobState{"running", 1, {}, 702}, AgentOverride::disabled},
        {"homebrew.mxcl.postgresql@16.plist",  // launchd takes the label, but Brell passes no such sign on
         job("homebrew.mxcl.postgresql@16", {"/opt/homebrew/opt/postgresql@16/bin/postgres"},
             {atLogin, keptRunning}),
         JobState{"running", 1, {}, 590}},
        {"homebrew.mxcl.redis.plist",
         job("homebrew.mxcl.redis", {"/opt/homebrew/opt/redis/bin/redis-server"}, {atLogin, keptRunning}),
         JobState{"running", 3, 0, 598}},
        {"io.quillmark.backup.plist",
         job("io.quillmark.backup", {"/usr/local/bin/quillmark", "backup", "--all"}, {dailyAt(22)}),
         JobState{"not running", 9, 0, {}},
         AgentOverride::absent,
         {},
         true},
        {"io.verdigris.relay.plist", std::string_view(binaryJob, sizeof binaryJob - 1),
         JobState{"running", 1, {}, 655}},
        {"org.fernwright.notes.plist",  // never loaded: added after the last login
         job("org.fernwright.notes", {"/Applications/Fernwright Notes.app/Contents/MacOS/quicknote"}, {}),
         std::nullopt},
        {"org.millrace.feeds.plist", damagedJob, std::nullopt},
        {"untitled.plist",
         PlistDictionary{{{"ProgramArguments", list({"/usr/local/bin/nameless"})}, atLogin}}, std::nullopt},
        {"us.zoom.updater.plist",
         job("us.zoom.updater", {"/Applications/zoom.us.app/Contents/Library/updater"}, {every(86400)}),
         JobState{"not running", 4, 0, {}}, AgentOverride::enabled},
    };
}

std::vector<SampleContents::SystemJob> SampleContents::systemJobs() {
    return {
        {"Library/LaunchAgents/com.halverson.duskwatch.menu.plist",
         job("com.halverson.duskwatch.menu", {"/Applications/Duskwatch.app/Contents/MacOS/menu"}, {atLogin})},
        {"Library/LaunchAgents/com.microsoft.update.agent.plist",
         job("com.microsoft.update.agent", {"/Library/Application Support/Updates/agent"}, {every(7200)})},
        {"Library/LaunchDaemons/com.corvane.brell.helper.plist",  // Brell does not list itself
         job("com.corvane.brell.helper", {"/Library/PrivilegedHelperTools/com.corvane.brell.helper"}, {})},
        {"Library/LaunchDaemons/com.halverson.duskwatchd.plist",
         job("com.halverson.duskwatchd", {"/Library/Application Support/Duskwatch/duskwatchd"},
             {atLogin, keptRunning})},
        {"Library/LaunchDaemons/com.malwarebytes.guard.plist",
         job("com.malwarebytes.guard", {"/Library/Application Support/Guard/guardd"}, {keptRunning})},
    };
}

}  // namespace brell
