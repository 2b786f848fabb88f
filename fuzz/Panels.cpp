#include "bus/wPolling.h"
#include "core/Bytes.h"
#include "events/AlarmRows.h"
#include "events/HistoProcs.h"
#include "events/TextProcs.h"
#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Reply.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"

using Fuzz::Require;

namespace {

/// A panel of each model at the address of its code.
constexpr int ModelCount = 5;
/// Steps of a run, and of the rare one that goes on for long.
constexpr int MaxSteps = 2;
constexpr int MaxStepsRarely = 8;
/// A run ends after the step that reaches so many events.
constexpr int EnoughEvents = 6;
constexpr int EnoughEventsRarely = 24;
/// States that a poll of `P5000` and `P5500` reads.
constexpr int StateWords = 12;

/// All masks but that of the history, whose lines go to a file: they are formed below.
void SetOptions(ConfigClass& site) {
    for (int bit = 0; bit <= 4; ++bit) {
        site.setOptionScreen(bit, true);
        site.setOptionHisto(bit, false);
        site.setOptionPrinter(bit, true);
        site.setOptionKlaxon(bit, true);
    }
}

/// Rules from each model to each, for channels and for panels as a whole.
void AddRules(ConfigClass& site) {
    for (qint16 from = 1; from <= ModelCount; ++from) {
        for (qint16 to = 1; to <= ModelCount; ++to) {
            site.Mirrors().Add(from, 0, to, 0, MirrorClass::Pulse);
            site.Mirrors().Add(from, to, to, from, MirrorClass::Permanent);
            site.Mirrors().Add(from, qint16(to + 5), to, 25, MirrorClass::Pulse);
        }
    }
}

void SetUpSite() {
    ConfigClass& site = Global::Configuration();
    SetOptions(site);
    AddRules(site);
    for (int model = 1; model <= ModelCount; ++model) {
        PanelClass& panel = site.Panel(model);
        panel.setNumero(quint8(model));
        panel.setModel(quint8(model));
        panel.setActive(true);
        for (int number = 1; number <= PanelClass::MaxChannel; ++number) {
            ChannelClass& channel = panel.Channel(number);
            channel.setScreenText(QStringLiteral("Pump %1").arg(number));
            channel.setBibNum(qint16(number));
            channel.setKlaxon(number % 2 == 0);
            channel.setScrAlm(number % 3 != 0);
            channel.setPrtAlm(number % 4 != 0);
            channel.setOutOfOrder(number % 11 == 0);
        }
    }
}

/// What the running system has found out is forgotten.
void Reset() {
    static const bool once = [] {
        SetUpSite();
        return true;
    }();
    static_cast<void>(once);
    for (int model = 1; model <= ModelCount; ++model) {
        PanelClass& panel = Global::Configuration().Panel(model);
        panel.setPresent(model % 2 == 0);
        panel.setNextPoll(0);
        for (int counter = 0; counter < PanelClass::ErrorCounters; ++counter)
            panel.setErrCptr(counter, 0);
        for (int number = 1; number <= PanelClass::MaxChannel; ++number) {
            panel.Channel(number).setState(0);
            panel.Channel(number).setMirrorType(0);
        }
    }
}

void CheckRows(const AlarmRows& rows) {
    Require(rows.Current() >= -1 && rows.Current() < rows.Count(), "the selection is a row");
    Require(rows.Count() <= ModelCount * (PanelClass::MaxChannel + 2),
            "one row for a place of trouble");
}

void Consume(const EventClass& event, AlarmRows& rows) {
    Require(event.Num() >= 1 && event.Num() < 1000000, "events are numbered");
    Require(event.Panel() >= 1 && event.Panel() <= ModelCount, "an event is of its panel");
    const QString screen = TextProcs::FormateHistoScreen(event);
    Require(screen.size() == TextProcs::ScreenLine::Width, "a screen line has its width");
    Require(TextProcs::HistoScreenLineToHistoFileLine(screen).size() == TextProcs::FileLine::Width,
            "a file line has its width");
    if (event.Aff() >= 0 && event.Aff() <= 255) {
        rows.Take(event, AlarmRows::RowText(event));
        CheckRows(rows);
    }
}

/// Number of events that a module reports, mostly small.
qint16 EventCount(Input& input) {
    return input.IsRare() ? qint16(input.Word()) : qint16(input.Byte() & 3);
}

/// The words of a poll as long as the model's.
Words WordsOf(int model, Input& input) {
    if (Models::IsQFamily(model))
        return {EventCount(input)};
    if (!Models::IsRemoteControlled(model))
        return {qint16(input.Word())};
    // Few channels change at a time: an event costs far more than what reads it.
    Words words(StateWords, 0);
    for (int changes = input.IsRare() ? StateWords : input.Byte() & 3; changes > 0; --changes) {
        const int word = input.Byte() % StateWords;
        const int value = input.Byte();
        words[word] = qint16(value < 0x80 ? value : value - 0x100);
    }
    return words;
}

void Carry(wPolling& engine, Input& input) {
    Words values;
    for (int count = input.Byte() & 15; count >= 0; --count)
        values += qint16(input.Word());
    const int type = input.Byte() & 3;
    // A read goes to one module: nothing answers at the address of all.
    const int first = type == CommandTypes::Read ? 1 : 0;
    const auto module = qint16(Bytes::Greater(input.Byte() % (wPolling::PanelCount + 1), first));
    CommandClass command(module, input.Word(), values);
    command.setCmdType(type);
    for (int tries = 0; tries < CommandClass::MaxErrors; ++tries)
        engine.TraiteCommande(command);
    Require(command.CmdType() == CommandTypes::Done || command.ErrorCount() > 0 ||
                command.SendTime() == 0,
            "a command is done or has failed");
}

} // namespace

int FuzzPanels(const uint8_t* data, size_t size) {
    Fuzz::Prepare();
    Reset();
    Input input(data, size);
    auto link = std::make_unique<FakeLink>();
    link->setPortOpen(true);
    link->answer = [&input](const QByteArray& frame) { return Fuzz::ReplyTo(frame, input); };
    wPolling engine(std::move(link));
    AlarmRows rows;
    int events = 0;
    const bool rare = input.IsRare();
    const int maxSteps = rare ? MaxStepsRarely : MaxSteps;
    const int enough = rare ? EnoughEventsRarely : EnoughEvents;
    QObject::connect(&engine, &wPolling::BusEvent, [&](const EventClass& event) {
        ++events;
        Consume(event, rows);
    });
    for (int step = 0; step < maxSteps && events < enough && !input.IsEmpty(); ++step) {
        const int choice = input.Byte();
        const int model = choice % ModelCount + 1;
        PanelClass& panel = Global::Configuration().Panel(model);
        switch (choice >> 5) {
        case 0:
            Carry(engine, input);
            break;
        case 1:
            engine.AddError(model);
            break;
        case 2:
            engine.TraitePanelMove(model, (choice & 16) != 0);
            break;
        case 3:
            engine.Queue().Receipts().Forget(model);
            break;
        default:
            engine.ExploitePanneau(panel, WordsOf(model, input));
        }
    }
    return 0;
}
