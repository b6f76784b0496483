// What holds for every page, whatever it shows.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSettings>
#include <QToolButton>
#include <QWheelEvent>
#include <fstream>

#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/FactList.h"
#include "CorvaneBrell/Window/NoticeBar.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "CorvaneBrell/Window/Switch.h"
#include "CorvaneBrell/Window/Symbol.h"
#include "CorvaneBrell/Window/TabOrder.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace fs = std::filesystem;

namespace brell::testing {

namespace {

const QString longName = QString("com.example.").append(QString(188, 'n'));

std::string nameOf(const QWidget* widget) {
    return widget->metaObject()->className() + (" \"" + utf8(widget->accessibleName()) + "\"");
}

// Everything that assistive technology meets below this.
void walk(QAccessibleInterface* at, const std::function<void(QAccessibleInterface*)>& visit) {
    if (!at || !at->isValid() || at->state().invisible) return;
    visit(at);
    for (int i = 0; i < at->childCount(); ++i) walk(at->child(i), visit);
}

bool isControl(QAccessible::Role role) {
    static const std::set<QAccessible::Role> controls{
        QAccessible::Button,      QAccessible::ButtonMenu, QAccessible::CheckBox,
        QAccessible::RadioButton, QAccessible::ComboBox,   QAccessible::EditableText,
        QAccessible::List,        QAccessible::ListItem,   QAccessible::Slider};
    return controls.contains(role);
}

void openAllDetails(const QWidget& page) {
    for (Row* row : page.findChildren<Row*>()) row->setOpen(true);
}

void scrollOver(QWidget* widget, int delta) {
    QWheelEvent event(QPointF(5, 5), widget->mapToGlobal(QPointF(5, 5)), {0, delta}, {0, delta}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

// What a text needs more than it has, in points; 0 for one that is shown whole.
int missing(const QWidget* text) {
    if (!text->hasHeightForWidth()) return 0;
    return std::max(0, text->heightForWidth(text->width()) - text->height());
}

}  // namespace

class DemandsTest : public WindowTest {
protected:
    void expectNothingCanBeChanged() {
        const QRegularExpression changing("^Restore(?! Script)|Apply|Mark as|^Undo|^Choose");
        for (QWidget* control : visible<QWidget>(*window->currentPage())) {
            const auto* row = qobject_cast<Row*>(control->parentWidget());
            const auto* button = qobject_cast<QPushButton*>(control);
            const bool changes = qobject_cast<Switch*>(control) ||
                                 (row && (row->wayBack() == control || qobject_cast<ChoiceBox*>(control))) ||
                                 (button && changing.match(button->text()).hasMatch());
            if (changes) {
                EXPECT_FALSE(control->isEnabled()) << nameOf(control);
            }
        }
    }

    // Calls look with each page in turn, everything on it open.
    void onEveryPage(const std::function<void()>& look) {
        for (const Screen screen : allCases<Screen>()) {
            go(screen);
            openAllDetails(*window->currentPage());
            settle();
            SCOPED_TRACE(std::string(title(screen)));
            look();
        }
    }
};

TEST_F(DemandsTest, EveryControlHasANameAndSwitchesSayWhatTheyAreWhatTheyHoldAndWhenItTakesEffect) {
    openLivedIn();
    onEveryPage([&] {
        for (const QLineEdit* field : visible<QLineEdit>(*window))
            for (QToolButton* part :
                 field->findChildren<QToolButton*>())  // also one that is hidden while it is empty
                EXPECT_FALSE(QAccessible::queryAccessibleInterface(part)->text(QAccessible::Name).isEmpty());
        walk(QAccessible::queryAccessibleInterface(window.get()), [&](QAccessibleInterface* at) {
            if (!isControl(at->role())) return;
            EXPECT_FALSE(at->text(QAccessible::Name).isEmpty())
                << at->object()->metaObject()->className() << " " << utf8(at->object()->objectName());
            if (at->role() != QAccessible::ComboBox) return;
            ASSERT_TRUE(at->valueInterface()) << "which the systems' bridges ask for";
            EXPECT_EQ(at->valueInterface()->currentValue().toString(),
                      static_cast<ChoiceBox*>(at->object())->value());
        });
        for (TweakRow* tweak : window->currentPage()->findChildren<TweakRow*>()) {
            QWidget* inside = firstControl(tweak->control());
            QWidget* control = inside ? inside : tweak->control();
            QAccessibleInterface* at = QAccessible::queryAccessibleInterface(control);
            EXPECT_TRUE(at->text(QAccessible::Name).contains(qt(tweak->tweak().title)));
            EXPECT_EQ(at->text(QAccessible::Description), qt(tweak->tweak().explanation.takesEffect));
            if (const auto* toggle = qobject_cast<Switch*>(control)) {
                EXPECT_EQ(static_cast<bool>(at->state().checked), toggle->isChecked());
            }
        }
    });
}

// Also rows that arrive later and details that are opened later have their place.
TEST_F(DemandsTest, TabReachesEveryControlFromTopToBottomAndComesRound) {
    openLivedIn();
    go(Screen::journal);
    settled()->apply("dock.autohide");  // a row above the others
    onEveryPage([&] {
        std::set<QWidget*> wanted;
        for (QWidget* widget : visible<QWidget>(*window->currentPage()))
            if (widget->isEnabled() && widget->focusPolicy() & Qt::TabFocus) wanted.insert(widget);
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        QWidget* const start = &window->sidebar().pages();
        QWidget* const content = window->currentPage()->scrollArea()->widget();
        start->setFocus();
        QWidget* before = nullptr;  // within the content
        for (std::size_t left = 2 * wanted.size() + 40; left > 0; --left) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QWidget* const focus = QApplication::focusWidget();
            ASSERT_TRUE(focus);
            wanted.erase(focus);
            if (focus == start) break;
            if (!content->isAncestorOf(focus)) continue;
            const auto height = [&](QWidget* control) {
                return control->mapTo(content, control->rect().center()).y();
            };
            if (before) {
                EXPECT_GT(height(focus), height(before) - 20) << nameOf(before) << " and " << nameOf(focus);
            }
            before = focus;
        }
        EXPECT_EQ(QApplication::focusWidget(), start) << "a trap";
        for (const QWidget* widget : wanted) ADD_FAILURE() << nameOf(widget) << " is not reached";
    });
}

TEST_F(DemandsTest, TheWheelAndAClickOnTextChangeNothingAndTargetsAreLargeEnough) {
    openLivedIn();
    const auto before = everythingIn(folder.path / "mac" / "Users");
    const std::size_t entries = model->state().entries.size();
    onEveryPage([&] {
        for (QWidget* widget : visible<QWidget>(*window->currentPage())) {
            const bool isButton = qobject_cast<QAbstractButton*>(widget);
            if (!isButton && !qobject_cast<QComboBox*>(widget) && !qobject_cast<QLineEdit*>(widget)) continue;
            if (widget->parentWidget()->inherits("QLineEdit") ||
                widget->parentWidget()->inherits("QComboBox"))
                continue;
            const QString shown = widget->property("currentText").toString();
            scrollOver(widget, -120);
            scrollOver(widget, 120);
            EXPECT_EQ(widget->property("currentText").toString(), shown) << nameOf(widget);
            EXPECT_GE(widget->height(), 24) << nameOf(widget);
        }
        for (Row* row : visible<Row>(*window->currentPage())) {
            const bool wasOpen = row->isOpen();
            QTest::mouseClick(row, Qt::LeftButton, {}, {40, 24});
            if (row->details()) {
                EXPECT_NE(row->isOpen(), wasOpen) << nameOf(row);
            }
        }
    });
    settle();
    EXPECT_EQ(changesIn(folder.path / "mac" / "Users", before), Texts{});
    EXPECT_EQ(model->state().entries.size(), entries);
}

TEST(AppearanceTest, EverythingThatIsReadHasContrastInLightAndDark) {
    const auto expect = [](const QColor& seen, const QColor& ground, double least = 4.5) {
        EXPECT_GE(Appearance::contrast(seen, ground), least) << utf8(seen.name() + " on " + ground.name());
    };
    constexpr std::array tones{Tone::plain, Tone::accent, Tone::positive, Tone::caution, Tone::critical};
    for (const QPalette& palette : {Appearance::light(), Appearance::dark()}) {
        EXPECT_EQ(Appearance::following(palette), palette);
        const auto color = [&](QPalette::ColorRole role) { return palette.color(role); };
        for (const QColor& surface :
             {color(QPalette::Window), color(QPalette::Base), Appearance::card(palette)}) {
            expect(color(QPalette::WindowText), surface);
            expect(Appearance::secondaryText(palette), surface);
            expect(Appearance::outline(palette), surface, 3.0);
            for (const Tone tone : tones) expect(Appearance::toned(tone, palette), surface);
        }
        for (const Tone tone : tones) {
            expect(Appearance::toned(tone, palette), Appearance::tinted(tone, palette));
            expect(color(QPalette::WindowText), Appearance::tinted(tone, palette));
        }
        expect(color(QPalette::ButtonText), color(QPalette::Button));
        expect(palette.color(QPalette::Disabled, QPalette::ButtonText), color(QPalette::Button));
        expect(Appearance::secondaryText(palette), Appearance::marked(palette));
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            for (const auto ground : {QPalette::Window, QPalette::Base})
                expect(palette.color(QPalette::Disabled, role), color(ground));
        expect(color(QPalette::HighlightedText), color(QPalette::Highlight));
        expect(color(QPalette::PlaceholderText), color(QPalette::Base));
        expect(color(QPalette::Link), color(QPalette::Base));
    }
}

// Asked in pixels, as before Qt 6.8, or in points: a screen of twice the pixels gets twice the pixels.
TEST(SymbolTest, ASymbolIsAsSharpAsTheScreenWhicheverWayTheToolkitAsks) {
    EXPECT_EQ(askedPoints({32, 32}, 2, QVersionNumber(6, 7, 3)), QSize(16, 16));
    EXPECT_EQ(askedPoints({16, 16}, 2, QVersionNumber(6, 8)), QSize(16, 16));
    const QPixmap pixmap = symbolIcon("folder").pixmap(QSize(16, 16), 2.0);
    EXPECT_EQ(pixmap.size(), QSize(32, 32));
    EXPECT_EQ(pixmap.devicePixelRatio(), 2.0);
}

TEST_F(DemandsTest, SwitchingToDarkWhileOpenLeavesNothingStale) {
    openLivedIn();
    std::map<Screen, QImage> switched;
    const auto pictures = [&] {
        std::map<Screen, QImage> taken;
        for (const Screen screen : allCases<Screen>()) {
            go(screen);
            window->sidebar().pages().setFocus();
            settle();
            taken[screen] = window->picture();
        }
        return taken;
    };
    const std::map<Screen, QImage> light = pictures();
    QApplication::setPalette(Appearance::dark());
    settle();
    switched = pictures();
    openWindow();
    settled()->deferRecovery();
    const std::map<Screen, QImage> fresh = pictures();
    QApplication::setPalette(Appearance::light());
    for (const Screen screen : allCases<Screen>()) {
        EXPECT_TRUE(switched[screen] == fresh.at(screen)) << title(screen);
        EXPECT_FALSE(switched[screen] == light.at(screen)) << title(screen);
    }
}

TEST_F(DemandsTest, NoTextIsCutAtTheSmallestSizeWithNamesOfTwoHundredCharacters) {
    haveAPast();
    const fs::path deep = sample.home() / utf8(longName);
    sample.openPreferences()->write(PrefValue(deep.string()), {"com.apple.screencapture", "location"});
    fs::create_directories(sample.systemRoot() / "Volumes" / utf8(longName));
    std::ofstream(sample.launchAgents() / "long.plist")
        << "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Label</key><string>" << utf8(longName)
        << "</string><key>Program</key><string>/opt/" << utf8(longName) << "</string></dict></plist>";
    openWindow();
    model->deferRecovery();
    window->resize(window->minimumSize());
    ASSERT_EQ(window->minimumSize(), QSize(820, 560));
    onEveryPage([&] {
        ASSERT_EQ(window->size(), QSize(820, 560)) << "the content makes the window larger";
        QScrollArea* scroll = window->currentPage()->scrollArea();
        EXPECT_LE(scroll->widget()->width(), scroll->viewport()->width());
        for (const QWidget* text : visible<QWidget>(*window)) {
            if (qobject_cast<const Paragraph*>(text) || qobject_cast<const SelectableText*>(text)) {
                EXPECT_EQ(missing(text), 0) << nameOf(text) << utf8(text->property("text").toString());
            }
            const auto* button = qobject_cast<const QPushButton*>(text);
            if (button) {
                EXPECT_GE(button->width(), button->sizeHint().width()) << utf8(button->text());
            }
        }
    });
}

TEST_F(DemandsTest, WhatCannotBeChangedSaysWhyAndAnUndoIsThereExactlyWhileAChangeIsActive) {
    openLivedIn();
    int refused = 0, undoable = 0;
    onEveryPage([&] {
        for (TweakRow* tweak : visible<TweakRow>(*window->currentPage())) {
            const TweakRowState state = tweakRowState(*model, tweak->tweak());
            EXPECT_EQ(state.canChange || !state.reason.empty(), true) << tweak->tweak().id;
            bool reasonIsShown = state.reason.empty();
            const QToolButton* wayBack = tweak->wayBack();
            const bool restores = wayBack && wayBack->isVisible();
            for (const Paragraph* text : visible<Paragraph>(*tweak))
                reasonIsShown = reasonIsShown || text->text() == qt(state.reason);
            if (restores) {
                EXPECT_TRUE(
                    wayBack->accessibleName().startsWith("Back to " + qt(state.undo->leadsTo) + ": "));
                EXPECT_TRUE(wayBack->toolTip().contains("Back to "));
            }
            EXPECT_TRUE(reasonIsShown) << tweak->tweak().id;
            for (const char* expertsWord : {"absent", "com.apple.", "NSGlobalDomain"})
                EXPECT_FALSE(words(*tweak->details()).contains(expertsWord)) << tweak->tweak().id;
            EXPECT_EQ(restores, state.undo.has_value()) << tweak->tweak().id;
            refused += !state.canChange;
            undoable += restores;
        }
    });
    EXPECT_GE(refused, 3);
    EXPECT_GE(undoable, 6);
}

TEST_F(DemandsTest, WithAnUnreadableJournalNothingCanBeChangedAndTheBarStays) {
    haveAPast();
    std::ofstream(*options.journalDirectory / "journal.json") << "{ damaged";
    const auto before = everythingIn(folder.path);
    openWindow();
    EXPECT_EQ(*model->state().startupError,
              "The change journal could not be opened: The change journal could not be read: " +
                  (*options.journalDirectory / "journal.json").string() +
                  ": it is damaged, or something else than Brell wrote it. Nothing can be changed until this "
                  "is fixed.");
    onEveryPage([&] {
        expectNothingCanBeChanged();
        bool said = false;
        for (const NoticeBar* bar : visible<NoticeBar>(*window))
            said = said || bar->words().startsWith("The change journal could not be opened: ");
        EXPECT_TRUE(said);
    });
    PresetMenu presets(*model);
    emit presets.aboutToShow();
    for (const QAction* action : presets.actions())
        EXPECT_EQ(action->isEnabled(), !action->text().contains("port Preset")) << utf8(action->text());
    EXPECT_EQ(model->journalDirectory(), *options.journalDirectory) << "where the damaged one lies";
    EXPECT_FALSE(model->state().undo.size());
    auto after = changesIn(folder.path, before);
    std::erase(after, "mac/private/var/db/.launchd.lock");
    EXPECT_EQ(after, Texts{});
}

// It was all right when the window was opened.
TEST_F(DemandsTest, WithAJournalThatGoesBadNothingIsClaimedUntilItCanBeReadAgain) {
    openLivedIn();
    const std::filesystem::path journal = *options.journalDirectory / "journal.json";
    const std::string before = contentsOf(journal);
    setContents(journal, before.substr(0, before.size() / 2));
    settled()->refreshAll();
    onEveryPage([&] {
        expectNothingCanBeChanged();
        for (const TweakRow* tweak : visible<TweakRow>(*window->currentPage())) {
            if (const auto* toggle = qobject_cast<Switch*>(tweak->control())) {
                EXPECT_FALSE(toggle->isKnown());
            }
            EXPECT_TRUE(words(*tweak).contains("Not known")) << tweak->tweak().id;
        }
    });
    EXPECT_TRUE(words(window->strip()).startsWith("The change journal could not be read: "));
    EXPECT_FALSE(words(window->strip()).contains("JSON")) << "which is the parser's word";
    press(window->strip(), "Show Restore Script");
    QWidget* script = nullptr;
    for (QWidget* one : QApplication::topLevelWidgets())
        if (auto* view = one->findChild<QPlainTextEdit*>(); view && one->isVisible()) {
            EXPECT_TRUE(view->toPlainText().startsWith("#!"));
            script = one;
        }
    ASSERT_TRUE(script);
    script->close();

    setContents(journal, before);
    settled()->refreshAll();
    EXPECT_FALSE(words(window->strip()).contains("journal"));
    go(Screen::finder);
    EXPECT_TRUE(row("finder.show_hidden").control()->isEnabled());
}

TEST_F(DemandsTest, AnInterruptedChangeIsNotTakenForDone) {
    openLivedIn();
    const TweakRowState state = tweakRowState(*model, *model->catalog().tweak("finder.drives_on_desktop"));
    ASSERT_TRUE(state.badge);
    EXPECT_EQ(state.badge->text, "Interrupted");
    EXPECT_EQ(state.isOn, false) << "none of its keys is stored";
    EXPECT_TRUE(state.canUndo);
}

// In names, paths, values and messages; a text that decides by itself that it is HTML fetches what it names.
TEST_F(DemandsTest, TextFromOutsideIsNeverTakenForHtmlHoweverLongItIs) {
    const std::string turned = "\u202E", html = turned + "<b>bold</b><img src=x>";
    haveAPast();
    const auto preferences = sample.openPreferences();
    preferences->write(PrefValue("/tmp/" + html), {"com.apple.screencapture", "location"});
    preferences->write(PrefValue(html), {"com.apple.dock", "orientation"});
    fs::create_directories(sample.systemRoot() / "Volumes" / "<b>disk<b>");
    setContents(sample.launchAgents() / "bold.plist",
                "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Label</key><string>&lt;b&gt;bold" +
                    turned + std::string(3'000'000, 'x') +
                    "</string><key>Program</key><string>/opt/&lt;b&gt;" + std::string(900'000, 'x') +
                    "</string></dict></plist>");
    openWindow();
    settled()->deferRecovery();
    settled()->applyChoice("dock.position", "left");
    settled()->apply("shot.folder", std::vector<PrefValue>{PrefValue("/" + html)});
    settled()->importPreset(folder.path / html);
    std::size_t bold = 0;
    const auto look = [&] {
        for (QWidget* widget : QApplication::allWidgets()) {
            if (const auto* text = qobject_cast<QLabel*>(widget); text && !text->inherits("QTipLabel")) {
                EXPECT_EQ(text->textFormat(), Qt::PlainText) << utf8(text->text());
                EXPECT_LE(text->text().size(), Paragraph::longest + 1);
                EXPECT_FALSE(text->text().contains(qt(turned))) << utf8(text->text());
                bold += text->text().contains("<b>");
            }
            EXPECT_FALSE(widget->toolTip().contains("<b>")) << utf8(widget->toolTip());
        }
    };
    onEveryPage(look);
    settled()->askPreset({"bold", html, "", {"finder.show_hidden", html}});
    look();
    settled()->cancelPreset();
    press(window->strip(), "Brell could not do that: all of it");
    look();
    EXPECT_GT(bold, 6);

    FactList facts;
    facts.add("Program", "/bin/sh");
    EXPECT_TRUE(facts.findChildren<QPushButton*>().isEmpty());
    const QString whole = qt(html + std::string(3'000, 'x'));
    facts.add("Label", whole);
    button(facts, "Copy: Label").click();
    EXPECT_EQ(QApplication::clipboard()->text(), whole);
}

// It would keep which folders were looked at.
TEST_F(DemandsTest, ADialogForFilesLeavesNothingInTheToolkitsPreferences) {
    const fs::path own = folder.path / "toolkit";
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, qt(own.string()));
    openWindow();
    go(Screen::screenshots);
    const auto openAndClose = [&] {
        press(row("shot.folder"), "Choose...");
        for (QWidget* one : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<QFileDialog*>(one)) dialog->close();
        settle();
    };
    openAndClose();
    EXPECT_EQ(everythingIn(own).count("QtProject.conf"), 0u);
    setContents(own / "QtProject.conf", "[FileDialog]\nhistory=file:///home\n\n[Other]\nkept=1\n");
    const QString before =
        QSettings(QSettings::UserScope, "QtProject").value("FileDialog/history").toString();
    openAndClose();
    const QSettings after(QSettings::UserScope, "QtProject");
    EXPECT_EQ(after.allKeys(), (QStringList{"FileDialog/history", "Other/kept"}));
    EXPECT_EQ(after.value("FileDialog/history").toString(), before);
}

TEST_F(DemandsTest, EveryPageWithoutContentSaysSoInASentence) {
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
