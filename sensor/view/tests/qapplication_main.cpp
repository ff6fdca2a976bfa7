#include <QApplication>

#include <gtest/gtest.h>

// Widgets need a QApplication for the whole run; the test discovery at build time runs without
// a display, so the offscreen screen is the default.
int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
