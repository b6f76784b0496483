
#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QLineEdit>
#include <QTextBrowser>
#include <QUrl>

#include "CorvaneBrell/Window/LoginItemView.h"
#include "CorvaneBrell/Window/Sheet.h"
#include "CorvaneBrell/Window/Switch.h"
#include "CorvaneBrell/Window/TickBox.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

class LoginItemsPageTest : public WindowTest {
protected:
    LoginItemView& agent(const std::string& label) {
        for (const LoginItemRow& row : model->state().loginItems)
            if (row.record && row.record->label() == label)
                if (auto* view = page().findChild<LoginItemView*>(qt(row.id))) return *view;
        throw std::runtime_error("no row for " + label);
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
            EXPECT_TRUE(words(*views[i]).contains(!row.isOn   ? "Off"
                                                  : isAllowed ? "On"
                                                              : "Not allowed"))
                << row.id;
            continue;
        }
        EXPECT_EQ(toggle->isChecked(), row.isOn) << row.id;
        EXPECT_EQ(utf8(toggle->accessibleName()), row.title);
    }
    for (const LoginItemBadge badge :
         {LoginItemBadge::toggleable, LoginItemBadge::adminOnly, LoginItemBadge::appManaged})
        EXPECT_EQ(words(page()).count(qt(text(badge))), 1);

    EXPECT_TRUE(words(agent("com.orrerylabs.telemetry")).contains("keeps crashing and restarting"));
    EXPECT_TRUE(words(agent("com.halverson.duskwatch.menu")).contains("not allowed in System Settings"));
    EXPECT_TRUE(words(agent("com.google.keystone.agent")).contains("Risk: medium"));
    EXPECT_TRUE(words(agent("org.fernwright.notes"))
                    .contains("its program is missing: /Applications/Fernwright Notes.app/Contents"));
    LoginItemView& refused = agent("homebrew.mxcl.postgresql@16");
    EXPECT_FALSE(refused.findChild<Switch*>()->isEnabled());
    EXPECT_TRUE(words(refused).contains("contains characters Brell does not pass to launchctl."));
}

TEST_F(LoginItemsPageTest, AnAgentsSwitchMovesOnlyWhenTheAgentHasBeenSwitched) {
    openOn(Screen::loginItems);
    const std::string label = "com.lumenfold.sync";
    LoginItemView& view = agent(label);
    view.setOpen(true);
    EXPECT_FALSE(words(*view.details()).isEmpty());
    auto* toggle = view.findChild<Switch*>();
    toggle->setFocus();
    type(toggle, Qt::Key_Space);
    EXPECT_TRUE(toggle->isChecked());
    ASSERT_TRUE(model->state().agentConfirm);
    for (const char* said : {"Lumenfold Sync", "no longer runs at login", "Low", "launchctl disable"})
        EXPECT_TRUE(words(*window->sheets().current()).contains(said)) << said;
    settled()->cancelAgents();
    EXPECT_TRUE(toggle->isChecked());

    QTest::mouseClick(toggle, Qt::LeftButton);
    settle();
    model->confirmAgents();
    EXPECT_TRUE(toggle->isChecked()) << "nothing has changed yet";
    settle();
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_EQ(&agent(label), &view) << "the row is the same";
    EXPECT_TRUE(view.isOpen());
    EXPECT_TRUE(words(view).contains("Off by Brell"));

    ASSERT_TRUE(sample.openTools()->run(AllowedCommand::launchctlEnable("gui/501", label)).succeeded());
    settled()->refreshShown();
    EXPECT_TRUE(words(view).contains("Changed outside Brell")) << "its app has turned it on again";
    EXPECT_FALSE(words(view).contains("n by Brell"));
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_FALSE(toggle->isEnabled()) << "the switch would be refused";
    EXPECT_TRUE(words(view).contains("Put it back first"));

    press("Back to on: Lumenfold Sync");
    ASSERT_TRUE(model->state().restoreRequest);
    settled()->confirmRestore();
    EXPECT_TRUE(toggle->isEnabled());
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_FALSE(words(view).contains("by Brell"));
}

TEST_F(LoginItemsPageTest, TheFilterFindsByNameLabelAndAppAndSaysWhenNothingDoes) {
    openOn(Screen::loginItems);
    auto* filter = page().findChild<QLineEdit*>();
    const auto found = [&](const QString& typed) {
        filter->setText(typed);
        settle();
        return visible<LoginItemView>(page()).size();
    };
    const std::size_t all = found("");
    EXPECT_EQ(found("KEYSTONE"), 1);
    EXPECT_EQ(found("crash"), 1);
    EXPECT_EQ(found("spotify"), 1);
    EXPECT_EQ(found("google chrome"), 1) << "the app that the job names";
    EXPECT_EQ(found("missing"), 1);
    EXPECT_LT(found("homebrew"), all);
    EXPECT_EQ(found("no such item"), 0);
    EXPECT_TRUE(words(page()).contains("No login item has “no such item”"));
    type(filter, Qt::Key_Escape);
    EXPECT_EQ(visible<LoginItemView>(page()).size(), all);
    EXPECT_EQ(found("no such item"), 0);
    press("Show All");
    EXPECT_EQ(visible<LoginItemView>(page()).size(), all);
    EXPECT_FALSE(words(page()).contains("No login item"));
}

TEST_F(LoginItemsPageTest, WhatCameSinceTheLastVisitIsMarkedAndCanBeShownAlone) {
    const auto places = [&] {
        const auto* field = page().findChild<QLineEdit*>();
        const auto* toggle = page().findChild<TickBox*>();
        return std::pair(QRect(field->mapToGlobal(QPoint()), field->size()),
                         QRect(toggle->mapToGlobal(QPoint()), toggle->size()));
    };
    openOn(Screen::loginItems);
    const std::size_t before = visible<LoginItemView>(page()).size();
    const auto places1 = places();
    EXPECT_FALSE(page().findChild<TickBox*>()->isEnabled()) << "the first visit";
    const std::filesystem::path file = sample.launchAgents() / "com.acme.dispatch.plist";
    setContents(file, "<plist><dict><key>Label</key><string>com.acme.dispatch</string></dict></plist>");
    openWindow();
    settled()->deferRecovery();
    go(Screen::loginItems);
    auto* toggle = page().findChild<TickBox*>();
    EXPECT_EQ(toggle->title(), "New 1");
    EXPECT_EQ(places(), places1);
    EXPECT_EQ(words(page()).count("new since your last visit"), 1);
    LoginItemView& item = agent("com.acme.dispatch");
    EXPECT_TRUE(words(item).contains("new since your last visit"));

    press(toggle->accessibleName());
    EXPECT_EQ(visible<LoginItemView>(page()), std::vector<LoginItemView*>{&item});
    EXPECT_EQ(places(), places1);
    page().findChild<QLineEdit*>()->setText("duskwatch");
    settle();
    EXPECT_TRUE(visible<LoginItemView>(page()).empty()) << "both are asked for";
    press("Show All");
    EXPECT_EQ(visible<LoginItemView>(page()).size(), before + 1);

    // Where its job file lies, as the desktop shows folders.
    QTextBrowser folders;
    QDesktopServices::setUrlHandler("file", &folders, "setSource");
    item.setOpen(true);
    press("Show in Finder: " + item.title());
    EXPECT_EQ(folders.source(), QUrl::fromLocalFile(qt(sample.launchAgents().string())));
    QDesktopServices::unsetUrlHandler("file");
    std::filesystem::remove(file);
    press("Show in Finder: " + item.title());
    EXPECT_TRUE(words(opened<Sheet>()).contains("com.acme.dispatch.plist does not exist."));
    opened<Sheet>().close();
}

TEST_F(LoginItemsPageTest, TheTaskListIsReadAfterTheButtonThatSaysWhatItMayCost) {
    openOn(Screen::loginItems);
    const QString ask = "Read macOS's List of Background Items...";
    const auto items = [&] { return visible<LoginItemView>(page()).size(); };
    const std::size_t before = items();
    EXPECT_TRUE(words(page()).contains("may be missing here"));
    press(ask);
    EXPECT_TRUE(words(opened<Sheet>()).contains("macOS may ask for an administrator's password"));
    press(opened<Sheet>(), "Read the List");
    EXPECT_GT(items(), before);
    EXPECT_FALSE(words(page()).contains("may be missing here"));

    std::filesystem::remove(sample.systemRoot() / "private/var/db/background-tasks.txt");
    press("Refresh the login items");
    EXPECT_EQ(items(), before);
    EXPECT_TRUE(button(page(), ask).isEnabled()) << "macOS did not give it";
    model->askTaskList();
    model->confirmTaskList();
    window->refreshNow();
    EXPECT_TRUE(words(page()).contains("Waiting for macOS"));
    press("Cancel");
    EXPECT_FALSE(words(page()).contains("Waiting for macOS"));
}

TEST_F(LoginItemsPageTest, WithoutItemsThePageSaysWhy) {
    for (const auto& folderOfJobs :
         {"Users/sam/Library/LaunchAgents", "Library/LaunchAgents", "Library/LaunchDaemons"})
        std::filesystem::remove_all(sample.systemRoot() / folderOfJobs);
    openWindow();
    model->show(Screen::loginItems);
    window->refreshNow();
    EXPECT_TRUE(words(page()).contains("The login items are being read."));
    settle();
    EXPECT_TRUE(words(page()).contains("Nothing was found in the folders of launchd"));
    EXPECT_TRUE(button(page(), "Read Again").isEnabled());
}

}  // namespace brell::testing
