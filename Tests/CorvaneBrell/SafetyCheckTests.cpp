#include "CorvaneBrell/SafetyCheck.h"

#include "CorvaneBrell/Platform/UserPreferences.h"
#include "Tests/CorvaneBrell/HeadlessFixture.h"

using namespace brell;
using namespace brell::testing;

namespace {

class SafetyCheckTest : public HeadlessTest {
protected:
    SafetyCheckTest() { options.journalDirectory = notYetThere; }

    Texts warnings() const { return safetyWarnings(machineFor(options)); }
    fs::path fileOf(const std::string& domain) const {
        return PlistFileStore::fileOf(sample.preferences(), domain);
    }

    const fs::path notYetThere = folder.path / "not" / "yet" / "there";
};

TEST_F(SafetyCheckTest, NamesLinkedForeignAndLockedFilesOfTheCatalogsDomains) {
    EXPECT_EQ(warnings(), Texts());
    EXPECT_EQ(namesIn(folder.path), Names{"mac"}) << "nothing is made";
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

    const Texts toOthers = safetyWarnings(machineFor(options), ::geteuid() + 1);
    const Names told(toOthers.begin(), toOthers.end());
    EXPECT_TRUE(told.contains(ofDock));
    EXPECT_TRUE(told.contains("The preference file " + finder.string() +
                              " belongs to another user, so that its settings may not be changeable."));
}

TEST_F(SafetyCheckTest, AJournalFolderThatCannotBeMadeIsNamed) {
    setContents(folder.path / "not", "a file in the way");
    EXPECT_EQ(warnings(), Texts{"The journal folder " + notYetThere.string() +
                                " cannot be written, so that nothing can be changed: Not a directory."});
}

TEST(RefuseRootTest, RootIsRefusedWithItsReason) {
    EXPECT_TRUE(messageOf([] { refuseRoot(0); }).starts_with("Brell does not run as root, because "));
    EXPECT_NO_THROW(refuseRoot(501));
}

}  // namespace
