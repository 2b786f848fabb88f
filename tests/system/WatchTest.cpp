// The installed program at night: nobody touches a box, and the watch goes on beneath it.

#include "system/Processes.h"

#include "core/Config.h"
#include "model/Models.h"

#include <QDir>
#include <QFile>
#include <csignal>
#include <numeric>

namespace {

class WatchRun : public ::testing::Test {
protected:
    WatchRun() { EXPECT_TRUE(Config::OpenConfigBase()); }

    /// A site with panels of one model, which starts by itself if it has any.
    static void Save(const QList<int>& panels) {
        ConfigClass site;
        site.setAutoStart(!panels.isEmpty());
        for (const int address : panels) {
            site.Panel(address).setModel(Models::Q7100);
            site.Panel(address).setActive(true);
            for (int channel = 1; channel <= 12; ++channel)
                site.Panel(address).Channel(channel).setHisto(true);
        }
        EXPECT_EQ(site.Save(CurrentConfigFile()), ConfigClass::Saved);
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
    bool TraceHolds(const QString& part) const { return !folder_.Trace().filter(part).isEmpty(); }
    /// The first start of a full bus takes half a minute.
    bool Comes(const char* part) const {
        return Eventually([&] { return TraceHolds(QString::fromLatin1(part)); }, LongWait);
    }
    /// The bus polls: its first start is through.
    bool Polls(SimulatorProcess& simulator, int address, int channel) const {
        simulator.Do(QByteArray("active ") + QByteArray::number(address) + ' ' +
                     QByteArray::number(channel));
        return Comes(QStringLiteral("P%1-C%2")
                         .arg(address, 2, 10, QChar(u'0'))
                         .arg(channel, 2, 10, QChar(u'0'))
                         .toLatin1()
                         .constData());
    }

    static constexpr int LongWait = 120; // s

    RunFolder folder_;
};

TEST_F(WatchRun, AnUnknownCodeLeavesAllOthersWatched) {
    Save(UpTo(64));
    SimulatorProcess simulator(folder_.Bus(), Modules(UpTo(64)));
    ProgramProcess program(folder_);
    ASSERT_TRUE(Polls(simulator, 1, 2));
    for (int i = 0; i < 3; ++i)
        simulator.Do("odd 7");
    EXPECT_TRUE(Comes("ERROR 9 HistoProcs.FormateTrace"));
    for (const int address : {2, 7, 33, 64})
        EXPECT_TRUE(Polls(simulator, address, 3)) << address;
    EXPECT_EQ(folder_.Trace().filter("ERROR 9 HistoProcs.FormateTrace").size(), 1)
        << "once, however often it comes";
    EXPECT_FALSE(folder_.History().filter("P64-C03").isEmpty());
    EXPECT_EQ(program.Terminate(), 0);
}

TEST_F(WatchRun, APortThatComesLateIsFound) {
    Save({1});
    ProgramProcess program(folder_);
    ASSERT_TRUE(Eventually([&] { return QFile::exists(folder_.Path("AlarmSound99.wav")); }))
        << "the start went on without a port";
    EXPECT_FALSE(TraceHolds("COMM   START"));
    SimulatorProcess simulator(folder_.Bus(), Modules({1}));
    EXPECT_TRUE(Comes("COMM   START"));
    EXPECT_TRUE(Polls(simulator, 1, 2));
    EXPECT_EQ(program.Terminate(), 0);
}

TEST_F(WatchRun, AnEndInTheSynchronisationWaitsForNoPanel) {
    Save(UpTo(64));
    SimulatorProcess simulator(folder_.Bus(), Modules({1}));
    ProgramProcess program(folder_);
    ASSERT_TRUE(Comes("REINIT"));
    QThread::msleep(300);
    program.Signal(SIGTERM);
    program.Signal(SIGTERM);
    // 63 silent panels take three minutes.
    EXPECT_TRUE(program.WaitForEnd(60000));
    EXPECT_EQ(program.ExitCode(), 0);
    EXPECT_EQ(folder_.Trace().filter(" TASK  MANAGER  ").size(), 1);
    EXPECT_FALSE(TraceHolds("DISAPP"));
}

// The first of the stored commands can't be read; a box tells it, and nobody answers.
TEST_F(WatchRun, AnEndBehindABoxOfTheStartKeepsTheCommands) {
    Save({});
    const QString command = "2|1|0043|00:00:00|0002";
    const SimulatorProcess simulator(folder_.Bus(), Modules({1}));
    IniWrite(Pending, "1", "garbage");
    IniWrite(Pending, "2", command);
    IniWrite(Pending, "3", "2|1|0042|00:00:00|0001");
    ProgramProcess program(folder_);
    ASSERT_TRUE(Eventually([&] { return QFile::exists(folder_.Path("korvanelle.lock")); }));
    QThread::msleep(2000);
    EXPECT_EQ(program.Terminate(), 0);
    QStringList kept;
    for (const auto& entry : IniReadSection(Pending))
        kept += entry.second;
    EXPECT_TRUE(kept.contains(command)) << kept.join(u' ').toStdString();
    EXPECT_TRUE(kept.contains("2|1|0042|00:00:00|0001"));
}

TEST_F(WatchRun, AFolderThatWentAwayStopsNoBus) {
    Save({1, 2});
    SimulatorProcess simulator(folder_.Bus(), Modules({1, 2}));
    ProgramProcess program(folder_);
    ASSERT_TRUE(Polls(simulator, 1, 2));
    ASSERT_TRUE(QDir(folder_.Path("Trace")).removeRecursively());
    for (const char* command : {"active 1 3", "active 2 3", "normal 1 3", "active 1 4"})
        simulator.Do(command);
    EXPECT_TRUE(Eventually([&] { return !folder_.History().filter("P01-C04").isEmpty(); }));
    for (const char* address : {"1", "2"})
        EXPECT_TRUE(Eventually([&] {
            return simulator.Ask(QByteArray("show ") + address, "show").contains("waiting=0");
        })) << "the events are taken, and so are their receipts";
    EXPECT_EQ(program.Terminate(), 0);
}

// Panel 64 is good, and so the turn never comes to 1; the queue holds a command that no module
// takes.
TEST_F(WatchRun, WhatTheBusLeavesUndoneIsTold) {
    Save({1, 2, 64});
    IniWrite(Pending, "1", "2|2|0500|00:00:00|0002");
    SimulatorProcess simulator(folder_.Bus(), Modules({1, 2, 64}));
    ProgramProcess program(folder_);
    EXPECT_TRUE(Comes("FAULT BEGINS COMMAND GIVEN UP P02:0500"));
    EXPECT_TRUE(Comes("FAULT BEGINS PANEL NOT POLLED 1"));
    EXPECT_EQ(program.Terminate(), 0);
}

} // namespace
