// A home with more of everything than a page shows at once: rows come in batches.

#include "Benchmarks/BigHome.h"

#include "CorvaneBrell/SampleMac/SampleContents.h"
#include "CorvaneBrell/Window/ChangeRow.h"
#include "CorvaneBrell/Window/HistoryRow.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

constexpr std::size_t batch = 100;
constexpr std::size_t agents = 250;  // each one switched by Brell, and unknown to launchd since: drifted
constexpr std::size_t items = 1200;  // of which a tenth are those agents

class BigHomeTest : public WindowTest {
protected:
    void openFull(EntryStatus ofSwitches) {
        std::vector<JournalEntry> journal = sampleJournal(1000, agents, sample.home());
        for (JournalEntry& entry : journal)
            if (entry.isActive()) entry.status = ofSwitches;
        writeJournal(*options.journalDirectory / "journal.json", journal);
        writeSampleHistory(*options.journalDirectory / "history", 4, 500);
        writeSampleAgents(sample.home(), agents);
        setContents(SampleContents::taskDumpFile(sample.systemRoot()),
                    sampleDump(items, agents - items / 10, sample.home()));
        openWindow();
    }
};

TEST_F(BigHomeTest, ThePagesShowABatchAtATime) {
    openFull(EntryStatus::applied);
    for (const Screen screen : allCases<Screen>()) go(screen);
    go(Screen::journal);
    ASSERT_EQ(model->state().driftedAgents.size(), agents);
    EXPECT_EQ(visible<ChangeRow>().size(), batch) << "every one drifted";
    EXPECT_GE(visible<HistoryRow>().size(), batch);
    EXPECT_LE(visible<HistoryRow>().size(), 2 * batch) << "with a heading a day";
    press("Show 100 More");
    press("Show 50 More");
    EXPECT_EQ(visible<ChangeRow>().size(), agents);

    go(Screen::loginItems);
    search("helper");
    EXPECT_LT(visible<LoginItemView>().size(), batch);
    search("helper249");
    EXPECT_EQ(visible<LoginItemView>().size(), 1) << "it stands far down";
    search("");
    for (const char* typed : {"h", "helper", "helper2", "helper24", "helper249", "no such item", ""}) {
        filter(typed);
        EXPECT_LE(visible<LoginItemView>().size(), 3 * batch);
    }
}

// A row that the filter leaves over may become that of another item, which must not inherit anything.
TEST_F(BigHomeTest, ARowThatShowsAnotherItemShowsNothingOfTheOneBefore) {
    openFull(EntryStatus::applied);
    go(Screen::loginItems);
    const auto first = [&] { return visible<LoginItemView>().front(); };
    const QPointer<LoginItemView> opened = first();
    opened->setOpen(true);
    filter("helper249");
    for (const LoginItemView* row : visible<LoginItemView>()) {
        EXPECT_FALSE(row->isOpen());
        EXPECT_TRUE(row->accessibleName().contains("249")) << utf8(row->accessibleName());
        EXPECT_TRUE(row->findChild<Switch*>()->accessibleName().contains("249"));
    }
    filter("");
    EXPECT_FALSE(first()->isOpen()) << "its details went with it";
}

TEST_F(BigHomeTest, SheetsShowABatchAtATime) {
    openFull(EntryStatus::capturing);
    ASSERT_TRUE(sheet());
    const auto rows = [&] {
        std::size_t named = 0;
        for (const Paragraph* text : visible<Paragraph>(*sheet()))
            named += text->text().contains("login item");
        return named;
    };
    EXPECT_EQ(rows(), batch);
    press(*sheet(), "Show 100 More");
    EXPECT_EQ(rows(), 2 * batch);
    settled()->deferRecovery();

    settled()->askRestoreAll();
    ASSERT_EQ(model->state().restoreRequest->steps.size(), agents);
    const auto lines = [&] {
        int shown = 0;
        for (const SelectableText* text : visible<SelectableText>(*sheet()))
            shown += text->document()->blockCount();
        return static_cast<std::size_t>(shown);
    };
    EXPECT_EQ(lines(), 2 * batch);
    press(*sheet(), "Show 100 More");
    EXPECT_EQ(lines(), 4 * batch);
}

}  // namespace

}  // namespace brell::testing
