// The looks of every page: colours, sharpness, and that no text is cut.

#include <QScrollBar>

#include "CorvaneBrell/Window/Symbol.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

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

TEST_F(WindowTest, SwitchingToDarkWhileOpenLeavesNothingStale) {
    openLivedIn();
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
    const std::map<Screen, QImage> switched = pictures();
    openLivedIn();
    const std::map<Screen, QImage> fresh = pictures();
    QApplication::setPalette(Appearance::light());
    for (const Screen screen : allCases<Screen>()) {
        EXPECT_TRUE(switched.at(screen) == fresh.at(screen)) << title(screen);
        EXPECT_FALSE(switched.at(screen) == light.at(screen)) << title(screen);
    }
}

TEST_F(WindowTest, NothingIsCutAtTheSmallestSizeInLargeTypeWithNamesOfTwoHundredCharacters) {
    const QString longName = QString("com.example.").append(QString(188, 'n'));
    const fs::path deep = sample.home() / utf8(longName);
    haveAPast();
    writeFromOutside({"com.apple.screencapture", "location"}, deep.string());
    fs::create_directories(sample.systemRoot() / "Volumes" / utf8(longName));
    setContents(fileOf("long"),
                jobFile(utf8(longName), "<key>Program</key><string>/opt/" + utf8(longName) + "</string>"));
    const QFont usual = QApplication::font();
    for (const double factor : {1.0, 1.6, 2.0}) {
        SCOPED_TRACE(factor);
        QFont font = usual;
        font.setPointSizeF(factor * usual.pointSizeF());
        QApplication::setFont(font);
        openWindow();
        settled()->deferRecovery();
        const QSize smallest = window->smallest({1440, 860});
        window->resize(smallest);
        EXPECT_EQ(smallest == QSize(820, 560), factor == 1.0);
        EXPECT_EQ(window->smallest({1000, 700}), smallest.boundedTo({1000, 700 - 32}));
        const QListWidget& pages = window->sidebar().pages();
        EXPECT_EQ(pages.verticalScrollBar()->maximum(), 0);
        for (int i = 0; i < pages.count(); ++i) {
            const QString title = pages.item(i)->data(Qt::UserRole).toString() + "  9";
            EXPECT_LE(pages.fontMetrics().horizontalAdvance(title) + 46, pages.viewport()->width());
        }
        std::size_t badges = 0;
        onEveryPage([&] {
            ASSERT_EQ(window->size(), smallest) << "the content makes the window larger";
            QScrollArea* scroll = window->currentPage()->scrollArea();
            EXPECT_LE(scroll->widget()->width(), scroll->viewport()->width());
            for (const QWidget* text : visible<QWidget>(*window)) {
                const bool isText =
                    qobject_cast<const Paragraph*>(text) || qobject_cast<const SelectableText*>(text);
                const bool isWhole =
                    !text->hasHeightForWidth() || text->heightForWidth(text->width()) <= text->height();
                EXPECT_TRUE(!isText || isWhole) << nameOf(text) << utf8(text->property("text").toString());
            }
            for (const TweakRow* row : visible<TweakRow>())
                EXPECT_TRUE(factor > 1.0 || visible<Paragraph>(*row).front()->height() < 30)
                    << utf8(row->title()) << " wraps";
            for (const QPushButton* button : visible<QPushButton>(*window)) {
                EXPECT_GE(button->width(), button->sizeHint().width()) << utf8(button->text());
                EXPECT_LE(button->mapTo(window.get(), button->rect().bottomRight()).x(), smallest.width());
            }
            for (const Row* row : visible<Row>())
                for (const QFrame* badge :
                     row->findChildren<QFrame*>(QString(), Qt::FindDirectChildrenOnly)) {
                    if (badge->accessibleName().isEmpty() || badge->inherits("QTextEdit")) continue;
                    EXPECT_EQ(badge->size(), badge->size().expandedTo(badge->sizeHint())) << nameOf(badge);
                    ++badges;
                }
        });
        EXPECT_GE(badges, 6);
    }
    QApplication::setFont(usual);
}

}  // namespace brell::testing
