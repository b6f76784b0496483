// A home with more of everything than a page shows at once: rows come in batches.

#include "Benchmarks/BigHome.h"

#include "CorvaneBrell/SampleMac/SampleContents.h"
#include "CorvaneBrell/Window/ChangeRow.h"
#include "CorvaneBrell/Window/HistoryRow.h"
#include "CorvaneBrell/Window/LoginItemView.h"
#include "CorvaneBrell/Window/PlaceRow.h"
#include "CorvaneBrell/Window/Switch.h"
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

    template <class Kind>
    std::size_t rows() const {
        return visible<Kind>(*window->currentPage()).size();
    }

    std::size_t linesIn(const QWidget& sheet) const {
        std::size_t lines = 0;
        for (const SelectableText* text : visible<SelectableText>(sheet))
            lines += static_cast<std::size_t>(text->document()->blockCount());
        return lines;
    }
};

TEST_F(BigHomeTest, ThePagesShowABatchAtATime) {
    openFull(EntryStatus::applied);
    for (const Screen screen : allCases<Screen>()) go(screen);
    go(Screen::journal);
    ASSERT_EQ(model->state().driftedAgents.size(), agents);
    EXPECT_EQ(rows<ChangeRow>(), batch) << "every one drifted";
    EXPECT_GE(rows<HistoryRow>(), batch);
    EXPECT_LE(rows<HistoryRow>(), 2 * batch) << "with a heading a day";
    press(*window->currentPage(), "Show 100 More");
    press(*window->currentPage(), "Show 50 More");
    EXPECT_EQ(rows<ChangeRow>(), agents);

    go(Screen::loginItems);
    EXPECT_LE(rows<LoginItemView>(), 3 * batch);
    window->sidebar().search().setText("helper");
    settle();
    EXPECT_EQ(rows<PlaceRow>(), batch + 1) << "with the page itself";
    window->sidebar().search().setText("helper249");
    settle();
    press(visible<PlaceRow>(*window->currentPage()).front()->control()->accessibleName());
    ASSERT_EQ(rows<LoginItemView>(), 1) << "it stands far down";
    EXPECT_TRUE(visible<LoginItemView>(*window->currentPage()).front()->isOpen());
    auto* filter = window->currentPage()->findChild<QLineEdit*>();
    for (const char* typed : {"h", "helper", "helper2", "helper24", "helper249", "no such item", ""}) {
        fill(*filter, typed);
        EXPECT_LE(rows<LoginItemView>(), 3 * batch);
    }
}

// A row that the filter leaves over may become that of another item, which must not inherit anything.
TEST_F(BigHomeTest, ARowThatShowsAnotherItemShowsNothingOfTheOneBefore) {
    openFull(EntryStatus::applied);
    go(Screen::loginItems);
    auto* filter = window->currentPage()->findChild<QLineEdit*>();
    const auto first = [&] { return visible<LoginItemView>(*window->currentPage()).front(); };
    const QPointer<LoginItemView> opened = first();
    opened->setOpen(true);
    fill(*filter, "helper249");
    for (const LoginItemView* row : visible<LoginItemView>(*window->currentPage())) {
        EXPECT_FALSE(row->isOpen());
        EXPECT_TRUE(row->accessibleName().contains("249")) << utf8(row->accessibleName());
        EXPECT_TRUE(row->findChild<Switch*>()->accessibleName().contains("249"));
    }
    fill(*filter, "");
    EXPECT_FALSE(first()->isOpen()) << "its details went with it";
}

TEST_F(BigHomeTest, SheetsShowABatchAtATime) {
    openFull(EntryStatus::capturing);
    Sheet* recovery = window->sheets().current();
    ASSERT_TRUE(recovery);
    const auto headings = [&] {
        std::size_t named = 0;
        for (const Paragraph* text : visible<Paragraph>(*recovery)) named += text->text().contains("helper");
        return named;
    };
    EXPECT_EQ(headings(), batch);
    press(*recovery, "Show 100 More");
    EXPECT_EQ(headings(), 2 * batch);
    settled()->deferRecovery();

    settled()->askRestoreAll();
    Sheet* restore = window->sheets().current();
    ASSERT_TRUE(restore);
    ASSERT_EQ(model->state().restoreRequest->steps.size(), agents);
    EXPECT_EQ(linesIn(*restore), 2 * batch);
    press(*restore, "Show 100 More");
    EXPECT_EQ(linesIn(*restore), 4 * batch);
}

}  // namespace

}  // namespace brell::testing
