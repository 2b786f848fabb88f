#include "bus/Engine.h"

#include <tuple>

namespace {

/// An alarm of panel 5, channel 7, that came at noon and was acknowledged.
class Reactivation : public EngineWithConsole {
protected:
    Reactivation() {
        Start();
        SetOptions(31, 31, 31, 31);
        AddModule(5, Models::Q7100).setNextPoll(clock.Now() + 1);
        Channel().setReact(true);
        Channel().setReactTpo(1);
        Channel().setKlaxon(true);
        Channel().setAlmPrio(40);
    }

    static ChannelClass& Channel(int number = 7) { return Site().Panel(5).Channel(number); }
    /// The console on the screen, with one row.
    void Stand(qint32 id = 0x05070101, const char* text = " 12 2024-03-15 12:00:00 P05-C07") {
        Forms::Show(FormNames::wRunAlarms);
        console->rows += {Text(text), id};
        log.clear();
    }
    void Tick(int seconds) {
        clock.Set(2024, 3, 15, 12);
        clock.Advance(qint64(seconds) * 1000);
        engine->tmrReactiv_Timer();
    }
    qsizetype Taken() const { return console ? console->taken.size() : 0; }
    /// What came back since the last call, in a tick.
    qsizetype TakenAt(int seconds) {
        console->taken.clear();
        Tick(seconds);
        return Taken();
    }
};

TEST_F(Reactivation, AnAlarmComesBackPastTheRouting) {
    Stand();
    FakeForm menu(Text("wMain"), log);
    FakeForm own(Text("wPolling"), log);
    const qsizetype traced = TraceLines().size();
    const QByteArray histo = BytesOf(Text("Histo202403.his"));
    Tick(59);
    EXPECT_EQ(Taken(), 0);
    EXPECT_EQ(log, QStringList());
    Tick(61);
    ASSERT_EQ(Taken(), 1);
    const EventClass& event = console->taken[0];
    EXPECT_EQ(event.ID(), 0x050701FF);
    EXPECT_EQ(event.Num(), 12);
    EXPECT_EQ(event.GDH(), clock.Now());
    EXPECT_EQ(log, TextList({"show wRunAlarms", "front wRunAlarms", "unload wMain"}));
    EXPECT_EQ(Global::Get().currentPriority, 40);
    EXPECT_EQ(events.size(), 0);
    EXPECT_EQ(TraceLines().size(), traced);
    EXPECT_EQ(BytesOf(Text("Histo202403.his")), histo);

    // The horn sounds only for those who have it.
    for (const auto& [klaxon, options, starts] :
         {std::tuple(false, 31, 1), {true, 0, 1}, {false, 0, 1}, {true, 31, 2}}) {
        Global::Get().currentPriority = 0;
        Channel().setKlaxon(klaxon);
        SetOptions(31, 31, 31, options);
        EXPECT_EQ(TakenAt(3600), 1);
        EXPECT_EQ(horn->starts, starts) << klaxon << options;
    }
}

TEST_F(Reactivation, EachIndexHasItsDelay) {
    const int minutes[] = {1, 5, 10, 30, 60, 720, 1440, 2160};
    Stand();
    for (int index = 1; index <= 8; ++index) {
        Channel().setReactTpo(index);
        EXPECT_EQ(TakenAt(minutes[index - 1] * 60 - 1), 0) << index;
        EXPECT_EQ(TakenAt(minutes[index - 1] * 60 + 1), 1) << index;
    }
    // A clock that was set back holds no alarm back.
    EXPECT_EQ(TakenAt(-1), 0) << "a tick of the same second";
    EXPECT_EQ(TakenAt(-3600), 1);
}

TEST_F(Reactivation, OnlyAcknowledgedAlarmsOfChannelsThatWantIt) {
    const std::tuple<qint32, bool, int, int> rows[] = {
        {0x05070101, true, 1, 1},  {0x05070103, true, 1, 1}, {0x050701FF, true, 1, 1},
        {0x05070100, true, 1, 0},  {0x05070001, true, 1, 0}, {0x05070201, true, 1, 0},
        {0x05070101, false, 1, 0}, {0x05070101, true, 0, 0}, {0x05070101, true, -1, 0},
        {0x05080101, true, 1, 0},
    };
    Stand();
    for (const auto& [id, react, reactTpo, taken] : rows) {
        console->rows[0].data = id;
        Channel().setReact(react);
        Channel().setReactTpo(reactTpo);
        EXPECT_EQ(TakenAt(3600), taken) << std::hex << id << " " << react << " " << reactTpo;
    }
}

TEST_F(Reactivation, GoesThroughAllRows) {
    Channel(9).setReact(true);
    Channel(9).setReactTpo(1);
    Stand(0x05090101, "3 2024-03-15 11:00:00");
    for (const char* text : {"", "4", "5 2024-03-15", "6 2024-03-15 11:00:00 P05-C07 text"})
        console->rows += {Text(text), 0x05070101};
    ASSERT_EQ(TakenAt(0), 2);
    EXPECT_EQ(console->taken[0].ID(), 0x050901FF);
    EXPECT_EQ(console->taken[1].Num(), 6);

    // A date that is none ends the tick.
    console->rows.prepend({Text("3 15.03.2024 11:00:00"), 0x05070101});
    EXPECT_EQ(TakenAt(0), 0);
    EXPECT_EQ(Boxes(), TextList({"Error Nr 13 : Type mismatch\r\nModule : wPolling\r\n"
                                 "Object : tmr\r\nEvent : Reactiv_Timer"}));
    console->rows.removeFirst();
    EXPECT_EQ(TakenAt(1), 2);
}

TEST_F(Reactivation, WithoutAConsoleTheSettingsTell) {
    const QString section = Text("LastAlarms");
    FakeForm menu(Text("wMain"), log);
    menu.Show();
    log.clear();
    Tick(3600);
    EXPECT_EQ(console, nullptr) << "nothing stands";
    IniWrite(section, Text("1"), Text("05070101 7 2024-03-15"));
    IniWrite(section, Text("2"), Text("05070001 8 2024-03-15 12:00:00"));
    Tick(3600);
    IniWrite(section, Text("3"), Text(" 05070103    9 2024-03-15   12:00:00 "));
    Tick(59);
    EXPECT_EQ(console, nullptr);
    EXPECT_EQ(log, QStringList());
    Tick(61);
    ASSERT_EQ(Taken(), 1);
    EXPECT_EQ(console->taken[0].ID(), 0x050701FF);
    EXPECT_EQ(console->taken[0].Num(), 9);
    EXPECT_EQ(log, TextList({"show wRunAlarms", "front wRunAlarms", "unload wMain"}));

    console.reset();
    FakeForm again(Text("wMain"), log);
    again.Show();
    IniWrite(section, Text("2"), Text("05070101 8 yesterday 12:00:00"));
    Tick(3600);
    EXPECT_EQ(console, nullptr);
    EXPECT_EQ(Boxes().size(), 1);

    // Some screen is always visible.
    again.Hide();
    console.reset();
    IniDeleteSection(section);
    FakeForm own(Text("wPolling"), log);
    log.clear();
    Tick(0);
    Tick(10);
    EXPECT_EQ(log, TextList({"show wRunAlarms"}));
    EXPECT_EQ(NbInstances(FormNames::wRunAlarms), 1);
    console->Hide();
    log.clear();
    own.Show();
    Tick(20);
    EXPECT_EQ(log, TextList({"show wPolling"})) << "one is enough";
}

TEST_F(Reactivation, AnAlarmMayCostTheConsole) {
    // A form whose end takes the console with it; the engine then shows another one.
    class Taker : public FakeForm {
    public:
        using FakeForm::FakeForm;
        void Unload() override {
            FakeForm::Unload();
            Forms::Unload(FormNames::wRunAlarms);
        }
    };
    Stand();
    console->rows += console->rows[0];
    const Taker taker(Text("wSysComm"), log);
    Tick(61);
    EXPECT_EQ(Taken(), 1) << "on the new console";
    EXPECT_EQ(console->RowCount(), 0);
    EXPECT_EQ(NbInstances(FormNames::wRunAlarms), 1);
}

} // namespace
