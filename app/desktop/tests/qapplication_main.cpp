#include <QApplication>

#include <gtest/gtest.h>

// Widgets need a QApplication for the whole run. ctest's environment chooses the offscreen
// screen; the test discovery at build time runs without it and must not need a display either.
int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Skyvane"));
    QApplication::setApplicationVersion(QStringLiteral("9.8.7"));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
