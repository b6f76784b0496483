#include <gtest/gtest.h>

#include "CorvaneBrell/SafetyCheck.h"

#include <sstream>

#include "BrellCore/Preferences/PlistFileStore.h"
#include "CorvaneBrell/Headless/HeadlessCommands.h"
#include "CorvaneBrell/Platform/UserPreferences.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace fs = std::filesystem;

namespace {

class SafetyCheckTest : public ::testing::Test {
protected:
    LaunchOptions options() const {
        LaunchOptions options;
        options.sampleMac = folder.path / "mac";
        options.journalDirectory = journalDirectory;
        return options;
    }
    std::vector<std::string> warnings() const { return safetyWarnings(machineFor(options())); }
    fs::path fileOf(const std::string& domain) const {
        return PlistFileStore::fileOf(mac.preferences(), domain);
    }

    const bool inMemory = (keepFoldersInMemory(), true);
    const TemporaryFolder folder;
    const SampleMac mac{folder.path / "mac"};
    const fs::path journalDirectory = folder.path / "not" / "yet" / "there";
};

}  // namespace

TEST_F(SafetyCheckTest, AnOrdinaryMachineHasNoneAndNothingIsMade) {
    EXPECT_EQ(warnings(), Texts());
    EXPECT_EQ(namesIn(folder.path), Names{"mac"});
}

TEST_F(SafetyCheckTest, NamesLinkedForeignAndLockedFilesOfTheCatalogsDomains) {
    const fs::path dock = fileOf("com.apple.dock"), finder = fileOf("com.apple.finder");
    fs::rename(dock, folder.path / "elsewhere.plist");
    fs::create_symlink(folder.path / "elsewhere.plist", dock);
    fs::permissions(finder, fs::perms::owner_read);
    setContents(fileOf("org.example.stranger"), "");
    fs::permissions(fileOf("org.example.stranger"), fs::perms::none);

    const std::string ofDock = "The preference file " + dock.string() +
                               " is a symbolic link, which a change may replace by an ordinary file.";
    EXPECT_EQ(warnings(), (Texts{ofDock, "The preference file " + finder.string() +
                                             " is locked, so that its settings may not be changeable."}));

    const auto toSomebodyElse = safetyWarnings(machineFor(options()), ::geteuid() + 1);
    const std::set<std::string> said(toSomebodyElse.begin(), toSomebodyElse.end());
    EXPECT_TRUE(said.contains(ofDock));
    EXPECT_TRUE(said.contains("The preference file " + finder.string() +
                              " belongs to another user, so that its settings may not be changeable."));
}

TEST_F(SafetyCheckTest, AJournalFolderThatCannotBeMadeIsNamed) {
    const std::string name = "The journal folder " + journalDirectory.string();
    setContents(folder.path / "not", "a file in the way");
    EXPECT_EQ(warnings(),
              Texts{name + " cannot be written, so that nothing can be changed: Not a directory."});
}

TEST_F(SafetyCheckTest, AChangingRunSaysThemBeforeItStartsAndApartFromItsResults) {
    fs::permissions(fileOf("com.apple.finder"), fs::perms::owner_read);
    const auto saidBy = [&](void (*request)(LaunchOptions&)) {
        LaunchOptions asked = options();
        request(asked);
        std::ostringstream out, said;
        HeadlessCommands::runIfRequested(asked, out, said);
        EXPECT_EQ(out.str().find("The preference file"), std::string::npos);
        return said.str();
    };
    EXPECT_EQ(saidBy([](LaunchOptions& asked) { asked.restoreAll = true; }),
              "warning: " + warnings().front() + "\n");
    EXPECT_EQ(saidBy([](LaunchOptions& asked) { asked.statusJSON = true; }), "");
    EXPECT_EQ(saidBy([](LaunchOptions& asked) { asked.restoreAll = asked.dryRun = true; }), "");
}

TEST_F(SafetyCheckTest, RootIsRefusedWithItsReason) {
    EXPECT_TRUE(messageOf([] { refuseRoot(0); }).starts_with("Brell does not run as root, because "));
    EXPECT_NO_THROW(refuseRoot(501));
}
