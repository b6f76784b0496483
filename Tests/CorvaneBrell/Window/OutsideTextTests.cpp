// Text from outside is shown as it is, and looking at it leaves no trace elsewhere.

#include <QClipboard>
#include <QSettings>

#include "CorvaneBrell/Window/FactList.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

// In names, paths, values and messages; a text that decides by itself that it is HTML fetches what it names.
TEST_F(WindowTest, TextFromOutsideIsNeverTakenForHtmlHoweverLongItIs) {
    const std::string turned = "\u202E", html = turned + "<b>bold</b><img src=x>";
    haveAPast();
    writeFromOutside({"com.apple.screencapture", "location"}, "/tmp/" + html);
    writeFromOutside({"com.apple.dock", "orientation"}, html);
    fs::create_directories(sample.systemRoot() / "Volumes" / "<b>disk<b>");
    setContents(fileOf("bold"), jobFile("&lt;b&gt;bold" + turned + std::string(3'000'000, 'x'),
                                        "<key>Program</key><string>/opt/&lt;b&gt;" +
                                            std::string(900'000, 'x') + "</string>"));
    openLivedIn();
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

#ifndef Q_OS_MACOS  // where the toolkit's preferences can't be led elsewhere from the user's own
// It would keep which folders were looked at.
TEST_F(WindowTest, ADialogForFilesLeavesNothingInTheToolkitsPreferences) {
    const fs::path own = folder.path / "toolkit";
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, qt(own.string()));
    openWindow();
    go(Screen::screenshots);
    const auto openAndClose = [&] {
        press(row("shot.folder"), "Choose...");
        opened<QFileDialog>().close();
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
#endif

}  // namespace brell::testing
