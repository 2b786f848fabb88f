// The road of one alarm: the real engine over a pseudo-terminal, with the simulator at its far end
// and the console on the screen.

#include "support/Road.h"
#include "support/LeadingClock.h"

#include <QMouseEvent>
#include <QTest>
#include <QWidget>

namespace {

class RoadTest : public Road {
protected:
    RoadTest()
        : Road({"1=Q7100", "2=Q6200XT", "3=Q7000", "4=P5000", "5=P5500"}) {
        MakeSite();
        engine->setRun(true);
        Forms::Show("wRunAlarms");
    }

    static void MakeSite() {
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
    }

    static bool Holds(const QStringList& lines, const QString& part) {
        return !lines.filter(part).isEmpty();
    }
    static const platform::SilentSound& Horn() {
        return static_cast<const platform::SilentSound&>(*Global::Get().sound);
    }

    LeadingClock clock_;
};

} // namespace

TEST_F(RoadTest, AnAlarmOfEachModelArrivesEverywhere) {
    struct Case {
        const char* command;
        const char* origin;
        const char* display;
    };
    const Case cases[] = {
        {"active 1 7", "P01-C07", "Active"},
        {"active 3 7", "P03-C07", "Active"},
        {"active 4 7", "P04-C07", "Active"},
        {"active 5 7", "P05-C07", "Active"},
    };
    for (const Case& alarm : cases) {
        simulator.Do(alarm.command);
        const QString origin = QString::fromLatin1(alarm.origin);
        ASSERT_TRUE(Until([&] { return Holds(folder.Trace(), origin); })) << alarm.command;
        const QString trace = folder.Trace().filter(origin).last();
        EXPECT_EQ(trace.mid(44, 21), origin + QStringLiteral(" State  ACTIVE"));
        EXPECT_EQ(trace.mid(66), "Hochwasser                 Schacht S\u00FCd");
        const QString history = folder.History().filter(origin).last();
        ASSERT_EQ(history.size(), 138);
        EXPECT_EQ(history.mid(35, 7), origin);
        EXPECT_EQ(history.mid(55, 15).trimmed(), QString::fromLatin1(alarm.display));
        EXPECT_EQ(history.mid(71).trimmed(), "Hochwasser                 Schacht S\u00FCd");
        EXPECT_EQ(Rows().filter(origin).value(0).mid(28),
                  origin + QStringLiteral(" Hochwasser   ") +
                      QStringLiteral("Schacht S\u00FCd").leftJustified(25));
    }
    simulator.Do("ack 2");
    ASSERT_TRUE(Until([&] { return Holds(folder.Trace(), "P02-ACK"); }));
    EXPECT_TRUE(Holds(folder.History(), "P02-ACK"));
    EXPECT_TRUE(Holds(folder.Trace().filter("P02-ACK"), "ACK CL"));
    EXPECT_TRUE(Horn().playing.endsWith("AlarmSound1"));
    EXPECT_EQ(Global::Get().currentPriority, 13); // models 4 and 5 never sound the horn
    EXPECT_TRUE(boxes.isEmpty()) << boxes.join(u'\n').toStdString();
}

TEST_F(RoadTest, TheOperatorAcknowledgesByTouch) {
    simulator.Do("fault 1 7 first");
    ASSERT_TRUE(Until([&] { return Holds(folder.Trace(), "1stFLT"); }));
    EXPECT_FALSE(Horn().playing.isEmpty());
    auto* console = dynamic_cast<QWidget*>(Forms::Find("wRunAlarms"));
    ASSERT_NE(console, nullptr);
    // A touch right behind an event that moved the selection isn't taken.
    QTest::qWait(1000);
    QTest::mouseClick(console->findChild<QWidget*>("imgAcquit"), Qt::LeftButton);
    EXPECT_TRUE(Horn().playing.isEmpty());
    ASSERT_TRUE(Until([&] { return Holds(folder.Trace(), "ACKLGD"); }));
    EXPECT_TRUE(Holds(folder.Trace(), "WRITE  COMMAND P01:0043 0002"));
    EXPECT_TRUE(Holds(folder.Trace(), "ACK PC"));
    EXPECT_EQ(Rows().size(), 1);
    simulator.Do("normal 1 7");
    EXPECT_TRUE(Until([] { return Rows().isEmpty(); }));
}

TEST_F(RoadTest, ASilentModuleIsToldOnceAndComesBack) {
    const QString gone = "DISAPP";
    simulator.Do("mute 3");
    ASSERT_TRUE(Until([&] { return Holds(folder.Trace(), gone); }));
    EXPECT_EQ(Global::Get().currentPriority, 99);
    ASSERT_EQ(Rows().size(), 1);
    EXPECT_TRUE(Rows()[0].contains("P03-Q70"));
    clock_.Lead(1.1 * platform::OneMinute);
    ASSERT_TRUE(Until([&] { return Global::Configuration().Panel(3).ErrCptr(2) == 2; }));
    EXPECT_EQ(folder.Trace().filter(gone).size(), 1);
    simulator.Do("unmute 3");
    clock_.Lead(1.1 * platform::OneMinute);
    ASSERT_TRUE(Until([&] { return Holds(folder.Trace(), "APPEAR"); }));
    EXPECT_TRUE(Rows().isEmpty());
    EXPECT_EQ(folder.Trace().filter(gone).size(), 1);
}

TEST_F(RoadTest, SpoiledRepliesLoseNoEvent) {
    simulator.Do("corrupt 1 2");
    simulator.Do("active 1 7");
    ASSERT_TRUE(Until([&] { return Holds(folder.Trace(), "ACTIVE"); }));
    simulator.Do("surplus 1");
    simulator.Do("normal 1 7");
    ASSERT_TRUE(Until([&] { return Holds(folder.Trace(), "NORMAL"); }));
    simulator.Do("alien 1");
    simulator.Do("active 1 7");
    ASSERT_TRUE(Until([&] { return folder.Trace().filter("ACTIVE").size() == 2; }));
    simulator.Do("short 1");
    simulator.Do("normal 1 7");
    ASSERT_TRUE(Until([&] { return folder.Trace().filter("NORMAL").size() == 2; }));
    EXPECT_FALSE(Holds(folder.Trace(), "DISAPP"));
    EXPECT_TRUE(Until([&] { return simulator.Ask("show 1", "show 1").contains("waiting=0"); }));
}
