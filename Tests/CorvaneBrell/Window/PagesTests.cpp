
#include <gtest/gtest.h>

#include <QToolButton>

#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/PrivacyPage.h"
#include "CorvaneBrell/Window/Sheet.h"
#include "CorvaneBrell/Window/SpotlightPage.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

using PagesTest = WindowTest;

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

TEST_F(PagesTest, EveryPageWithoutContentSaysSoInASentence) {
    openWindow();
    window->setChangedOnly(true);
    for (const Screen screen : allCases<Screen>()) {
        if (screen == Screen::privacy || screen == Screen::loginItems || screen == Screen::spotlight)
            continue;
        go(screen);
        QStringList sentences;
        for (const Paragraph* text : visible<Paragraph>(*window->currentPage())) sentences << text->text();
        EXPECT_TRUE(!sentences.filter("Nothing on this page is changed by Brell.").isEmpty() ||
                    !sentences.filter("No change").isEmpty() || !sentences.filter("no change").isEmpty() ||
                    !sentences.filter("nothing").isEmpty())
            << title(screen) << ": " << utf8(sentences.join(" | "));
    }
}

}  // namespace brell::testing
