// What the console says of the watch, and what a touch on it starts or leaves alone, with the real
// engine on a bus of modules.

#include "core/FormNames.h"
#include "platform/RunTimeError.h"
#include "screens/console/AlarmGrid.h"
#include "screens/dialogs/dlgMessage.h"
#include "support/LeadingClock.h"
#include "support/Road.h"

#include <QLabel>

namespace {

class ConsoleRoad : public Road {
protected:
    ConsoleRoad()
        : Road({"1=Q7100", "2=Q7000"}) {
        Site().setOptionScreen(2, true);
        Forms::Show(FormNames::wRunAlarms);
    }

    static bool IsCalm() {
        return Find<AlarmMark>(FormNames::wRunAlarms, "imgNoAlarm")->Picture() == "console_calm";
    }
    static QString Words() { return Find<QLabel>(FormNames::wRunAlarms, "txtNoAlarm")->text(); }

    LeadingClock clock;
};

} // namespace

TEST_F(ConsoleRoad, TheGreenTickStandsOnlyWhileAllAreHeard) {
    EXPECT_FALSE(IsCalm());
    EXPECT_EQ(Words(), GetText(710009));
    QStringList ahead;
    QObject::connect(engine.get(), &wPolling::Synchronising, engine.get(), [&] {
        if (IsCalm())
            ahead += Words();
    });
    engine->setRun(true);
    EXPECT_TRUE(ahead.isEmpty()) << "calm ahead of the first reading";
    EXPECT_TRUE(Until(IsCalm)) << Words().toStdString();
    simulator.Do("mute 1");
    EXPECT_TRUE(Until([] { return Words() == GetText(714073); })) << Words().toStdString();
    EXPECT_FALSE(IsCalm());
    simulator.Do("mute 2");
    EXPECT_TRUE(Until([] { return Words().startsWith(GetText(714075)); })) << "one cause";
    engine->setRun(false);
    EXPECT_FALSE(IsCalm());
    simulator.Do("unmute 1");
    simulator.Do("unmute 2");
    // A missing panel waits a minute for its next try.
    clock.Lead(1.1 * platform::OneMinute);
    engine->setRun(true);
    EXPECT_TRUE(Until(IsCalm)) << Words().toStdString();
}

// An event of an unknown kind in the evening: midnight and what comes after it pass beneath its
// box.
TEST_F(ConsoleRoad, ABoxHoldsUpNeitherMidnightNorWhatFollows) {
    Boxes::Install(&dlgMessage::PresentUnread);
    engine->setRun(true);
    ASSERT_TRUE(Until(IsCalm));
    simulator.Do("odd 1");
    ASSERT_TRUE(Until([] { return NbInstances("dlgMessage") == 1; }));
    clock.Lead(1);
    EXPECT_TRUE(Until([&] { return Traced("COMMAND P00:0121 0000").size() == 1; }));
    simulator.Do("active 2 7");
    EXPECT_TRUE(Until([&] { return Traced("P02-C07 State  ACTIVE").size() == 1; }));
    EXPECT_GT(Boxes::Unread(), 0) << "nobody has read it";

    // What stops the bus is seen and heard beneath it as well.
    QObject::connect(engine.get(), &wPolling::RoundDone, engine.get(),
                     [] { throw platform::RunTimeError(platform::errors::Subscript); });
    EXPECT_TRUE(Until([&] { return !engine->Run(); }));
    EXPECT_EQ(Global::Get().currentPriority, 99);
    EXPECT_FALSE(Find(FormNames::wRunAlarms, "lblFaults")->isHidden());
    EXPECT_EQ(Traced("FAULT BEGINS BUS STOPPED BY AN ERROR").size(), 1);
}
