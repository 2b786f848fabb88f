// The first start of the bus: modules with a past, one that doesn't answer, and what the console
// and the modules hold afterwards.

#include "support/Road.h"

namespace {

class SynchroRoad : public Road {
protected:
    SynchroRoad()
        : Road({"1=Q7100", "2=Q6200XT", "3=Q7000", "4=P5000", "5=P5500", "6=Q7100"}) {}
};

TEST_F(SynchroRoad, TheBusBeginsWithOnePicture) {
    for (const int channel : {9, 10})
        ASSERT_TRUE(EcritUnMot(engine->CommBus(), 1, 16 + channel, 3));
    ASSERT_TRUE(EcritUnMot(engine->CommBus(), 2, 20, 3));
    for (const char* command :
         {"active 1 7", "active 1 10", "fault 3 2 first", "active 3 12", "normal 3 12",
          "active 4 1", "fault 5 3 cable", "active 6 1", "mute 6"})
        simulator.Do(command);
    ASSERT_EQ(Shown(1, "waiting"), "3");
    ASSERT_EQ(Shown(2, "states").at(19), '3');
    Site().Panel(2).Channel(20).setState(3);

    engine->setRun(true);

    QStringList origins;
    const QStringList rows = Rows();
    for (const QString& row : rows)
        origins += row.mid(28, 7);
    origins.sort();
    EXPECT_EQ(origins, (QStringList{"P01-C07", "P01-C10", "P03-C02", "P04-C01", "P05-C03"}));
    const QStringList told = folder.Trace().filter(" SYNCHRO ");
    ASSERT_EQ(told.size(), 5);
    EXPECT_EQ(told[0].mid(27, 38), "SYNCHRO 01070001 P01-C07 State  ACTIVE");
    // A fault that the reset acknowledged stands on as an acknowledged alarm.
    EXPECT_EQ(told[2].mid(27, 38), "SYNCHRO 03020101 P03-C02 Alarm  ACKLGD");
    for (const int address : {1, 3})
        EXPECT_EQ(Shown(address, "waiting"), "0") << "the past is thrown away";
    EXPECT_EQ(Shown(1, "forced"), "000000000000");
    EXPECT_EQ(Shown(1, "states"), "000000100100");
    EXPECT_EQ(Shown(1, "horn"), "0");
    EXPECT_EQ(Shown(2, "states"), "000000000000000000000000");
    EXPECT_EQ(Site().Panel(2).Channel(20).State(), 0);
    QList<int> models;
    for (int address = 1; address <= 6; ++address)
        models += Site().Panel(address).ActualModel();
    EXPECT_EQ(models, (QList<int>{1, 2, 3, 1, 5, 0}));
    EXPECT_FALSE(Site().Panel(6).Present());
    EXPECT_TRUE(boxes.isEmpty()) << boxes.join(u'\n').toStdString();
}

} // namespace
