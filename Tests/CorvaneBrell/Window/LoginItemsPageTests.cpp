#include <QDesktopServices>
#include <QTextBrowser>
#include <QUrl>

#include "CorvaneBrell/Window/TickBox.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

class LoginItemsPageTest : public WindowTest {
protected:
    LoginItemView& agent(const std::string& label) {
        auto* view = page().findChild<LoginItemView*>(qt(itemOf(label).id));
        if (!view) throw std::runtime_error("there is no row for " + label);
        return *view;
    }
};

}  // namespace

TEST_F(LoginItemsPageTest, LoginItemsStandInTheirGroupsWithASwitchOnlyWhereItCanBeUsed) {
    openOn(Screen::loginItems);
    settled()->askTaskList();
    settled()->confirmTaskList();
    const auto views = inOrder<LoginItemView>();
    ASSERT_EQ(views.size(), model->state().loginItems.size());
    std::vector<LoginItemRow> expected = model->state().loginItems;
    std::stable_partition(expected.begin(), expected.end(), [&](const LoginItemRow& row) {
        return row.badge == LoginItemBadge::toggleable &&
               !model->state().switchRefusals.contains(row.record->id());
    });
    EXPECT_EQ(words(page()).count("Brell does not turn these off"), 1);
    for (std::size_t i = 0; i < views.size(); ++i) {
        const LoginItemRow& row = expected[i];
        EXPECT_EQ(utf8(views[i]->objectName()), row.id) << "in the model's order";
        const auto* toggle = views[i]->findChild<Switch*>();
        ASSERT_EQ(toggle != nullptr, row.badge == LoginItemBadge::toggleable) << row.id;
        if (!toggle) {
            const bool isAllowed = row.allowedInSystemSettings.value_or(true);
            expectWords(*views[i], {!row.isOn ? "Off" : isAllowed ? "On" : "Not allowed"});
            continue;
        }
        EXPECT_EQ(toggle->isChecked(), row.isOn) << row.id;
        EXPECT_EQ(utf8(toggle->accessibleName()), row.title);
    }
    for (const LoginItemBadge badge :
         {LoginItemBadge::toggleable, LoginItemBadge::adminOnly, LoginItemBadge::appManaged})
        EXPECT_EQ(words(page()).count(qt(text(badge))), 1);

    for (const auto& labelAndWords : sampleRows("Words/rows-of-agents.txt"))
        expectWords(agent(labelAndWords.at(0)), {qt(labelAndWords.at(1))});
    EXPECT_FALSE(agent("homebrew.mxcl.postgresql@16").findChild<Switch*>()->isEnabled());
}

TEST_F(LoginItemsPageTest, AnAgentsSwitchMovesOnlyWhenTheAgentHasBeenSwitched) {
    openOn(Screen::loginItems);
    const std::string label = "com.lumenfold.sync";
    LoginItemView& view = agent(label);
    view.setOpen(true);
    auto* toggle = view.findChild<Switch*>();
    toggle->setFocus();
    type(toggle, Qt::Key_Space);
    EXPECT_TRUE(toggle->isChecked());
    ASSERT_TRUE(model->state().agentConfirm);
    expectWords(*window->sheets().current(),
                {"Lumenfold Sync", "no longer runs at login", "Low", "launchctl disable"});
    settled()->cancelAgents();
    EXPECT_TRUE(toggle->isChecked());

    click(*toggle);
    model->confirmAgents();
    EXPECT_TRUE(toggle->isChecked()) << "nothing has changed yet";
    settle();
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_TRUE(view.isOpen());
    expectWords(view, {"Off by Brell"});
}

TEST_F(LoginItemsPageTest, TheFilterFindsByNameLabelAndAppAndSaysWhenNothingDoes) {
    openOn(Screen::loginItems);
    const auto found = [&](const QString& typed) {
        filter(typed);
        return visible<LoginItemView>().size();
    };
    const std::size_t all = found("");
    for (const char* one : {"KEYSTONE", "crash", "spotify", "google chrome", "missing"})
        EXPECT_EQ(found(one), 1) << one;  // among them the app that a job names
    EXPECT_EQ(found("no such item"), 0);
    type(page().findChild<QLineEdit*>(), Qt::Key_Escape);
    EXPECT_EQ(visible<LoginItemView>().size(), all);
}

TEST_F(LoginItemsPageTest, WhatCameSinceTheLastVisitIsMarkedAndCanBeShownAlone) {
    const auto placeOf = [&](const QWidget* part) {
        return QRect(part->mapToGlobal(QPoint()), part->size());
    };
    const auto places = [&] {
        return std::pair(placeOf(page().findChild<QLineEdit*>()), placeOf(page().findChild<TickBox*>()));
    };
    openOn(Screen::loginItems);
    const std::size_t before = visible<LoginItemView>().size();
    const auto placesBefore = places();
    EXPECT_FALSE(page().findChild<TickBox*>()->isEnabled()) << "the first visit";
    const std::string label = "com.acme.dispatch";
    setContents(fileOf(label), jobFile(label));
    openOn(Screen::loginItems);
    auto* toggle = page().findChild<TickBox*>();
    EXPECT_EQ(toggle->title(), "New 1");
    EXPECT_EQ(words(page()).count("new since your last visit"), 1);
    LoginItemView& item = agent(label);
    expectWords(item, {"new since your last visit"});

    press(toggle->accessibleName());
    EXPECT_EQ(visible<LoginItemView>(), std::vector<LoginItemView*>{&item});
    EXPECT_EQ(places(), placesBefore);
    filter("duskwatch");
    EXPECT_TRUE(visible<LoginItemView>().empty()) << "both are asked for";
    press("Show All");
    EXPECT_EQ(visible<LoginItemView>().size(), before + 1);

    item.setOpen(true);
#ifndef Q_OS_MACOS  // where Finder comes to the front
    // Where its job file lies, as the desktop shows folders.
    QTextBrowser folders;
    QDesktopServices::setUrlHandler("file", &folders, "setSource");
    press("Show in Finder: " + item.title());
    EXPECT_EQ(folders.source(), QUrl::fromLocalFile(qt(sample.launchAgents().string())));
    QDesktopServices::unsetUrlHandler("file");
#endif
    std::filesystem::remove(fileOf(label));
    press("Show in Finder: " + item.title());
    expectWords(opened<Sheet>(), {"com.acme.dispatch.plist does not exist."});
    opened<Sheet>().close();
}

TEST_F(LoginItemsPageTest, TheTaskListIsReadAfterTheButtonThatSaysWhatItMayCost) {
    openOn(Screen::loginItems);
    const QString ask = "Read macOS's List of Background Items...";
    const std::size_t before = visible<LoginItemView>().size();
    expectWords(page(), {"may be missing here"});
    press(ask);
    expectWords(opened<Sheet>(), {"macOS may ask for an administrator's password"});
    press(opened<Sheet>(), "Read the List");
    EXPECT_GT(visible<LoginItemView>().size(), before);
    EXPECT_FALSE(words(page()).contains("may be missing here"));

    std::filesystem::remove(sample.systemRoot() / "private/var/db/background-tasks.txt");
    press("Refresh the login items");
    EXPECT_TRUE(button(page(), ask).isEnabled()) << "macOS did not give it";
    model->askTaskList();
    model->confirmTaskList();
    window->refreshNow();
    expectWords(page(), {"Waiting for macOS"});
    press("Cancel");
    EXPECT_FALSE(words(page()).contains("Waiting for macOS"));
}

}  // namespace brell::testing
