#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/PrivacyPage.h"
#include "CorvaneBrell/Window/SpotlightPage.h"
#include "CorvaneBrell/Window/TickBox.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

class PagesTest : public WindowTest {
protected:
    // The sentence in place of the page's content, or nothing.
    QString emptyState() const {
        const auto* part = page().findChild<QWidget*>("emptyState");
        return part->isVisible() ? visible<Paragraph>(*part).front()->text() : QString();
    }

    void haveItem(const std::string& label) {
        std::filesystem::create_directories(sample.launchAgents());
        setContents(fileOf(label), jobFile(label));
    }
    // Which alone is shown.
    void haveANewItem() {
        haveItem("com.acme.new");
        settled()->loadLoginItems();
        page().findChild<TickBox*>()->setChecked(true);
    }
    void removeItems() {
        for (const auto& jobs :
             {"Users/sam/Library/LaunchAgents", "Library/LaunchAgents", "Library/LaunchDaemons"})
            std::filesystem::remove_all(sample.systemRoot() / jobs);
        settled()->loadLoginItems();
    }
};

}  // namespace

// From a changed row: by the arrow, which asks nothing where nobody else's value would go, and by the list.
TEST_F(PagesTest, TheWayBackIsOneClickAndTheListsOwnDefaultIsNotIt) {
    const PrefKey size{"com.apple.dock", "tilesize"};
    openOn(Screen::dock);
    auto& list = static_cast<ChoiceBox&>(*row("dock.size").control());
    ASSERT_EQ(stored(size), StoredValue(36));
    pick(list, list.findText("As before Brell (41)"));
    EXPECT_EQ(stored(size), StoredValue(41));
    for (const PrefValue& other : {PrefValue("41"), PrefValue(41)}) {
        writeFromOutside(size, other);
        settled()->refreshShown();
        EXPECT_EQ(list.value(), "Another value");
    }
    EXPECT_LT(list.findText("As before Brell (41)"), 0) << "no change of ours is active";

    pick(list, list.findText("macOS default"));
    EXPECT_EQ(stored(size), StoredValue::absent());
    QToolButton& wayBack = *row("dock.size").wayBack();
    expectWords(row("dock.size"), {"Reset by Brell"});
    window->activateWindow();
    wayBack.setFocus();
    press("Back to 41: Icon size");
    EXPECT_EQ(stored(size), StoredValue(41));
    EXPECT_FALSE(wayBack.isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &list) << "which has taken its place";

    press(row("dock.autohide_instant").wayBack()->accessibleName());
    EXPECT_TRUE(model->state().driftRequest) << "somebody else's value would go";
    model->cancelDrift();
}

TEST_F(PagesTest, PrivacyCardsTellEverythingAndRememberTheDayOfTheReview) {
    openOn(Screen::privacy);
    const auto cards = inOrder<PrivacyCardRow>();
    ASSERT_EQ(cards.size(), PrivacyChecklist::cards().size());
    for (std::size_t i = 0; i < cards.size(); ++i) {
        const PrivacyCard& card = PrivacyChecklist::cards()[i];
        expectWords(*cards[i], {qt(card.title), qt(card.meaning), qt(card.whoNeedsIt), qt(card.whatToLookFor),
                                "Not reviewed yet"});
    }
    expectWords(page(), {"Reviewed 0 of 10."});
    press("Mark as reviewed: Camera");
    expectWords(page(), {"Reviewed 1 of 10."});
    EXPECT_EQ(words(page()).count("Reviewed on " + dayText(systemNow())), 1);
#ifndef Q_OS_MACOS  // which opens them
    press("Open System Settings: Privacy & Security, then Camera");
    expectWords(opened<Sheet>(), {"Privacy & Security, then Camera"});
    opened<Sheet>().close();
#endif
}

TEST_F(PagesTest, EachVolumeSaysWhetherItIsIndexedOrWhatTheToolAnswered) {
    openOn(Screen::spotlight);
    const auto rows = inOrder<VolumeRow>();
    ASSERT_EQ(rows.size(), model->state().volumes.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const VolumeIndexStatus& volume = model->state().volumes[i];
        const QString state = !volume.indexing   ? "Not known"
                              : *volume.indexing ? "Indexing on"
                                                 : "Indexing off";
        expectWords(*rows[i], {state, qt(volume.volume)});
        EXPECT_EQ(words(*rows[i]).contains(qt(volume.raw)), !volume.indexing) << volume.volume;
    }
}

TEST_F(PagesTest, EveryPageThatIsEmptySaysWhyAndHasTheActionThatFillsIt) {
    const std::map<std::string, std::function<void()>> ways{
        {"as it is", [] {}},
        {"after a change", [&] { model->apply("dock.autohide"); }},
        {"after an undo", [&] { model->turnOff("dock.autohide"); }},
        {"after a search", [&] { search("no such thing"); }},
        {"with changes only", [&] { window->setChangedOnly(true); }},
        {"with a filter", [&] { filter("no such item"); }},
        {"with new items only", [&] { haveANewItem(); }},
        {"with new items and a filter", [&] { filter("lumenfold"); }},
        {"without items", [&] { removeItems(); }},
        {"damaged", [&] { damageTheJournal(); }},
    };
    openWindow();
    for (std::vector<std::string> one : sampleRows("Words/empty-pages.txt")) {
        SCOPED_TRACE(one[0] + " " + one[1]);
        one.resize(4);
        go(*fromRawValue<Screen>(one[0]));
        ways.at(one[1])();
        settle();
        EXPECT_EQ(utf8(emptyState()), one[2]);
        if (one[3].empty()) continue;
        if (one[3] == "Read Again") haveItem("com.acme.again");
        press(qt(one[3]));
        EXPECT_EQ(emptyState(), "");
    }

    // Before the first answer.
    openWindow();
    for (const auto& [screen, sentence] :
         {std::pair(Screen::loginItems, "The login items are being read."),
          std::pair(Screen::spotlight, "Spotlight is being asked about each volume.")}) {
        model->show(screen);
        window->refreshNow();
        EXPECT_EQ(emptyState(), sentence);
        settle();
        EXPECT_EQ(emptyState(), "");
    }
}

}  // namespace brell::testing
