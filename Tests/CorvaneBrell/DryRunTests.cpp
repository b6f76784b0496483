#include <gtest/gtest.h>

#include <sstream>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Preferences/PlistFileStore.h"
#include "CorvaneBrell/DryRunCommandRunner.h"
#include "CorvaneBrell/DryRunStore.h"
#include "Tests/BrellCore/Preferences/Operations.h"
#include "Tests/Support/FakeCommandRunner.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace {

const PrefKey tileSize{"com.apple.dock", "tilesize"};
const PrefKey autohide{"com.apple.dock", "autohide"};
const PrefKey foreign{"org.example.editor", "autosave"};

class DryRunStoreTest : public ::testing::Test {
protected:
    DryRunStoreTest() {
        files.write(41, tileSize);
        files.registerSystemDefault(false, autohide);
        files.markByHost(autohide);
        files.markForced(tileSize);
        before = everythingIn(folder.path);
    }

    const TemporaryFolder folder;
    PlistFileStore files{folder.path, TweakCatalog::allowedDomains()};
    std::ostringstream out;
    DryRunStore store{files, out};
    std::map<std::string, std::string> before;
};

TEST_F(DryRunStoreTest, RemembersWhatItHoldsBackAndReadsTheRestThrough) {
    EXPECT_EQ(store.exactValue(tileSize), StoredValue(41));
    EXPECT_EQ(store.effectiveValue(autohide), StoredValue(false));
    EXPECT_TRUE(store.hasByHostValue(autohide) && store.isForced(tileSize));
    EXPECT_FALSE(store.hasByHostValue(tileSize) || store.isForced(autohide));
    EXPECT_EQ(store.allowedDomains(), files.allowedDomains());

    store.write("two\nlines", autohide);
    store.remove(tileSize);
    store.synchronize("com.apple.dock");
    EXPECT_EQ(store.exactValue(autohide), StoredValue("two\nlines"));
    EXPECT_EQ(store.effectiveValue(autohide), StoredValue("two\nlines"));
    EXPECT_TRUE(store.exactValue(tileSize).isAbsent() && store.effectiveValue(tileSize).isAbsent());
    store.remove(autohide);  // hidden, and so is the default behind it
    EXPECT_TRUE(store.effectiveValue(autohide).isAbsent());
    EXPECT_TRUE(store.hasByHostValue(autohide));

    EXPECT_EQ(out.str(),
              "dry-run: would write com.apple.dock autohide = \"two lines\"\n"
              "dry-run: would remove com.apple.dock tilesize\n"
              "dry-run: would remove com.apple.dock autohide\n");
    EXPECT_EQ(everythingIn(folder.path), before);
}

TEST_F(DryRunStoreTest, RefusesOtherDomainsLikeTheRealStore) {
    for (const std::function<void()>& operation : operationsOn(store, foreign))
        EXPECT_EQ(failureOf<StoreError>(operation), StoreFailure(DomainNotAllowed{foreign.domain}));
    EXPECT_EQ(out.str(), "");
}

TEST(DryRunCommandRunnerTest, RunsWhatOnlyReadsAndPrintsWhatWouldChangeSomething) {
    using Command = AllowedCommand;
    FakeCommandRunner base;
    std::ostringstream out;
    DryRunCommandRunner runner(base, out);
    const std::vector<Command> reading{Command::launchctlPrint("gui/501/a"),
                                       Command::launchctlPrintDisabled("gui/501"), Command::mdutilStatus("/"),
                                       Command::sfltoolDumpBTM()};
    for (const Command& command : reading) {
        base.answer(command, "answer of " + command.rendered());
        EXPECT_EQ(runner.run(command), (CommandResult{0, "answer of " + command.rendered(), ""}));
    }
    std::string lines;
    for (const Command& command :
         {Command::launchctlBootout("gui/501", "a"), Command::launchctlBootstrap("gui/501", "/a.plist"),
          Command::launchctlEnable("gui/501", "a"), Command::launchctlDisable("gui/501", "a")}) {
        EXPECT_EQ(runner.run(command), (CommandResult{1, "", "dry run: not executed"}));
        lines += "dry-run: would run " + command.rendered() + "\n";
    }
    EXPECT_EQ(base.commands, reading);
    EXPECT_EQ(out.str(), lines);
}

}  // namespace
