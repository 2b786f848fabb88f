// The installed program at night: nobody touches a box, and the watch goes on beneath it.

#include "system/Processes.h"

#include "core/DateTimes.h"

#include <csignal>
#include <numeric>

namespace {

class WatchRun : public PlantTest {
protected:
    /// A site with panels of one model, which starts by itself if it has any.
    void Save(const QList<int>& panels) {
        site.setAutoStart(!panels.isEmpty());
        for (const int address : panels) {
            PanelClass& panel = Put(address);
            for (int channel = 1; channel <= 12; ++channel)
                panel.Channel(channel).setHisto(true);
        }
        PlantTest::Save();
    }
    static QList<int> UpTo(int count) {
        QList<int> addresses(count);
        std::iota(addresses.begin(), addresses.end(), 1);
        return addresses;
    }
    static QStringList Modules(const QList<int>& addresses) {
        QStringList modules;
        for (const int address : addresses)
            modules += QStringLiteral("%1=Q7100").arg(address);
        return modules;
    }
    /// The queue after the end of the program.
    static QStringList Kept() {
        QStringList commands;
        for (const auto& entry : IniReadSection(Pending))
            commands += entry.second;
        return commands;
    }
    /// The bus polls: its first start is through.
    bool Polls(SimulatorProcess& simulator, int address, int channel) const {
        simulator.Do(QByteArray("active ") + QByteArray::number(address) + ' ' +
                     QByteArray::number(channel));
        return Comes(QStringLiteral("P%1-C%2")
                         .arg(address, 2, 10, QChar(u'0'))
                         .arg(channel, 2, 10, QChar(u'0')));
    }
};

TEST_F(WatchRun, AnUnknownCodeLeavesAllOthersWatched) {
    Save(UpTo(64));
    SimulatorProcess simulator(folder.Bus(), Modules(UpTo(64)));
    ProgramProcess program(folder);
    ASSERT_TRUE(Polls(simulator, 1, 2));
    for (int i = 0; i < 3; ++i)
        simulator.Do("odd 7");
    EXPECT_TRUE(Comes("ERROR 9 HistoProcs.FormateTrace"));
    for (const int address : {2, 7, 33, 64})
        EXPECT_TRUE(Polls(simulator, address, 3)) << address;
    EXPECT_EQ(Traced("ERROR 9 HistoProcs.FormateTrace").size(), 1)
        << "once, however often it comes";
    EXPECT_TRUE(Eventually([&] { return !folder.History().filter("P64-C03").isEmpty(); }));
    EXPECT_EQ(program.Terminate(), 0);
}

// The adapter is missing: the start doesn't wait for anybody, and the commands wait for the port.
TEST_F(WatchRun, APortThatComesLateIsFoundAndGetsTheCommands) {
    Save({1});
    // Of a clock that was set back since.
    IniWrite(Pending, "1",
             QStringLiteral("2|1|0043|%1|0002").arg(DateTimes::DateAndTime(DateTimes::Now() + 1)));
    IniWrite(Pending, "2", "2|1|0042|00:00:00|0001");
    ProgramProcess program(folder);
    EXPECT_TRUE(Comes("FAULT BEGINS MESSAGE UNREAD")) << "told";
    ASSERT_TRUE(Starts()) << "and the start went on beneath the box";
    EXPECT_TRUE(Traced("COMM   START").isEmpty());
    SimulatorProcess simulator(folder.Bus(), Modules({1}));
    EXPECT_TRUE(Comes("COMM   START"));
    EXPECT_EQ(simulator.WaitFor("write 1 67"), QByteArray("write 1 67 0002"));
    EXPECT_EQ(simulator.WaitFor("write 1 66"), QByteArray("write 1 66 0001"));
    EXPECT_TRUE(Polls(simulator, 1, 2));
    EXPECT_EQ(program.Terminate(), 0);
    EXPECT_TRUE(Kept().filter("|004").isEmpty()) << Kept().join(u' ').toStdString();
}

TEST_F(WatchRun, AnEndInTheSynchronisationWaitsForNoPanel) {
    Save(UpTo(64));
    SimulatorProcess simulator(folder.Bus(), Modules({1}));
    ProgramProcess program(folder);
    ASSERT_TRUE(Comes("REINIT"));
    QThread::msleep(300);
    program.Signal(SIGTERM);
    program.Signal(SIGTERM);
    // 63 silent panels take three minutes.
    EXPECT_TRUE(program.WaitForEnd(60000));
    EXPECT_EQ(program.ExitCode(), 0);
    EXPECT_EQ(Traced(" TASK  MANAGER  ").size(), 1);
    EXPECT_TRUE(Traced("DISAPP").isEmpty());
}

// The first of the stored commands can't be read; a box tells it, and nobody answers.
TEST_F(WatchRun, AnEndBehindABoxOfTheStartKeepsTheCommands) {
    Save({});
    const QString command = "2|1|0043|00:00:00|0002";
    const SimulatorProcess simulator(folder.Bus(), Modules({1}));
    IniWrite(Pending, "1", "garbage");
    IniWrite(Pending, "2", command);
    IniWrite(Pending, "3", "2|1|0042|00:00:00|0001");
    ProgramProcess program(folder);
    ASSERT_TRUE(FileComes("korvanelle.lock"));
    QThread::msleep(2000);
    EXPECT_EQ(program.Terminate(), 0);
    EXPECT_TRUE(Kept().contains(command)) << Kept().join(u' ').toStdString();
    EXPECT_TRUE(Kept().contains("2|1|0042|00:00:00|0001"));
}

} // namespace
