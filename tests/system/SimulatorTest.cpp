// The simulator as its own process: the console and the line that the other tests rely on.

#include "platform/Clock.h"
#include "platform/SerialLink.h"
#include "support/FakeModules.h"
#include "system/Processes.h"

TEST(SimulatorTest, ObeysItsConsoleAndDelaysReplies) {
    constexpr int Delay = 300;
    const QTemporaryDir folder;
    QString link = folder.filePath("bus");
    SimulatorProcess simulator(link, {"3=P5000"});
    for (const auto& [command, complaint] :
         {std::pair("frobnicate", "error: unknown command 'frobnicate'"),
          {"active 3 99", "error: the channel must be"}})
        EXPECT_FALSE(simulator.Ask(command, complaint).isEmpty()) << command;
    simulator.Do("fault 3 7 second\ndelay 3 " + QByteArray::number(Delay));
    EXPECT_TRUE(simulator.Ask("show 3", "show 3 P5000").contains(" states=000000400000 "));

    const auto port = platform::MakeSerialPort([&](int) { return link; });
    const platform::Clock& clock = platform::Clock::Current();
    for (const bool again : {false, true}) {
        port->setPortOpen(true);
        const qint64 sent = clock.MonotonicMs();
        port->Output(WithCrc(QByteArray::fromHex("030300070001")));
        port->WaitForInput(7, sent + 60000);
        EXPECT_EQ(port->Input(), WithCrc(QByteArray::fromHex("0303020004"))) << again;
        EXPECT_GE(clock.MonotonicMs() - sent, Delay - 1);
        port->setPortOpen(false);
    }
}
