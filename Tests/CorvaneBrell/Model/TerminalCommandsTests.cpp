#include "CorvaneBrell/Model/TerminalCommands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

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
        return runLine("cd " + shellWord(folder.path) + " && bash pasted",
                       {{"PATH", BRELL_STAND_INS ":" + std::string(std::getenv("PATH"))},
                        {"DEFAULTS_FOLDER", folder.path / "preferences"}});
    }
};

TEST_F(TerminalCommandsTest, ReadAsPeopleWriteThem) {
    const JournalEntry off =
        agentEntry({"com.acme.agent", "/Users/sam/a b.plist", true, AgentOverride::absent});
    const JournalEntry on =
        agentEntry({"com.acme.agent", "/Users/sam/a b.plist", false, AgentOverride::disabled});
    const std::string made =
        commandsMaking(tweak("finder.show_hidden")) + commandsMaking(tweak("anim.fast_sheets")) +
        commandsMaking(tweak("shot.folder"), std::vector<PrefValue>{"/Users/sam/My 'Shots'"}) +
        commandsMaking(tweak("shot.folder"), std::vector<PrefValue>{"/Users/sam/A_2-b.c"}) +
        commandsMaking({engine.resetToDefault(tweak("dock.size"))}, catalog) +
        commandsMaking({off}, catalog) + commandsMaking({on}, catalog);
    EXPECT_EQ(made, sample("Words/terminal-commands.txt"));
}

TEST_F(TerminalCommandsTest, MakeTheSameAsTheEngine) {
    files.write(36, {"com.apple.dock", "tilesize"});
    files.write(0.15, {"com.apple.dock", "autohide-delay"});
    const auto before = files.snapshot();
    std::vector<JournalEntry> entries;
    for (const char* id : {"finder.show_hidden", "finder.new_window_home", "dock.autohide_instant",
                           "dock.size", "anim.fast_sheets", "shot.folder"})
        entries.push_back(engine.apply(tweak(id)));
    const auto after = files.snapshot();

    engine.restoreAll({});
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
    const PrefKey key{"com.apple.dock", "odd key; touch made-it"};
    const PrefValue words = PrefValue::StringArray{"", "two words", "tab\there\x7F"};
    for (const PrefValue& value : std::initializer_list<PrefValue>{
             "'; touch made-it; '", "$(touch made-it)`touch made-it`", "a\nb", "\x7Ftouch made-it\r'\\", "",
             "!!", "-bool", "é ⌘", words, PrefValue::StringArray{}, -5, 1e-5, false}) {
        const std::string text = commandsMaking({entryOf("odd", {{key, {}, value}})}, catalog);
        EXPECT_EQ(paste(text).status, 0) << text;
        EXPECT_EQ(files.exactValue(key), StoredValue(value)) << text;
        // Only line ends are left of what a terminal takes for a key.
        EXPECT_TRUE(
            std::none_of(text.begin(), text.end(), [](char c) { return c != '\n' && c >= 0 && c < ' '; }));
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path / "made-it"));
}

TEST_F(TerminalCommandsTest, LeaveOutWhatBrellRefusesAndWhatReadsAsAFlag) {
    const auto write = [](const PrefKey& key, const PrefValue& value) {
        return entryOf("forged", {{key, StoredValue(), value}});
    };
    const auto agent = [](const char* label, const char* path) {
        return agentEntry({label, path, true, AgentOverride::absent});
    };
    const PrefValue flags = PrefValue::StringArray{"a", "-int"};
    const std::vector<JournalEntry> forged{write({"com.apple.security", "k"}, true),
                                           write({"com.apple.dock", ""}, true),
                                           write({"com.apple.dock", "-currentHost"}, true),
                                           write({"com.apple.dock", "k"}, flags),
                                           agent("", "/Users/sam/a.plist"),
                                           agent("com.apple.Finder", "/Users/sam/a.plist"),
                                           agent("com.acme.agent", "-k")};
    for (const JournalEntry& entry : forged)
        EXPECT_EQ(commandsMaking({entry}, catalog),
                  "echo 'Left out: 1 change that cannot be made by pasted commands.'\n");
    EXPECT_EQ(commandsMaking({forged[0], write({"com.apple.dock", "k"}, "-int"), forged[4]}, catalog),
              "defaults write com.apple.dock k -string -int\n"
              "echo 'Left out: 2 changes that cannot be made by pasted commands.'\n");
}

}  // namespace
