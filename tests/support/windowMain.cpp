#include <gtest/gtest.h>

#include <QApplication>

#include "ui/base/appearance.h"

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    ui::applyAppearance();
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
