#include <gtest/gtest.h>
#include <sys/stat.h>

#include "BrellCore/Support/Failure.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/SystemCalls.h"

using namespace brell;
using namespace brell::testing;

namespace {

class RestoreScriptFileTest : public ::testing::Test, protected EngineFixture {};

TEST_F(RestoreScriptFileTest, TheScriptNeverMissesAnActiveChangeBecauseOneWritingFailed) {
    if (!systemCallsAreWatched()) GTEST_SKIP() << "system calls can't be failed here";
    const fs::path file = journalDirectory / RestoreScript::fileName;
    const std::function<void()> changes[] = {
        [&] { engine.apply(tweak("dock.size")); },
        [&] { switchAgent(); },
        [&] {
            store.goWrong(Fault::ignores, "write");
            engineFailure([&] { engine.apply(tweak("shot.jpg")); });
            store.heal();
        },
        [&] {  // the outcome is not saved either
            const FailingCall failing(journal.fileURL(), SystemCall::rename, EIO, 2);
            engineFailure([&] { engine.apply(tweak("dock.autohide")); });
        },
    };
    for (const auto& change : changes) {
        const FailingCall failing(file, SystemCall::rename, ENOSPC);
        change();
        EXPECT_TRUE(failing.hasFailed());
        EXPECT_EQ(script(), engine.restoreScriptText());
        EXPECT_EQ(engine.untoldScriptTrouble(), std::nullopt);
    }

    engine.setAfterCaptureHook([&](const JournalEntry&) {
        fs::remove(file);
        engine.rewriteRestoreScript();  // in the middle of a change
        EXPECT_EQ(script(), engine.restoreScriptText());
        fs::remove(file);
    });
    engine.apply(tweak("finder.show_hidden"));
    EXPECT_EQ(script(), engine.restoreScriptText());
}

TEST_F(RestoreScriptFileTest, AScriptThatCannotBeWrittenIsToldOnceAndWrittenWhenItCanBe) {
    const fs::path file = journalDirectory / RestoreScript::fileName;
    const std::string trouble = "The restore script " + file.string() +
                                " could not be written: " + systemMessage(EISDIR) +
                                ". Until it can be, it may not undo every change.";
    for (const char* id : {"dock.size", "dock.autohide"}) {
        fs::remove(file);
        fs::create_directories(file);  // in the way
        const Uuid entry = engine.apply(tweak("finder.show_hidden")).id;
        EXPECT_EQ(engine.untoldScriptTrouble(), trouble);
        engine.rewriteRestoreScript();  // which is not tried for ever
        engine.apply(tweak(id));
        EXPECT_EQ(engine.untoldScriptTrouble(), std::nullopt);
        fs::remove(file);
        const mode_t before = ::umask(0);
        engine.restore(entry, false);
        ::umask(before);
        EXPECT_EQ(script(), engine.restoreScriptText());
        EXPECT_EQ(fs::status(file).permissions() & fs::perms(0777), fs::perms(0644));
    }
    if (!systemCallsAreWatched()) return;
    // Of one that undoes what the journal does not know one copy is enough, however often it stays.
    setContents(file, "# dock.gone (applied 2026-01-02T03:04:05Z)\n");
    const std::size_t names = namesIn(journalDirectory).size();
    const auto locked = [](SystemCall call, const std::string&) {
        return call == SystemCall::rename ? EPERM : 0;
    };
    const EachCall failing(file, locked);
    for (const char* id : {"finder.path_bar", "finder.show_hidden"}) engine.apply(tweak(id));
    EXPECT_EQ(namesIn(journalDirectory).size(), names + 1);
}

TEST_F(RestoreScriptFileTest, LeadsBackOverWhatAnotherBrellTookForTheUsers) {
    engine.apply(tweak("dock.size"));
    fs::remove(journal.fileURL());
    const Uuid theirs = anotherRun().engine.resetToDefault(tweak("dock.size")).id;
    files.write(PrefValue(99), tileSize);
    engineFailure([&] { engine.restore(theirs, false); });  // drifted: nothing is changed
    EXPECT_EQ(script(), engine.restoreScriptText());
}

TEST_F(RestoreScriptFileTest, OneThatCannotBeReadIsKeptUnread) {
    if (!systemCallsAreWatched()) GTEST_SKIP() << "system calls can't be failed here";
    const fs::path file = journalDirectory / RestoreScript::fileName;
    for (const int noLinks : {0, EPERM}) {
        setContents(file, "# dock.gone (applied 2026-01-02T03:04:05Z)\n");
        const EachCall failing(journalDirectory, [&](SystemCall call, const std::string& path) {
            if (call == SystemCall::open && path == file) return EACCES;
            return call == SystemCall::link ? noLinks : 0;
        });
        const Uuid entry = engine.apply(tweak("dock.size")).id;
        const fs::path kept = file.string() + ".before-" + localMoment(now) + (noLinks == 0 ? "" : "-2");
        EXPECT_EQ(engine.untoldScriptTrouble(), "The file " + file.string() +
                                                    " could not be read: Permission denied. It is kept as " +
                                                    kept.string() + ".");
        EXPECT_TRUE(contentsOf(kept).starts_with("# dock.gone"));
        engine.restore(entry, false);
    }
    setContents(file,
                "# dock.gone (applied 2026-01-02T03:04:05Z)\n" + engine.restoreScriptText());  // by hand
    engine.apply(tweak("dock.size"));
    EXPECT_TRUE(engine.untoldScriptTrouble().value_or("").ends_with("when it was written."));
}

}  // namespace
