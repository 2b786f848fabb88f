#include "platform/ActivityDetection.h"
#include "platform/ShutdownWatch.h"
#include "platform/SingleInstance.h"
#include "platform/TestFiles.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QSessionManager>
#include <QTemporaryDir>
#include <array>
#include <csignal>
#include <gmock/gmock.h>

using namespace platform;
using ::testing::ElementsAre;

namespace {

void Press(Qt::Key key) {
    QObject somewhere;
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&somewhere, &event);
}

} // namespace

TEST(ActivityDetectionTest, TellsOnceAfterTheCountUntilTheNextInput) {
    ActivityDetection detection;
    int told = 0;
    QObject::connect(&detection, &ActivityDetection::UserIsNotHere, [&] { ++told; });
    detection.setCheckPeriod(3600000);
    detection.setCount(3);
    detection.setEnabled(true);
    const auto checks = [&](int count) {
        for (int i = 0; i < count; ++i)
            detection.Check();
        return told;
    };
    EXPECT_EQ(checks(2), 0);
    Press(Qt::Key_A);
    EXPECT_EQ(checks(2), 0);
    QEvent paint(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(qApp, &paint);
    EXPECT_EQ(checks(1), 1);
    EXPECT_EQ(checks(10), 1);
    Press(Qt::Key_A);
    EXPECT_EQ(checks(3), 2);
    detection.setEnabled(false);
    EXPECT_FALSE(detection.Enabled());
    detection.setEnabled(true);
    EXPECT_EQ(checks(2), 2);
    EXPECT_EQ(checks(1), 3);

    // By its timer too.
    Press(Qt::Key_A);
    detection.setCheckPeriod(5);
    detection.setCount(2);
    EXPECT_TRUE(Until([&] { return told > 3; }));
}

TEST(SingleInstanceTest, OneLiveHolderAtATime) {
    const QTemporaryDir folder;
    // Into the second folder nothing can be written.
    for (const char* name : {"panel.lock", "none/panel.lock"}) {
        const QString path = folder.filePath(Text(name));
        SingleInstance first(path);
        EXPECT_TRUE(first.Acquire()) << name;
        EXPECT_TRUE(first.Acquire()) << name;
        SingleInstance second(path);
        EXPECT_FALSE(second.Acquire()) << name;
    }
}

TEST(ShutdownWatchTest, TurnsSignalsIntoRequests) {
    std::signal(SIGHUP, SIG_DFL);
    const auto former = std::signal(SIGTERM, SIG_IGN);
    {
        ShutdownWatch watch;
        QList<UnloadMode> modes;
        QObject::connect(&watch, &ShutdownWatch::Requested,
                         [&](UnloadMode mode) { modes.append(mode); });
        const auto raised = [&](int signal) {
            const auto before = modes.size();
            raise(signal);
            EXPECT_EQ(modes.size(), before) << "not within the signal";
            EXPECT_TRUE(Until([&] { return modes.size() == before + 1; })) << signal;
        };
        for (const int signal : {SIGTERM, SIGINT, SIGHUP})
            raised(signal);
        // The system announces its way down before it sends its signals.
        for (const bool down : {true, false}) {
            ASSERT_TRUE(QMetaObject::invokeMethod(&watch, "SystemGoesDown", Q_ARG(bool, down)));
            raised(SIGTERM);
        }
        EXPECT_THAT(modes,
                    ElementsAre(UnloadMode::TaskManager, UnloadMode::TaskManager,
                                UnloadMode::System, UnloadMode::System, UnloadMode::TaskManager));
        if (qGuiApp != nullptr) {
            // Only the session's own library makes a manager; nobody looks into this one.
            alignas(QSessionManager) std::array<char, sizeof(QSessionManager)> manager = {};
            Q_EMIT qGuiApp->commitDataRequest(*reinterpret_cast<QSessionManager*>(manager.data()));
            EXPECT_EQ(modes.last(), UnloadMode::System);
        }
    }
    EXPECT_EQ(std::signal(SIGTERM, former), SIG_IGN);
}
