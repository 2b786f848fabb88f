// The one entry point of every test program: the application object that timers, signals and
// widgets need, on the offscreen platform unless the caller names another.

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", qEnvironmentVariable("QT_QPA_PLATFORM", "offscreen").toLatin1());
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
