#include "platform/ServiceManager.h"

#include "platform/Clock.h"
#include "support/PrintText.h"

#include <QList>
#include <gtest/gtest.h>

using namespace platform;

TEST(ServiceManagerTest, BeatsAskForTimeUntilReadyThenShowLifeFourTimesInThePatience) {
    TestClock clock;
    QList<QByteArray> told;
    QList<QByteArray> journal;
    ServiceManager manager({[&](const QByteArray& line) { told += line; },
                            [&](const QByteArray& line) { journal += line; }, 40000});
    const auto pass = [&](int seconds) {
        for (int second = 0; second < seconds; ++second) {
            manager.Beat();
            clock.Advance(1000);
        }
    };
    pass(11);
    manager.Ready();
    manager.Ready();
    manager.Status(Text("one\r\nline"));
    manager.Status(Text("one\r\nline"));
    pass(20);
    manager.Stopping();
    manager.Stopping();
    pass(1);
    manager.Log(ServiceManager::Priority::Error, Text("Größe\r\nerr"));
    EXPECT_EQ(told,
              (QList<QByteArray>{"EXTEND_TIMEOUT_USEC=40000000", "EXTEND_TIMEOUT_USEC=40000000",
                                 "READY=1", "WATCHDOG=1", "STATUS=one line", "WATCHDOG=1",
                                 "STOPPING=1", "EXTEND_TIMEOUT_USEC=40000000"}));
    EXPECT_EQ(journal, (QList<QByteArray>{"<3>Gr\xC3\xB6\xC3\x9F"
                                          "e err"}));
}

// The manager waits for signs of life of a process that was ready, whatever program is in it now.
TEST(ServiceManagerTest, AProgramInAnothersPlaceShowsLifeFromItsStart) {
    TestClock clock;
    QList<QByteArray> told;
    ServiceManager manager({[&](const QByteArray& line) { told += line; }, {}, 40000, true});
    manager.Beat();
    clock.Advance(20000);
    manager.Beat();
    manager.Ready();
    EXPECT_EQ(told, (QList<QByteArray>{"WATCHDOG=1", "WATCHDOG=1", "READY=1", "WATCHDOG=1"}));
}
