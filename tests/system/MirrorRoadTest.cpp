// What happens on one module appears on others, through the event memory, the rules and the queue.

#include "support/Road.h"

#include "model/MirrorClass.h"

namespace {

class MirrorRoad : public Road {
protected:
    MirrorRoad()
        : Road({"1=Q7100", "2=Q6200XT", "3=Q7100"}) {
        constexpr qint16 Rules[][4] = {
            {7, 3, 4, MirrorClass::Permanent},  {8, 3, 5, MirrorClass::Pulse},
            {7, 2, 20, MirrorClass::Permanent}, {8, 2, 21, MirrorClass::Pulse},
            {0, 3, 0, MirrorClass::NoKind},     {0, 2, 0, MirrorClass::NoKind}};
        for (const auto& [from, module, to, kind] : Rules)
            Site().Mirrors().Add(1, from, module, to, kind);
        engine->setRun(true);
    }

    /// Lamps 20 and 21 of the display.
    QByteArray Lamps() { return Shown(2, "states").mid(19, 2); }
    /// Channels 4 and 5 of the module that follows.
    QByteArray Forced() { return Shown(3, "forced").mid(3, 2); }
    QByteArray States() { return Shown(3, "states").mid(3, 2); }
};

TEST_F(MirrorRoad, AnActiveContactGoesAlongAndBack) {
    simulator.Do("active 1 7");
    EXPECT_TRUE(Until([&] { return Forced() == "30" && Lamps() == "10"; }));
    EXPECT_EQ(States(), "10");
    simulator.Do("active 1 8");
    EXPECT_TRUE(Until([&] { return Forced() == "33" && Lamps() == "11"; }));
    simulator.Do("normal 1 7");
    EXPECT_TRUE(Until([&] { return Forced() == "03" && Lamps() == "01"; }));
    EXPECT_EQ(States(), "01");
    EXPECT_EQ(Shown(3, "forced"), "000030000000") << "and nothing else";
}

TEST_F(MirrorRoad, AFaultShowsByTheKindAndItsAcknowledgementIsPassedOn) {
    simulator.Do("fault 1 7 first");
    simulator.Do("fault 1 8 second");
    ASSERT_TRUE(Until([&] { return Forced() == "23" && Lamps() == "34"; }));
    EXPECT_EQ(States(), "31");
    EXPECT_EQ(Shown(2, "horn"), "1");
    EXPECT_EQ(Shown(3, "horn"), "1");
    simulator.Do("ack 1");
    // The display keeps of a pulse its standing light and of a permanent fault nothing.
    ASSERT_TRUE(Until([&] { return Lamps() == "01" && Shown(3, "horn") == "0"; }));
    EXPECT_EQ(States(), "11") << "acknowledged there too";
    EXPECT_EQ(Forced(), "23");
    simulator.Do("normal 1 8");
    EXPECT_TRUE(Until([&] { return Lamps() == "00" && Forced() == "20"; }));
    EXPECT_TRUE(boxes.isEmpty()) << boxes.join(u'\n').toStdString();
}

} // namespace
