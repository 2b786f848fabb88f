// The road of one alarm: the real engine over a pseudo-terminal, with the simulator at its far end
// and the console on the screen.

#include "support/Road.h"
#include "support/LeadingClock.h"

namespace {

class RoadTest : public Road {
protected:
    explicit RoadTest(const QStringList& modules = {"1=Q7100", "2=Q6200XT", "3=Q7000", "4=P5000",
                                                    "5=P5500"})
        : Road(modules) {
        for (int bit = 0; bit <= 4; ++bit) {
            Site().setOptionScreen(bit, bit != 3);
            Site().setOptionHisto(bit, true);
            Site().setOptionKlaxon(bit, true);
        }
        Site().setBiblio(2, "Hochwasser");
        for (int address = 1; address <= 5; ++address) {
            ChannelClass& channel = Site().Panel(address).Channel(7);
            channel.setScreenText("Schacht S\u00FCd");
            channel.setBibNum(2);
            channel.setKlaxon(true);
            channel.setAlmPrio(qint16(10 + address));
        }
        engine->setRun(true);
        Forms::Show("wRunAlarms");
    }

    static const platform::SilentSound& Horn() {
        return static_cast<const platform::SilentSound&>(*Global::Get().sound);
    }

    LeadingClock clock_;
};

/// On a bus of one module, which starts at once.
class OneModuleRoad : public RoadTest {
protected:
    OneModuleRoad()
        : RoadTest({"1=Q7100"}) {}
};

} // namespace

TEST_F(RoadTest, AnAlarmOfEachModelArrivesEverywhere) {
    for (const int address : {1, 3, 4, 5}) {
        simulator.Do("active " + QByteArray::number(address) + " 7");
        const QString origin = QStringLiteral("P0%1-C07").arg(address);
        ASSERT_TRUE(Until([&] { return !Traced(origin).isEmpty(); })) << address;
        const QString trace = Traced(origin).last();
        EXPECT_EQ(trace.mid(44, 21), origin + QStringLiteral(" State  ACTIVE"));
        EXPECT_EQ(trace.mid(66), "Hochwasser                 Schacht S\u00FCd");
        const QString history = folder.History().filter(origin).last();
        ASSERT_EQ(history.size(), 138);
        EXPECT_EQ(history.mid(35, 7), origin);
        EXPECT_EQ(history.mid(55, 15).trimmed(), "Active");
        EXPECT_EQ(history.mid(71).trimmed(), "Hochwasser                 Schacht S\u00FCd");
        EXPECT_EQ(Rows().filter(origin).value(0).mid(28),
                  origin + QStringLiteral(" Hochwasser   ") +
                      QStringLiteral("Schacht S\u00FCd").leftJustified(25));
    }
    simulator.Do("ack 2");
    ASSERT_TRUE(Until([&] { return !Traced("P02-ACK").isEmpty(); }));
    EXPECT_FALSE(folder.History().filter("P02-ACK").isEmpty());
    EXPECT_FALSE(Traced("P02-ACK").filter("ACK CL").isEmpty());
    EXPECT_TRUE(Horn().playing.endsWith("AlarmSound1"));
    EXPECT_EQ(Global::Get().currentPriority, 13); // models 4 and 5 never sound the horn
    EXPECT_TRUE(boxes.isEmpty()) << boxes.join(u'\n').toStdString();
}

TEST_F(OneModuleRoad, TheOperatorAcknowledgesByTouch) {
    simulator.Do("fault 1 7 first");
    ASSERT_TRUE(Until([&] { return !Traced("1stFLT").isEmpty(); }));
    EXPECT_FALSE(Horn().playing.isEmpty());
    // A touch right behind an event that moved the selection isn't taken.
    QTest::qWait(1000);
    Tap("wRunAlarms", "imgAcquit");
    EXPECT_TRUE(Horn().playing.isEmpty());
    ASSERT_TRUE(Until([&] { return !Traced("ACKLGD").isEmpty(); }));
    EXPECT_FALSE(Traced("WRITE  COMMAND P01:0043 0002").isEmpty());
    EXPECT_FALSE(Traced("ACK PC").isEmpty());
    EXPECT_EQ(Rows().size(), 1);
    simulator.Do("normal 1 7");
    EXPECT_TRUE(Until([] { return Rows().isEmpty(); }));
}

TEST_F(OneModuleRoad, ASilentModuleIsToldOnceAndComesBack) {
    const QString gone = "DISAPP";
    simulator.Do("mute 1");
    ASSERT_TRUE(Until([&] { return !Traced(gone).isEmpty(); }));
    EXPECT_EQ(Global::Get().currentPriority, 99);
    ASSERT_EQ(Rows().size(), 1);
    EXPECT_TRUE(Rows()[0].contains("P01-Q71"));
    clock_.Lead(1.1 * platform::OneMinute);
    ASSERT_TRUE(Until([&] { return Global::Configuration().Panel(1).ErrCptr(2) == 2; }));
    EXPECT_EQ(Traced(gone).size(), 1);
    simulator.Do("unmute 1");
    clock_.Lead(1.1 * platform::OneMinute);
    ASSERT_TRUE(Until([&] { return !Traced("APPEAR").isEmpty(); }));
    EXPECT_TRUE(Rows().isEmpty());
    EXPECT_EQ(Traced(gone).size(), 1);
}
