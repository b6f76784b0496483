// However the journal was damaged: rebuilt from its history, it undoes every change exactly.

#include <gtest/gtest.h>

#include "BrellCore/Journal/JournalRebuild.h"
#include "Tests/Support/EngineFixture.h"

namespace fs = std::filesystem;

using namespace brell;
using namespace brell::testing;

namespace {

class RebuildTest : public ::testing::Test {
protected:
    RebuildTest() {
        brell.files.write(64, tileSize);
        original = brell.files.snapshot();
        brell.engine.restore(brell.engine.apply(brell.tweak("finder.show_hidden")).id, false);
        brell.engine.apply(brell.tweak("dock.size"));
        entries = brell.journal.all();
        text = contentsOf(file);
        fs::copy(brell.folder.path, changed.path, fs::copy_options::recursive);
    }

    void expectTheWayBack() {
        const auto goOn = [](std::uintmax_t, std::uintmax_t) { return true; };
        const fs::path& directory = brell.journalDirectory;
        const auto rebuilt =
            rebuildJournal(directory, planRebuild(directory, goOn).value(), goOn, brell.clock);
        EXPECT_EQ(rebuilt.value().scriptFailure, std::nullopt);
        EngineRun next = brell.anotherRun();
        EXPECT_EQ(next.journal->all(), entries);
        EXPECT_EQ(next.engine.restoreAll({}).restored.size(), 1u);
        EXPECT_EQ(brell.files.snapshot(), original);
    }
    void changeAgain() {
        for (const auto& entry : fs::directory_iterator(brell.folder.path)) fs::remove_all(entry.path());
        fs::copy(changed.path, brell.folder.path, fs::copy_options::recursive);
    }

    const bool inMemory = (keepFoldersInMemory(), true);
    EngineFixture brell;
    const TemporaryFolder changed;
    const fs::path file = brell.journalDirectory / "journal.json";
    std::map<std::string, PlistFileStore::Values> original;
    std::vector<JournalEntry> entries;
    std::string text;
};

TEST_F(RebuildTest, AJournalThatIsCutAnywhereEmptyOfZerosOrAFolderIsRebuilt) {
    std::vector<std::string> damages{std::string(text.size(), '\0')};
    for (std::size_t length = 0; length + 1 < text.size(); ++length)
        damages.push_back(text.substr(0, length));
    for (const std::string& damage : damages) {
        setContents(file, damage);
        expectTheWayBack();
        ASSERT_FALSE(HasFailure()) << damage.size() << " bytes";
        changeAgain();
    }
    fs::remove(file);
    setContents(file / "somebody's", "folder");
    expectTheWayBack();
}

}  // namespace
