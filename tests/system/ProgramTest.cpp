// The installed program as its own process: starts, ends, kills.

#include "system/Processes.h"

#include "core/DateTimes.h"

#include <QRandomGenerator>

namespace {

class ProgramTest : public PlantTest {
protected:
    ProgramTest()
        : simulator_(folder.Bus(), {"1=Q7100"}) {
        ChannelClass& channel = Put(1).Channel(2);
        channel.setScrAlm(true);
        channel.setScreenText("Pump");
        Save();
    }

    /// Numbers of the events of the trace, in its order.
    QList<int> Numbers() const {
        QList<int> numbers;
        for (const QString& line : folder.Trace()) {
            bool isNumber = false;
            const int number = line.mid(20, 6).toInt(&isNumber);
            if (isNumber)
                numbers += number;
        }
        return numbers;
    }

    SimulatorProcess simulator_;
};

} // namespace

TEST_F(ProgramTest, StartsByItselfAndEndsAsToldFromOutside) {
    ProgramProcess program(folder);
    simulator_.Do("active 1 2");
    ASSERT_TRUE(Comes("P01-C02"));
    // The sounds are written behind the start of the bus: an end ahead of it would leave them out.
    EXPECT_TRUE(Starts());
    EXPECT_EQ(program.Terminate(), 0);
    EXPECT_FALSE(Traced(" TASK  MANAGER  ******** SYSTEM  APPLI STOP    ***").isEmpty());
    EXPECT_EQ(IniRead("LastAlarms", "1", QString()).mid(36, 22), "P01-C02              P");
}

TEST_F(ProgramTest, ASecondInstanceEndsAtOnce) {
    ProgramProcess program(folder);
    ASSERT_TRUE(Comes("START"));
    const qsizetype lines = folder.Trace().size();
    ProgramProcess second(folder);
    EXPECT_FALSE(second.WaitForEnd(1500)) << "tells and waits for the answer";
    EXPECT_TRUE(program.Running());
    EXPECT_LE(Traced("APPLI").size(), 1) << lines;
}

// A site that can't be read keeps the bus from starting by itself; the watchdog brings the console.
TEST_F(ProgramTest, AnUnreadableSiteLeavesTheBusStopped) {
    QFile file(CurrentConfigFile());
    ASSERT_TRUE(file.resize(file.size() / 2));
    ProgramProcess program(folder);
    ASSERT_TRUE(Comes("APPLI  START"));
    ASSERT_TRUE(FileComes("AlarmSound1.wav"));
    EXPECT_EQ(program.Terminate(), 0);
    EXPECT_TRUE(Traced("SYNCHR").isEmpty());
    EXPECT_EQ(IniRead("Files", "LastUsed", QString()), GetText(50010));
}

// Each start is killed in the middle of a stream of events. What was written stands whole, no
// number comes twice, and none is missing but one that a kill caught between its giving and its
// line.
TEST_F(ProgramTest, KillsLoseNoLineAndNoNumber) {
    constexpr int Kills = 6;
    QRandomGenerator random(7);
    for (int kill = 0; kill < Kills; ++kill) {
        ProgramProcess program(folder);
        const qsizetype before = Numbers().size();
        for (int i = 0; i < 40; ++i)
            simulator_.Do(i % 2 == 0 ? "active 1 2" : "normal 1 2");
        ASSERT_TRUE(Eventually([&] {
            simulator_.Do("active 1 2");
            simulator_.Do("normal 1 2");
            return Numbers().size() > before + 8;
        }));
        QThread::msleep(random.bounded(200));
        program.Kill();
    }
    const QList<int> numbers = Numbers();
    ASSERT_GT(numbers.size(), Kills * 8);
    int missing = 0;
    for (qsizetype i = 1; i < numbers.size(); ++i) {
        ASSERT_GT(numbers[i], numbers[i - 1]);
        missing += numbers[i] - numbers[i - 1] - 1;
    }
    EXPECT_LE(missing, Kills);
    EXPECT_GE(IniRead("General", "LastEvent", QString()).toInt(), numbers.last());
    for (const QString& line : folder.History())
        EXPECT_EQ(line.size(), 138);
    QFile history(
        folder.Path(QStringLiteral("Histo%1.his").arg(DateTimes::FileMonth(DateTimes::Now()))));
    ASSERT_TRUE(history.open(QIODevice::ReadOnly));
    EXPECT_TRUE(history.readAll().endsWith("\r\n"));
}

TEST_F(ProgramTest, ADamagedBaseEndsTheStart) {
    QFile base(folder.Path("korvanelle.cfg"));
    ASSERT_TRUE(base.resize(5000));
    ProgramProcess program(folder);
    ASSERT_TRUE(FileComes("korvanelle.lock"));
    EXPECT_FALSE(program.WaitForEnd(1500)) << "tells and waits for the answer";
    EXPECT_TRUE(Traced("START").isEmpty());
    EXPECT_EQ(program.Terminate(), 1);
}
