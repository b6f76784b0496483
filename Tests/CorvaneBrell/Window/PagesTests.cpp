
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QToolButton>

#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/PrivacyPage.h"
#include "CorvaneBrell/Window/Sheet.h"
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

    void search(const QString& query) { window->sidebar().search().setText(query); }
    void filter(const QString& text) { page().findChild<QLineEdit*>()->setText(text); }
    void damageTheJournal() {
        setContents(*options.journalDirectory / "journal.json", "damaged");
        settled()->refreshAll();
    }
    void haveItem(const std::string& label) {
        std::filesystem::create_directories(sample.launchAgents());
        setContents(sample.launchAgents() / (label + ".plist"),
                    "<plist><dict><key>Label</key><string>" + label + "</string></dict></plist>");
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
    const auto pick = [&](const QString& text) {
        const int place = list.findText(text);
        EXPECT_GE(place, 0) << utf8(text);
        list.setCurrentIndex(place);
        emit list.activated(place);
        settle();
    };
    ASSERT_EQ(stored(size), StoredValue(36));
    pick("As before Brell (41)");
    EXPECT_EQ(stored(size), StoredValue(41));
    EXPECT_EQ(list.value(), "Another value");
    EXPECT_LT(list.findText("As before Brell (41)"), 0) << "no change of ours is active";

    pick("macOS default");
    EXPECT_EQ(stored(size), StoredValue::absent());
    QToolButton& wayBack = *row("dock.size").wayBack();
    EXPECT_TRUE(words(row("dock.size")).contains("Reset by Brell"));
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
    EXPECT_EQ(visible<TweakRow>(page()).size(), 1);
    const auto cards = inOrder<PrivacyCardRow>();
    ASSERT_EQ(cards.size(), PrivacyChecklist::cards().size());
    for (std::size_t i = 0; i < cards.size(); ++i) {
        const PrivacyCard& card = PrivacyChecklist::cards()[i];
        for (const std::string_view said : {card.title, card.meaning, card.whoNeedsIt, card.whatToLookFor,
                                            std::string_view("Not reviewed yet")})
            EXPECT_TRUE(words(*cards[i]).contains(qt(said))) << said;
    }
    EXPECT_TRUE(words(page()).contains("Reviewed 0 of 10."));
    press("Mark as reviewed: Camera");
    EXPECT_TRUE(words(page()).contains("Reviewed 1 of 10."));
    const QString today = "Reviewed on " + dayText(systemNow());
    EXPECT_EQ(words(page()).count(today), 1);
    press("Open System Settings: Privacy & Security, then Camera");
    auto& message = opened<Sheet>();
    EXPECT_TRUE(words(message).contains("Privacy & Security, then Camera"));
    message.close();
}

TEST_F(PagesTest, EachVolumeSaysWhetherItIsIndexedOrWhatTheToolAnswered) {
    openOn(Screen::spotlight);
    const auto rows = inOrder<VolumeRow>();
    ASSERT_EQ(rows.size(), model->state().volumes.size());
    ASSERT_GT(rows.size(), 2);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const VolumeIndexStatus& volume = model->state().volumes[i];
        const QString state = !volume.indexing   ? "Not known"
                              : *volume.indexing ? "Indexing on"
                                                 : "Indexing off";
        EXPECT_TRUE(words(*rows[i]).contains(state)) << volume.volume;
        EXPECT_TRUE(words(*rows[i]).contains(qt(volume.volume)));
        EXPECT_EQ(words(*rows[i]).contains(qt(volume.raw)), !volume.indexing) << volume.volume;
    }
}

TEST_F(PagesTest, EveryPageThatIsEmptySaysWhyAndHasTheActionThatFillsIt) {
    struct Case {
        Screen screen;
        std::function<void()> arrange;
        QString sentence, action;
    };
    std::vector<Case> cases{
        {Screen::journal, [] {},
         "Brell has changed nothing yet. Every change will be listed here, with the way back.", ""},
        {Screen::journal, [&] { settled()->apply("dock.autohide"); }, "", ""},
        {Screen::journal, [&] { settled()->turnOff("dock.autohide"); },
         "No change is active: every setting Brell changed is back to what it was.", ""},
        {Screen::journal, [&] { search("no such thing"); },
         "Nothing is called “no such thing”; try another word for it.", ""},
        {Screen::privacy, [&] { window->setChangedOnly(true); }, "", ""},
        {Screen::loginItems, [&] { filter("no such item"); },
         "No login item has “no such item” in its name, label, app or state.", "Show All"},
        {Screen::loginItems, [&] { haveANewItem(); }, "", ""},
        {Screen::loginItems, [&] { filter("lumenfold"); },
         "No new login item has “lumenfold” in its name, label, app or state.", "Show All"},
        {Screen::loginItems, [&] { removeItems(); },
         "Nothing was found in the folders of launchd that starts by itself.", "Read Again"},
        {Screen::spotlight, [] {}, "", ""},
        {Screen::journal, [&] { damageTheJournal(); },
         "The change journal can't be read, so there is nothing to show here.", ""}};
    for (const Screen screen : allCases<Screen>())
        if (screen < Screen::loginItems)
            cases.push_back({screen, [&] { window->setChangedOnly(true); },
                             "Nothing on this page is changed by Brell.", "Show All Settings"});
    openWindow();
    for (const Case& one : cases) {
        SCOPED_TRACE(std::string(title(one.screen)) + ": " + utf8(one.sentence));
        go(one.screen);
        one.arrange();
        settle();
        EXPECT_EQ(emptyState(), one.sentence);
        if (one.action.isEmpty()) continue;
        if (one.action == "Read Again") haveItem("com.acme.again");
        press(one.action);
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
