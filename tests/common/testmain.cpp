// SPDX-License-Identifier: MIT
// Entry point of every test program: a QApplication on the offscreen platform, so that
// widget and painting tests run without a display and render the same everywhere.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
