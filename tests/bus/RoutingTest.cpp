#include "bus/Engine.h"

#include "core/ErrorHandling.h"
#include "support/PipePrinter.h"

#include <array>
#include <tuple>

namespace {

/// A horn that notes when it sounds.
class NotingSound : public platform::SilentSound {
public:
    explicit NotingSound(std::function<void()> note)
        : note_(std::move(note)) {}
    void StartLooped(const QString& /*path*/, const platform::SoundReserve& /*reserve*/) override {
        note_();
    }

private:
    std::function<void()> note_;
};

class Routing : public EngineWithConsole {
protected:
    Routing() {
        Start();
        SetOptions(31, 31, 31, 31);
        ChannelClass& channel = AddModule(5, Models::Q7100).Channel(7);
        channel.setScrAlm(true);
        channel.setHisto(true);
        channel.setKlaxon(true);
        channel.setAlmPrio(40);
        Site().setAlarmPrioSound(40, 4);
        Site().setAlarmPrioSound(99, 9);
        traced = TraceLines().size();
    }

    void Route(qint16 chnl, qint16 param, qint16 aff) {
        EventClass event(5, chnl, param, aff);
        engine->SendEvent(event);
    }
    /// What each consumer has of the last event, besides the log of the forms.
    void Note(const QString& what) {
        log += what + QString::asprintf(", %d histo, %d traced", int(Histo().size()),
                                        int(TraceLines().size() - traced));
    }
    QStringList Histo() const {
        const QString name = Text("Histo202403.his");
        return QFile::exists(Path(name)) ? LinesOf(name).mid(1) : QStringList();
    }

    qsizetype traced = 0;
};

TEST_F(Routing, ServesItsConsumersInOrder) {
    FakeForm menu(Text("wMain"), log);
    FakeForm own(Text("wPolling"), log);
    Global::Get().sound = std::make_unique<NotingSound>([this] { Note(Text("horn")); });
    QObject::connect(engine.get(), &wPolling::BusEvent, [this] { Note(Text("signal")); });
    const qsizetype before = Histo().size();
    Route(7, 0, 1);
    EXPECT_EQ(log,
              (QStringList{Text("horn, %1 histo, 0 traced").arg(before), Text("show wRunAlarms"),
                           Text("front wRunAlarms"), Text("unload wMain"),
                           Text("signal, %1 histo, 0 traced").arg(before + 1)}));
    EXPECT_EQ(TraceLines().size() - traced, 1);
    Route(30, 0, 1);
    EXPECT_TRUE(TraceLines().last().endsWith(Text("051E0001")));
    EXPECT_EQ(TraceLines().last().size(), 43);
}

TEST_F(Routing, OutOfOrderTakesTheStateAndNothingElse) {
    ChannelClass& channel = Site().Panel(5).Channel(7);
    channel.setOutOfOrder(true);
    const QStringList histo = Histo();
    Route(7, 0, 3);
    EXPECT_EQ(channel.State(), 3);
    EXPECT_EQ(events.size(), 0);
    EXPECT_EQ(log, QStringList());
    EXPECT_EQ(Histo(), histo);
    EXPECT_EQ(TraceLines().size(), traced);
    EXPECT_EQ(horn->starts, 0);
    // The presence of its panel is another matter.
    Route(255, 1, 0);
    EXPECT_EQ(horn->starts, 1);
}

TEST_F(Routing, WhatCantBeWrittenStopsNoOtherConsumer) {
    const auto block = [this](const QString& name) {
        QFile::remove(Path(name));
        ASSERT_TRUE(QDir().mkdir(Path(name)));
    };
    block(Text("Histo202403.his"));
    // Neither before nor behind: the box waits until the event has gone all its ways.
    int atTheBox = 0;
    Messages::Install([&](const QString& text, int, bool) {
        boxes += text;
        atTheBox = horn->starts + NbInstances(FormNames::wRunAlarms) + int(events.size());
        return int(Messages::Ok);
    });
    Route(7, 0, 1);
    EXPECT_EQ(atTheBox, 3);
    EXPECT_EQ(boxes.size(), 1);
    EXPECT_TRUE(Boxes().value(0).contains(Text("HistoProcs\r\nFunction : HistoEvent")));
    EXPECT_EQ(TraceLines().size() - traced, 1 + 2) << "the event, the error and the fault";

    // The trace of the new day can't be opened; a line that can be written again is.
    clock.Set(2024, 3, 16, 8, 0, 0);
    Site().Mirrors().Add(5, 7, 6, 3, MirrorClass::Permanent);
    AddModule(6, Models::Q7100);
    block(Text("Trace/20240316.log"));
    EXPECT_FALSE(ErrorHandling::Guard("Trace.OpenToday", [] { Trace::OpenToday(); }));
    Route(7, 0, 1);
    EXPECT_EQ(Boxes().size(), 3) << "the opening, history and trace";
    EXPECT_EQ(engine->Commands().Count(), 1) << "the mirror";
    ASSERT_TRUE(QDir().rmdir(Path(Text("Trace/20240316.log"))));
    Route(7, 0, 0);
    EXPECT_EQ(LinesOf(Text("Trace/20240316.log")).size(), 1 + 1)
        << "the event, and the end of what kept it from being written";
    EXPECT_EQ(Boxes().size(), 1) << "the history";
}

TEST_F(Routing, TheHornFollowsTheEvent) {
    const std::array<qint16, 4> rows[] = {
        {255, 1, 0, 99}, {255, 1, 1, 0}, {0, 0, 1, 0},   {0, 0, 2, 0},  {7, 0, 1, 40},
        {7, 1, 1, 99},   {7, 0, 2, 40},  {7, 1, 3, 40},  {7, 0, 4, 40}, {7, 0, 0, 0},
        {7, 1, 0, 0},    {8, 0, 1, 0},   {254, 0, 1, 0},
    };
    for (const auto& [chnl, param, aff, priority] : rows) {
        Global::Get().currentPriority = 0;
        Route(chnl, param, aff);
        EXPECT_EQ(Global::Get().currentPriority, priority) << chnl << " " << param << " " << aff;
    }
    // A priority that there isn't is neither silent nor does it silence or keep others from it.
    for (const int priority : {100, 32767, 0, -1}) {
        Global::Get().currentPriority = 1;
        Site().Panel(5).Channel(7).setAlmPrio(qint16(priority));
        Route(7, 0, 1);
        EXPECT_EQ(Global::Get().currentPriority, 99) << priority;
        EXPECT_EQ(horn->playing, Path(Text("AlarmSound9")));
    }
}

TEST_F(Routing, InactivityThrowsOutAllButTheLowestLevels) {
    int changes = 0;
    QObject::connect(engine.get(), &wPolling::UserChanged, [&] { ++changes; });
    Global::Get().userName = Text("MANAGER");
    for (const int level : {0, 1, 2, 3, 4}) {
        const bool thrownOut = level > 1;
        Global::Get().userLevel = level;
        console.reset();
        log.clear();
        FakeForm menu(Text("wMain"), log);
        FakeForm own(Text("wPolling"), log);
        Q_EMIT engine->UserSleep().UserIsNotHere();
        EXPECT_EQ(Global::Get().userLevel, thrownOut ? 0 : level);
        EXPECT_EQ(log, thrownOut ? TextList({"unload wMain", "show wRunAlarms", "front wRunAlarms"})
                                 : QStringList());
    }
    EXPECT_EQ(changes, 3);
    EXPECT_EQ(Global::Get().userName, Text("MANAGER"));
    EXPECT_EQ(events.size() + TraceLines().size(), traced);

    const std::tuple<qint16, int, bool> rows[] = {
        {10, 100, true}, {1, 10, true}, {0, 10, false}, {-3, 10, false}};
    for (const auto& [minutes, count, enabled] : rows) {
        Site().setInactivityTime(minutes);
        engine->SetupUserSleep();
        EXPECT_EQ(engine->UserSleep().CheckPeriod(), 6000);
        EXPECT_EQ(engine->UserSleep().Count(), count);
        EXPECT_EQ(engine->UserSleep().Enabled(), enabled) << minutes;
    }
}

TEST_F(Routing, TheEndFromOutsideIsTraced) {
    const QString tail =
        Text("  ******** SYSTEM  APPLI STOP    ") + QString(26, u'*') + u' ' + QString(39, u'*');
    Global::Get().currentPriority = 5;
    engine->Form_QueryUnload(platform::UnloadMode::Code);
    EXPECT_EQ(TraceLines().size(), traced);
    EXPECT_EQ(horn->stops, 1);
    engine->Form_QueryUnload(platform::UnloadMode::TaskManager);
    EXPECT_EQ(TraceLines().last(), Text("2024-03-15 12:00:00 TASK  MANAGER") + tail);
    engine->Form_QueryUnload(platform::UnloadMode::System);
    EXPECT_EQ(TraceLines().last(), Text("2024-03-15 12:00:00 CLOSE  WINDOWS") + tail);
    EXPECT_EQ(horn->stops, 3);
}

/// With a printer on the way of its events.
class PrinterRoad : public Engine {
protected:
    PrinterRoad() {
        IniWrite(Text("Ports"), Text("LPT1"), Path(Text("printer")));
        Site().setPrtSettings(Text("LPT1:"));
        Site().setPrinterInitString(5, Text("1B 45"));
        printer.SwitchOn();
        Start();
        ChannelClass& channel = AddModule(5, Models::Q7100).Channel(7);
        channel.setPrtAlm(true);
        channel.setPrintText(Text("Brûleur à gaz"));
        SetOptions(0, 0, 31, 0);
        printer.Taken();
        Forget();
    }

    /// What an event brings on paper.
    QByteArray Route(qint16 chnl, qint16 aff) {
        EventClass event(5, chnl, 0, aff);
        event.setGDH(clock.Now());
        engine->SendEvent(event);
        return printer.Taken();
    }

    PipePrinter printer{Path(Text("printer"))};
};

TEST_F(PrinterRoad, ALineReachesTheDeviceAndAMissingPrinterStopsNothing) {
    const QByteArray line = Route(7, 1);
    EXPECT_EQ(line.left(30), "\x1B\x45"
                             "2024-03-15 12:00:00        P");
    EXPECT_TRUE(line.endsWith("Br\x96leur \x85 gaz\r\n")) << line.toStdString();
    EXPECT_EQ(Route(8, 1), QByteArray()) << "a channel that isn't printed";

    printer.SwitchOff();
    Route(7, 1);
    Route(7, 0);
    EXPECT_EQ(events.size(), 4);
    const auto told = [this] { return TraceLines().filter(Text(" PRINTER ERROR  ")).size(); };
    const qsizetype first = told();
    EXPECT_GE(first, 1);
    Route(7, 1);
    EXPECT_EQ(told(), first) << "once an hour";
    clock.Advance(3601000);
    Route(7, 0);
    EXPECT_EQ(told(), first + 1);

    // The port of the bus is never printed on, in whichever order the two are chosen.
    printer.SwitchOn();
    clock.Advance(EventPrinter::TryPause);
    EXPECT_EQ(engine->dpPrinter().Port(), Text("LPT1"));
    IniWrite(Text("Ports"), Text("COM4"), Path(Text("printer")));
    Site().setBusSettings(Text("COM4:9600,N,8,1"));
    engine->ConfigCommPort();
    EXPECT_EQ(Boxes().filter(GetText(714061)).size(), 1);
    EXPECT_EQ(engine->dpPrinter().Port(), QString());
    EXPECT_EQ(Route(7, 1), QByteArray());
}

TEST_F(PrinterRoad, AChoiceThatWaitsForAStuckLineIsTheOneThatCounts) {
    PipePrinter other(Path(Text("other")));
    other.SwitchOn();
    IniWrite(Text("Ports"), Text("LPT2"), Path(Text("other")));
    const auto choose = [this](std::initializer_list<const char*> ports) {
        printer.Stick();
        EventClass event(5, 7, 0, 1);
        engine->SendEvent(event);
        for (const char* port : ports) {
            Site().setPrtSettings(Text(port));
            engine->SetupPrinter();
        }
        EXPECT_EQ(engine->dpPrinter().Port(), Text("LPT1")) << "the line is under way";
    };
    const auto portBehindTheLine = [this] {
        printer.Taken();
        engine->Paper().Advance();
        return engine->dpPrinter().Port();
    };
    choose({"LPT2:", "LPT1:"});
    EXPECT_EQ(portBehindTheLine(), Text("LPT1"));
    choose({"LPT2:"});
    IniWrite(Text("Ports"), Text("COM4"), Path(Text("other")));
    Site().setBusSettings(Text("COM4:9600,N,8,1"));
    engine->ConfigCommPort();
    EXPECT_EQ(portBehindTheLine(), QString()) << "the bus came there meanwhile";
    EXPECT_EQ(Boxes().size(), 1);
}

} // namespace
