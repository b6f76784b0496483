// The tests of the window share one application, on a platform without a screen.

#include <gtest/gtest.h>

#include <QApplication>

#include "CorvaneBrell/Window/Appearance.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    QApplication::setPalette(brell::Appearance::light());
    return RUN_ALL_TESTS();
}
