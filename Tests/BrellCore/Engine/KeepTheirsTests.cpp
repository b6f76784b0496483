// The keys of a change as they are now, and closing a change that others changed since.

#include <gtest/gtest.h>

#include "BrellCore/Engine/KeysHold.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Entries.h"

using namespace brell;
using namespace brell::testing;

namespace {

class KeepTheirsTest : public ::testing::Test, protected EngineFixture {
protected:
    KeepTheirsTest() { files.write(64, largeSize); }

    // The change is made anew, and then the keys hold this.
    JournalEntry changeThen(const StoredValue& magnified, const StoredValue& large) {
        files.remove(magnification);
        files.write(64, largeSize);
        const JournalEntry entry = engine.apply(tweak("dock.magnify"));
        files.put(magnified, magnification);
        files.put(large, largeSize);
        return entry;
    }
    // Of a try that changes nothing.
    std::string refusal(const Uuid& id) {
        const auto before = everythingIn(folder.path);
        const std::string message = messageOf([&] { engine.keepTheirs(id); });
        EXPECT_EQ(everythingIn(folder.path), before);
        return message;
    }
    void expectKept(JournalEntry entry, const std::string& values) {
        const auto before = files.snapshot();
        entry.status = EntryStatus::restored;
        entry.restoredAt = now;
        entry.failure = "Nothing was put back, because another value was kept: " + values + ".";
        EXPECT_EQ(engine.keepTheirs(entry.id), entry);
        EXPECT_EQ(anotherRun().journal->entry(entry.id), entry);
        EXPECT_EQ(files.snapshot(), before);
        EXPECT_EQ(script(), RestoreScript::render({}, now));
        EXPECT_EQ(engineFailure([&] { engine.keepTheirs(entry.id); }), EngineFailure(NotActive{entry.id}));
    }
};

TEST_F(KeepTheirsTest, OnlyADriftedChangeIsClosedAndNothingIsWritten) {
    const struct {
        StoredValue magnified, large;
        KeysHold expected;
        std::string kept;
    } rows[] = {
        {PrefValue(true), PrefValue(80), KeysHold::written, ""},
        {{}, PrefValue(64), KeysHold::original, ""},
        {PrefValue(true), PrefValue(64), KeysHold::both, ""},
        {PrefValue(true), PrefValue(80.0), KeysHold::somethingElse,
         "com.apple.dock magnification is true, com.apple.dock largesize is 80.0"},
        {{},
         {},
         KeysHold::somethingElse,
         "com.apple.dock magnification is absent, com.apple.dock largesize is absent"},
    };
    for (const auto& row : rows) {
        const JournalEntry entry = changeThen(row.magnified, row.large);
        EXPECT_EQ(keysHold(entry, *files.reader()), row.expected);
        if (!row.kept.empty()) {
            expectKept(entry, row.kept);
            continue;
        }
        EXPECT_EQ(
            refusal(entry.id),
            "Magnify icons under the pointer was not changed outside Brell; there is nothing else to keep.");
        engine.restore(entry.id, true);
    }
    const JournalEntry last = changeThen(PrefValue(true), PrefValue(80));
    files.markUnsupported(largeSize);
    EXPECT_EQ(keysHold(last, *files.reader()), KeysHold::somethingElse);
    expectKept(
        last,
        "com.apple.dock magnification is true, com.apple.dock largesize is a value of the type dictionary");

    // Nor could an interrupted one be undone as it is.
    const JournalEntry interrupted = interrupt("dock.size");
    files.markUnsupported(interrupted.writes[0].key);
    expectKept(interrupted, "com.apple.dock tilesize is a value of the type dictionary");

    JournalEntry foreign = interrupt("dock.autohide");
    foreign.writes[0].key.domain = "org.example.editor";
    journal.upsert(foreign);
    EXPECT_EQ(engine.keepTheirs(foreign.id).failure,
              "Nothing was put back. The domain org.example.editor is not one Brell may change.");
}

TEST_F(KeepTheirsTest, WhatCannotBeReadOrWasInterruptedStaysOpen) {
    const JournalEntry interrupted = interrupt("finder.show_hidden");
    files.write(false, interrupted.writes[0].key);
    EXPECT_EQ(refusal(interrupted.id),
              tweak("finder.show_hidden").title + " was interrupted; restore it first.");

    const JournalEntry entry = changeThen(PrefValue(true), PrefValue(41));
    setContents(folder.path / "preferences" / "com.apple.dock.plist", "damaged");
    EXPECT_EQ(keysHold(entry, *files.reader()), KeysHold::unreadable);
    EXPECT_TRUE(refusal(entry.id).starts_with("The preference file ")) << refusal(entry.id);
    EXPECT_EQ(keysHold(agentEntry({}), *files.reader()), std::nullopt);
}

}  // namespace
