// The restore script undoes everything when the program itself is gone.

#include <gtest/gtest.h>

#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Shell.h"

using namespace brell;
using namespace brell::testing;

namespace {

class RestoreScriptAloneTest : public ::testing::Test, protected EngineFixture {
protected:
    RestoreScriptAloneTest() {
        files.write(false, {"com.apple.finder", "ShowPathbar"});
        files.write("L'été $HOME", {"com.apple.finder", "NewWindowTargetPath"});
        files.write(0.24, {"com.apple.dock", "autohide-delay"});
        files.write(41, {"com.apple.dock", "tilesize"});
        files.write(PrefValue::StringArray{"de-DE"}, {"NSGlobalDomain", "AppleLanguages"});
        original = files.snapshot();
    }
    void runScript(const char* shell) {
        const Finished finished = runLine("PATH='" BRELL_STAND_INS "':$PATH DEFAULTS_FOLDER='" +
                                          (folder.path / "preferences").string() + "' " + shell + " '" +
                                          (journalDirectory / RestoreScript::fileName).string() + "' 2>&1");
        EXPECT_EQ(finished.status, 0);
        // A change to the value that was there before is undone like any other.
        EXPECT_EQ(finished.output.find("skip"), std::string::npos) << finished.output;
    }
    std::map<std::string, PlistFileStore::Values> original;
};

TEST_F(RestoreScriptAloneTest, BringsBackEveryPreferenceOfEveryTweak) {
    for (const char* shell : {"dash", "bash"}) {
        for (const Tweak& each : catalog.all()) engine.apply(each);
        EXPECT_NE(files.snapshot(), original);
        runScript(shell);
        EXPECT_EQ(files.snapshot(), original);
        // The program, should it ever come back, has nothing left to change.
        std::set<Uuid> all;
        for (const JournalEntry& entry : journal.active()) all.insert(entry.id);
        engine.restoreAll(all);
        EXPECT_EQ(files.snapshot(), original);
    }
}

}  // namespace
