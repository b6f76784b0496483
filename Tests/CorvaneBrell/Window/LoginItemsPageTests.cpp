#include <QDesktopServices>
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
            expectWords(*views[i], {!row.isOn ? "Off" : isAllowed ? "On" : "Not allowed"});
            continue;
        }
        EXPECT_EQ(toggle->isChecked(), row.isOn) << row.id;
        EXPECT_EQ(utf8(toggle->accessibleName()), row.title);
    }
    for (const LoginItemBadge badge :
         {LoginItemBadge::toggleable, LoginItemBadge::adminOnly, LoginItemBadge::appManaged})
        EXPECT_EQ(words(page()).count(qt(text(badge))), 1);

    expectWords(agent("com.orrerylabs.telemetry"), {"keeps crashing and restarting"});
    expectWords(agent("com.halverson.duskwatch.menu"), {"not allowed in System Settings"});
    expectWords(agent("com.google.keystone.agent"), {"Risk: medium"});
    expectWords(agent("org.fernwright.notes"),
                {"its program is missing: /Applications/Fernwright Notes.app/Contents"});
    LoginItemView& refused = agent("homebrew.mxcl.postgresql@16");
    EXPECT_FALSE(refused.findChild<Switch*>()->isEnabled());
    expectWords(refused, {"contains characters Brell does not pass to launchctl."});
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
    expectWords(*window->sheets().current(),
                {"Lumenfold Sync", "no longer runs at login", "Low", "launchctl disable"});
    settled()->cancelAgents();
    EXPECT_TRUE(toggle->isChecked());

    click(*toggle);
    model->confirmAgents();
    EXPECT_TRUE(toggle->isChecked()) << "nothing has changed yet";
    settle();
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_EQ(&agent(label), &view) << "the row is the same";
    EXPECT_TRUE(view.isOpen());
    expectWords(view, {"Off by Brell"});

    turnOnFromOutside(label);  // by its app
    settled()->refreshShown();
    expectWords(view, {"Changed outside Brell", "Put it back first"});
    EXPECT_FALSE(words(view).contains("n by Brell"));
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_FALSE(toggle->isEnabled()) << "the switch would be refused";

    press("Back to on: Lumenfold Sync");
    settled()->confirmRestore();
    EXPECT_TRUE(toggle->isEnabled());
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_FALSE(words(view).contains("by Brell"));
}

TEST_F(LoginItemsPageTest, TheFilterFindsByNameLabelAndAppAndSaysWhenNothingDoes) {
    openOn(Screen::loginItems);
    auto* filter = page().findChild<QLineEdit*>();
    const auto found = [&](const QString& typed) {
        fill(*filter, typed);
        return visible<LoginItemView>(page()).size();
    };
    const std::size_t all = found("");
    EXPECT_LT(found("homebrew"), all);
    for (const char* one : {"KEYSTONE", "crash", "spotify", "google chrome", "missing"})
        EXPECT_EQ(found(one), 1) << one;  // among them the app that a job names
    EXPECT_EQ(found("no such item"), 0);
    type(filter, Qt::Key_Escape);
    EXPECT_EQ(visible<LoginItemView>(page()).size(), all);
}

TEST_F(LoginItemsPageTest, WhatCameSinceTheLastVisitIsMarkedAndCanBeShownAlone) {
    const auto places = [&] {
        std::vector<QRect> found;
        for (const QWidget* part : {static_cast<QWidget*>(page().findChild<QLineEdit*>()),
                                    static_cast<QWidget*>(page().findChild<TickBox*>())})
            found.emplace_back(part->mapToGlobal(QPoint()), part->size());
        return found;
    };
    openOn(Screen::loginItems);
    const std::size_t before = visible<LoginItemView>(page()).size();
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
    EXPECT_EQ(visible<LoginItemView>(page()), std::vector<LoginItemView*>{&item});
    EXPECT_EQ(places(), placesBefore);
    fill(*page().findChild<QLineEdit*>(), "duskwatch");
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
    std::filesystem::remove(fileOf(label));
    press("Show in Finder: " + item.title());
    expectWords(opened<Sheet>(), {"com.acme.dispatch.plist does not exist."});
    opened<Sheet>().close();
}

TEST_F(LoginItemsPageTest, TheTaskListIsReadAfterTheButtonThatSaysWhatItMayCost) {
    openOn(Screen::loginItems);
    const QString ask = "Read macOS's List of Background Items...";
    const std::size_t before = visible<LoginItemView>(page()).size();
    expectWords(page(), {"may be missing here"});
    press(ask);
    expectWords(opened<Sheet>(), {"macOS may ask for an administrator's password"});
    press(opened<Sheet>(), "Read the List");
    EXPECT_GT(visible<LoginItemView>(page()).size(), before);
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
