#include <gtest/gtest.h>

#include "CorvaneBrell/Model/DriftLine.h"
#include "CorvaneBrell/Model/UndoProof.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Entries.h"

using namespace brell;
using namespace brell::testing;

namespace {

class UndoAndDriftTest : public ::testing::Test, protected EngineFixture {
protected:
    // Two keys: one was false, one absent.
    JournalEntry magnify() {
        files.write(false, magnification);
        return engine.apply(tweak("dock.magnify"));
    }
    std::string proof(const JournalEntry& entry) { return sentence(proveUndo(entry, store)); }
};

TEST_F(UndoAndDriftTest, ProvesAnUndoKeyByKey) {
    const JournalEntry entry = magnify();
    EXPECT_EQ(madeOnAnotherMacOS(entry, "26.1.0"), std::nullopt);
    EXPECT_EQ(madeOnAnotherMacOS(entry, "27.0.0"), "Made on macOS 26.1.0; this Mac now runs 27.0.0.");
    EXPECT_FALSE(isAlreadyBack(agentEntry({}), store)) << "it has no keys";
    EXPECT_FALSE(isAlreadyBack(entry, store));
    engine.restore(entry.id, false);
    EXPECT_EQ(proveUndo(entry, store), (UndoProof{{magnification, PrefValue(false), PrefValue(false)},
                                                  {largeSize, {}, StoredValue()}}));
    EXPECT_EQ(proof(entry), "2 of 2 keys are exactly as before.");
    EXPECT_TRUE(isAlreadyBack(entry, store));

    files.write(0, magnification);  // not a truth value
    EXPECT_EQ(proof(entry),
              "1 of 2 keys are exactly as before. com.apple.dock magnification is 0; it was false.");
    EXPECT_FALSE(isAlreadyBack(entry, store));
    files.markUnsupported(largeSize);
    EXPECT_EQ(proof(entry),
              "0 of 2 keys are exactly as before. com.apple.dock magnification is 0; it was false. "
              "com.apple.dock largesize cannot be read; it was absent.");
    EXPECT_EQ(proof(engine.apply(tweak("dock.size"))),
              "0 of 1 key is exactly as before. com.apple.dock tilesize is 48; it was absent.");
}

TEST_F(UndoAndDriftTest, DescribesEveryDriftedKeyAndNoOther) {
    const JournalEntry entry = magnify();
    EXPECT_EQ(driftedEntry(entry, store), (DriftedEntry{entry, {}}));
    files.remove(magnification);
    EXPECT_EQ(driftedEntry(entry, store),
              (DriftedEntry{entry,
                            {"com.apple.dock magnification: now absent; Brell wrote true; original false"}}));
    files.write("big", largeSize);
    files.markUnsupported(magnification);
    EXPECT_EQ(driftedEntry(entry, store).lines,
              (Texts{"com.apple.dock magnification: now unreadable; Brell wrote true; original false",
                     "com.apple.dock largesize: now \"big\"; Brell wrote 80; original absent"}));
    const JournalEntry reset = engine.resetToDefault(tweak("dock.size"));
    EXPECT_EQ(driftLine(reset.writes.at(0), store),
              "com.apple.dock tilesize: now absent; Brell wrote absent; original absent");
}

TEST(AgentDriftTest, ComparesWithWhatTheSwitchLeft) {
    const LoadedState loaded{LoadedState::Kind::loaded, "running", {}, {}, {}};
    const LoadedState gone = LoadedState::notLoaded();
    JournalEntry off = agentEntry({"com.acme.agent", "/Users/sam/a.plist", true, AgentOverride::absent});
    const JournalEntry on =
        agentEntry({"com.acme.agent", "/Users/sam/a.plist", false, AgentOverride::disabled});

    EXPECT_EQ(agentDrift(off, {AgentOverride::disabled, gone}), std::nullopt);
    EXPECT_EQ(agentDrift(on, {AgentOverride::enabled, loaded}), std::nullopt);
    EXPECT_EQ(agentDrift(on, {AgentOverride::enabled, LoadedState::unknown()}), std::nullopt);
    EXPECT_EQ(agentDrift(off, {AgentOverride::enabled, loaded}),
              (AgentDrift{off,
                          "com.acme.agent: now override enabled, loaded; Brell left override disabled, not "
                          "loaded; original override absent, loaded"}));
    EXPECT_TRUE(agentDrift(off, {AgentOverride::disabled, loaded}));
    EXPECT_TRUE(agentDrift(off, {AgentOverride::absent, gone}));
    EXPECT_EQ(
        agentDrift(on, {AgentOverride::enabled, gone})->line,
        "com.acme.agent: now override enabled, not loaded; Brell left override enabled, loaded; original "
        "override disabled, not loaded");

    off.status = EntryStatus::capturing;  // nobody can say what an interrupted one left
    EXPECT_EQ(agentDrift(off, {AgentOverride::enabled, loaded}), std::nullopt);
}

}  // namespace
