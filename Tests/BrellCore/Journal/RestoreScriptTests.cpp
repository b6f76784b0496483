#include <gtest/gtest.h>

#include "BrellCore/Journal/RestoreScript.h"

#include <unistd.h>

#include <cstdlib>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Preferences/PlistFileStore.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/Shell.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;
using namespace std::chrono_literals;

namespace {

const PrefKey autohide{"com.apple.dock", "autohide"};
const PrefKey language{"NSGlobalDomain", "AppleLanguages"};

TEST(RestoreScriptTextTest, AnEmptyJournalHasNothingToRestore) {
    const std::string nothing = sample("RestoreScript/nothing.sh");
    EXPECT_EQ(RestoreScript::render({}, noon), nothing);
    JournalEntry restored = entryOf("dock.autohide", {{autohide, {}, PrefValue(true)}});
    JournalEntry failed = restored;
    restored.status = EntryStatus::restored;
    failed.status = EntryStatus::failed;
    EXPECT_EQ(RestoreScript::render({restored, failed}, noon), nothing);
}

TEST(RestoreScriptTextTest, ActiveEntriesStandNewestFirst) {
    JournalEntry reset = entryOf(
        "dock.position", {{{"com.apple.dock", "orientation"}, PrefValue("it's left"), {}}}, noon - 1h);
    reset.direction = EntryDirection::resetToDefault;
    JournalEntry interrupted = entryOf(
        "misc.always_show_scrollbars",
        {{{"NSGlobalDomain", "NSWindowResizeTime"}, PrefValue(2.0), PrefValue(2.0)},
         {language, PrefValue(PrefValue::StringArray{"en-GB", "it"}), PrefValue(PrefValue::StringArray{})}});
    interrupted.status = EntryStatus::capturing;
    const JournalEntry sameTime = entryOf("dock.autohide", {{autohide, {}, PrefValue(true)}}, noon - 1h);
    const JournalEntry agent = agentEntry(
        {"org.example.sync", "/Users/o'hara/Sync.plist", true, AgentOverride::disabled}, noon - 2h);
    JournalEntry bareAgent = agent;
    bareAgent.agent = std::nullopt;

    EXPECT_EQ(RestoreScript::render({bareAgent, agent, reset, sameTime, interrupted}, noon),
              sample("RestoreScript/active.sh"));
    EXPECT_EQ(RestoreScript::agentLines({"a", "/a.plist", false, AgentOverride::absent}),
              Texts{"launchctl enable \"gui/$(id -u)/\"'a'"});
}

// The script run by real shells, with stand-ins for defaults and launchctl.
class RestoreScriptRunTest : public ::testing::TestWithParam<const char*> {
protected:
    RestoreScriptRunTest() {
        setContents(tools / "launchctl",
                    "#!/bin/sh\nfor word; do printf '<%s>' \"$word\" >>\"$LAUNCHCTL_LOG\"; done\n"
                    "echo >>\"$LAUNCHCTL_LOG\"\n");
        fs::permissions(tools / "launchctl", fs::perms::owner_all);
        fs::create_directories(elsewhere);
    }

    std::string run(const std::vector<JournalEntry>& entries) {
        setContents(folder.path / "restore.sh", RestoreScript::render(entries, noon));
        const Finished finished =
            runLine("cd " + shellWord(elsewhere) + " && " + std::string(GetParam()) + " ../restore.sh 2>&1",
                    {{"PATH", tools.string() + ":" BRELL_STAND_INS ":" + std::getenv("PATH")},
                     {"DEFAULTS_FOLDER", folder.path / "preferences"},
                     {"LAUNCHCTL_LOG", folder.path / "launchctl.log"}});
        EXPECT_EQ(finished.status, 0) << finished.output;
        EXPECT_EQ(namesIn(elsewhere), Names{});  // where a smuggled command would leave a file
        return finished.output;
    }

    const TemporaryFolder folder;
    const fs::path tools = folder.path / "tools";
    const fs::path elsewhere = folder.path / "elsewhere";
    const std::string done =
        "Done. Relaunch Finder and the Dock, or log out and back in, for every change to take effect.\n";
    PlistFileStore files{folder.path / "preferences", TweakCatalog::allowedDomains()};
};

std::vector<PrefValue> everyKindOfValue() {
    using Strings = PrefValue::StringArray;
    std::vector<PrefValue> values{true, false, Strings{}, Strings{""}};
    values.push_back(Strings{"it's", "$(touch made)", "two\nlines\n", "-bool", "日本"});
    for (const std::int64_t number : {std::int64_t{0}, std::int64_t{36}, INT64_MIN, INT64_MAX})
        values.push_back(number);
    for (const double number : {0.15, 0.1 + 0.2, 2.0, -1.5, 1e-7, 123456789.25, 1.7976931348623157e308})
        values.push_back(number);
    for (const char* text :
         {"", "plain", " two  blanks ", "it's \"quoted\" `whoami` $HOME $(touch made) \\ \\n %s !! *",
          "line\nfeed", "\n", "ends with\n\n", "-g", "-string", "é 日本 👍"})
        values.push_back(text);
    return values;
}

TEST_P(RestoreScriptRunTest, EveryKindOfValueComesBackFromEveryOther) {
    const std::vector<PrefValue> values = everyKindOfValue();
    std::vector<JournaledWrite> writes;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string name = "key " + std::to_string(i);
        const std::string domain = i % 2 ? "com.apple.dock" : "NSGlobalDomain";
        writes.push_back({{domain, name + " changed"}, values[i], values[(i + 7) % values.size()]});
        writes.push_back({{domain, name + " added"}, {}, values[i]});
        writes.push_back({{domain, name + " removed"}, values[i], {}});
    }
    for (const JournaledWrite& write : writes) files.put(write.written, write.key);
    EXPECT_EQ(run({entryOf("everything", writes)}), done);
    for (const JournaledWrite& write : writes)
        EXPECT_EQ(files.exactValue(write.key), write.original)
            << write.key.rendered() << " written as " << write.written.rendered();
}

TEST_P(RestoreScriptRunTest, WhatSomebodyChangedSinceIsLeftAlone) {
    files.write(false, autohide);
    const PrefKey size{"com.apple.dock", "tilesize"};
    EXPECT_EQ(run({entryOf("dock", {{autohide, {}, PrefValue(true)}, {size, PrefValue(41), PrefValue(48)}})}),
              "skip com.apple.dock autohide (now: 0)\nskip com.apple.dock tilesize (now: absent)\n" + done);
    EXPECT_EQ(files.exactValue(autohide), StoredValue(false));
    EXPECT_TRUE(files.exactValue(size).isAbsent());
}

TEST_P(RestoreScriptRunTest, NothingInAnEntryBecomesACommand) {
    for (const std::string hostile :
         {"x'; touch made; '", "$(touch made)", "`touch made`", "\ntouch made\n", "\r\ntouch made #",
          "a\u2028touch made", "\"; touch made; \"", "\\'; touch made #", "x\n'\ntouch made\n'"}) {
        const std::string path = "/Users/sam/" + hostile;
        const PrefKey key{"com.apple.dock", hostile};
        files.write(hostile, key);
        const std::vector<JournalEntry> entries{
            entryOf(hostile, {{key, PrefValue(hostile + "!"), PrefValue(hostile)}}),
            agentEntry({hostile, path, true, AgentOverride::absent})};
        // A key with trailing line feeds still names itself.
        EXPECT_EQ(run(entries), done) << hostile;
        EXPECT_EQ(files.exactValue(key), StoredValue(hostile + "!"));
        const std::string user = "gui/" + std::to_string(::getuid());
        EXPECT_EQ(contentsOf(folder.path / "launchctl.log"),
                  "<enable><" + user + "/" + hostile + ">\n<bootstrap><" + user + "><" + path + ">\n");
        fs::remove(folder.path / "launchctl.log");
    }
}

INSTANTIATE_TEST_SUITE_P(Shells, RestoreScriptRunTest, ::testing::Values("sh", "dash", "bash"),
                         [](const auto& shell) { return std::string(shell.param); });

}  // namespace
