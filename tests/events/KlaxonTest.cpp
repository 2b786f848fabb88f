#include "events/Klaxon.h"

#include "support/Bench.h"

#include <tuple>

namespace {

class Klaxon : public QuietBench {
protected:
    Klaxon() {
        Site().setAlarmPrioSound(3, 11);
        Site().setAlarmPrioSound(5, 12);
        Site().setAlarmPrioSound(7, 4);
    }
    void ExpectSound(const char* name, int starts) {
        EXPECT_EQ(horn->playing, Path(Text(name)));
        EXPECT_EQ(horn->starts, starts);
    }
};

TEST_F(Klaxon, OnlyAHigherPriorityReplacesASoundUntilTheStop) {
    Alarme(StopAlarme);
    EXPECT_EQ(horn->stops, 1) << "always possible";
    const std::tuple<int, const char*, int> steps[] = {
        {5, "AlarmSound12", 1}, {3, "AlarmSound12", 1},
        {5, "AlarmSound12", 1}, {0, "AlarmSound12", 1},
        {7, "AlarmSound4", 2},  {HighestPriority, "AlarmSound1", 3},
        {6, "AlarmSound1", 3},  {HighestPriority, "AlarmSound1", 3}};
    for (const auto& [priority, name, starts] : steps) {
        SCOPED_TRACE(priority);
        Alarme(qint16(priority));
        ExpectSound(name, starts);
    }
    Alarme(StopAlarme);
    EXPECT_EQ(horn->playing, QString());
    Alarme(3);
    ExpectSound("AlarmSound11", 4);
    // The base stands in for a file, if it has such a sound.
    Alarme(7);
    EXPECT_EQ(horn->reserve(), Config::Sound(4).value());
    Site().setAlarmPrioSound(8, 98);
    Alarme(8);
    EXPECT_EQ(horn->reserve(), QByteArray());
    // A machine without sound keeps the priority.
    Alarme(StopAlarme);
    Global::Get().sound.reset();
    Alarme(7);
    EXPECT_EQ(Global::Get().currentPriority, 7);
    Alarme(StopAlarme);
    EXPECT_EQ(Global::Get().currentPriority, 0);
}

TEST_F(Klaxon, AnAlarmEndsTheTrialOfASound) {
    int told = 0;
    const auto tries = [&] { return TrySound(Path(Text("trial.wav")), {}, [&] { ++told; }); };
    EXPECT_TRUE(tries());
    ExpectSound("trial.wav", 1);
    Alarme(3);
    EXPECT_EQ(told, 1);
    EndSoundTrial();
    EXPECT_FALSE(tries());
    ExpectSound("AlarmSound11", 2);
    Alarme(StopAlarme);
    EXPECT_TRUE(tries());
    EndSoundTrial();
    EXPECT_EQ(horn->playing, QString());
    EXPECT_EQ(told, 1) << "who ends it knows";
}

} // namespace
