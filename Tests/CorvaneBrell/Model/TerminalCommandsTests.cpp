#include "CorvaneBrell/Model/TerminalCommands.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/Shell.h"

using namespace brell;
using namespace brell::testing;

namespace {

class TerminalCommandsTest : public ::testing::Test, protected EngineFixture {
protected:
    // As pasted into a shell, with `defaults` over the fixture's preference files.
    Finished paste(const std::string& text) const {
        setContents(folder.path / "pasted", text);
        return runLine("cd '" + folder.path.string() +
                       "' && PATH='" BRELL_STAND_INS "':$PATH DEFAULTS_FOLDER='" +
                       (folder.path / "preferences").string() + "' bash pasted");
    }
};

TEST_F(TerminalCommandsTest, ReadAsPeopleWriteThem) {
    EXPECT_EQ(commandsMaking(tweak("finder.show_hidden")),
              "defaults write com.apple.finder AppleShowAllFiles -bool true\n"
              "echo 'Relaunch Finder, or log out and back in, for every change to take effect.'\n");
    EXPECT_EQ(commandsMaking(tweak("anim.fast_sheets")),
              "defaults write -g NSWindowResizeTime -float 0.001\n"
              "echo 'Relaunch the apps that are open, or log out and back in, for every change to take "
              "effect.'\n");
    EXPECT_EQ(commandsMaking(tweak("shot.folder"), std::vector<PrefValue>{"/Users/sam/My 'Shots'"}),
              "defaults write com.apple.screencapture location -string '/Users/sam/My '\\''Shots'\\'''\n");
    EXPECT_EQ(commandsMaking(tweak("shot.folder"), std::vector<PrefValue>{"/Users/sam/A_2-b.c"}),
              "defaults write com.apple.screencapture location -string /Users/sam/A_2-b.c\n");
    EXPECT_EQ(commandsUndoing(engine.resetToDefault(tweak("dock.size")), catalog),
              "defaults delete com.apple.dock tilesize\n"
              "echo 'Relaunch the Dock, or log out and back in, for every change to take effect.'\n");
}

TEST_F(TerminalCommandsTest, MakeAndUndoTheSameAsTheEngine) {
    files.write(36, {"com.apple.dock", "tilesize"});
    files.write(0.15, {"com.apple.dock", "autohide-delay"});
    const auto before = files.snapshot();
    std::vector<JournalEntry> entries;
    for (const char* id : {"finder.show_hidden", "finder.new_window_home", "dock.autohide_instant",
                           "dock.size", "anim.fast_sheets", "shot.folder"})
        entries.push_back(engine.apply(tweak(id)));
    const auto after = files.snapshot();

    for (const JournalEntry& entry : entries)
        EXPECT_EQ(paste(commandsUndoing(entry, catalog)).status, 0) << entry.tweakID;
    EXPECT_EQ(files.snapshot(), before);

    const Finished made = paste(commandsMaking(entries, catalog));
    EXPECT_EQ(made, (Finished{0,
                              "Relaunch Finder and the Dock and the apps that are open, or log out and back "
                              "in, for every change to take effect.\n"}));
    EXPECT_EQ(files.snapshot(), after);

    entries.resize(1);
    entries[0].status = EntryStatus::restored;
    EXPECT_EQ(commandsMaking(entries, catalog), "");
}

TEST_F(TerminalCommandsTest, NoValueBecomesACommandOrAKeyPress) {
    const PrefKey key{"com.apple.dock", "-odd key; touch made-it"};
    const std::vector<PrefValue> values{"'; touch made-it; '",
                                        "$(touch made-it)`touch made-it`",
                                        "a\nb",
                                        "\x7Ftouch made-it\r'\\",
                                        "",
                                        "!!",
                                        "-bool",
                                        "é ⌘",
                                        PrefValue::StringArray{"", "two words", "tab\there\x7F"},
                                        PrefValue::StringArray{},
                                        -5,
                                        1e-5,
                                        false};
    for (const PrefValue& value : values) {
        const JournalEntry entry = entryOf("odd", {{key, value, {}}});
        const std::string text = commandsUndoing(entry, catalog);
        EXPECT_EQ(paste(text).status, 0) << text;
        EXPECT_EQ(files.exactValue(key), StoredValue(value)) << text;
        // Only line ends are left of what a terminal takes for a key.
        EXPECT_TRUE(
            std::none_of(text.begin(), text.end(), [](char c) { return c != '\n' && c >= 0 && c < ' '; }));
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path / "made-it"));
}

TEST_F(TerminalCommandsTest, SwitchAgentsBothWays) {
    struct Case {
        AgentCapture before;
        std::string making, undoing;
    };
    const std::string at = " \"gui/$(id -u)/\"com.acme.agent\n";
    const std::string load = "launchctl bootstrap \"gui/$(id -u)\" '/Users/sam/a b.plist'\n";
    for (const auto& [before, making, undoing] : {
             Case{{"com.acme.agent", "/Users/sam/a b.plist", true, AgentOverride::absent},
                  "launchctl bootout" + at + "launchctl disable" + at,
                  "launchctl enable" + at + load},
             {{"com.acme.agent", "/Users/sam/a b.plist", false, AgentOverride::enabled},
              "launchctl bootout" + at + "launchctl disable" + at,
              "launchctl enable" + at + "launchctl bootout" + at},
             {{"com.acme.agent", "/Users/sam/a b.plist", false, AgentOverride::disabled},
              "launchctl enable" + at + load,
              "launchctl bootout" + at + "launchctl disable" + at},
             {{"com.acme.agent", "/Users/sam/a b.plist", true, AgentOverride::disabled},
              "launchctl enable" + at + load,
              "launchctl enable" + at + load + "launchctl disable" + at},
         }) {
        const JournalEntry entry = agentEntry(before);
        EXPECT_EQ(commandsMaking({entry}, catalog), making);
        EXPECT_EQ(commandsUndoing(entry, catalog), undoing);
    }
}

}  // namespace
