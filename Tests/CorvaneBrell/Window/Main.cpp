// The tests of the window share one application, on a platform without a screen.

#include <gtest/gtest.h>

#include <QApplication>

#include "CorvaneBrell/Window/Appearance.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
#ifdef Q_OS_MACOS  // whose points this platform takes for larger ones
    QFont font = QApplication::font();
    font.setPointSizeF(13 * 72.0 / 96);  // 13 pixels
    QApplication::setFont(font);
#endif
    QApplication::setPalette(brell::Appearance::light());
    return RUN_ALL_TESTS();
}
