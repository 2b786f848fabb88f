#pragma once

#include "bus/wPolling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "model/Models.h"
#include "support/Bench.h"
#include "support/FakeConsole.h"
#include "support/FakeLink.h"
#include "support/Frames.h"

using Lines = std::vector<std::string>;

/// The engine on a bus of fake modules, loaded and with the port open.
class Engine : public QuietBench {
protected:
    Engine()
        : link(new FakeLink) {
        link->answer = [this](const QByteArray& frame) { return modules.Answer(frame); };
        SetOptions(0, 0, 0, 0);
    }

    /// Makes and loads the engine; the application is started anew by a second call.
    void Load() {
        if (engine) {
            auto* next = new FakeLink;
            next->answer = link->answer;
            link = next;
        }
        engine = std::make_unique<wPolling>(std::unique_ptr<platform::SerialLink>(link));
        engine->Form_Load();
        const wPolling* from = engine.get();
        QObject::connect(from, &wPolling::BusEvent, [this](const auto& event) { events += event; });
        QObject::connect(from, &wPolling::RoundDone, [this](int panel) { rounds += panel; });
        QObject::connect(from, &wPolling::PollDone, [this] { turns += engine->PolledPanel(); });
        QObject::connect(from, &wPolling::UpdateDone, [this] { updates += link->sent.size(); });
        QObject::connect(from, &wPolling::StateChanged,
                         [this] { stateChanges += engine->State(); });
        QObject::connect(from, &wPolling::WriteError, [this](const CommandClass& command) {
            EXPECT_TRUE(command.Error());
            givenUp += command.Address();
        });
    }
    /// Loads and starts the bus while the site is still empty, so that nothing is synchronised.
    void Start() {
        Load();
        engine->setRun(true);
        Forget();
    }
    void Forget() {
        link->sent.clear();
        events.clear();
        stateChanges.clear();
    }
    /// A panel of the site with a module that answers.
    PanelClass& AddModule(int address, int model) {
        modules[address];
        PanelClass& panel = AddPanel(address, model);
        panel.setNextPoll(clock.Now() - 1);
        return panel;
    }
    /// Whole rounds, also those that are parted in their queue.
    void Rounds(int count) {
        for (int i = 0; i < count; ++i) {
            const qsizetype before = rounds.size();
            int parts = 0;
            do
                engine->RunComm();
            while (rounds.size() == before && engine->Run() && ++parts < 1000);
        }
    }
    static CommandPtr Write(int module, int registerNo, const Words& values, DateTime when = 0) {
        return std::make_shared<CommandClass>(qint16(module), registerNo, values, when);
    }
    /// The frames that were sent, in words.
    Lines Sent() const { return Frames::Said(link->sent); }
    /// Addresses of the frames sent with a function.
    QList<int> Addresses(int function) const {
        QList<int> addresses;
        for (const QByteArray& frame : link->sent)
            if (frame[1] == function)
                addresses += quint8(frame[0]);
        return addresses;
    }
    QList<int> Ids() const {
        QList<int> ids;
        for (const EventClass& event : events)
            ids += event.ID();
        return ids;
    }
    /// "panel/channel qualifier state clock" of each.
    static QStringList Fields(const QList<EventClass>& list) {
        QStringList fields;
        for (const EventClass& event : list)
            fields += QString::asprintf("%d/%d %d %d %d", event.Panel(), event.Chnl(),
                                        event.Param(), event.Aff(), event.Clock());
        return fields;
    }
    static QList<int> Counters(const PanelClass& panel) {
        return {panel.ErrCptr(0), panel.ErrCptr(1), panel.ErrCptr(2)};
    }
    /// The queue without its times: "panel:register=values".
    QStringList Waiting() const {
        QStringList texts;
        for (int position = 1; position <= engine->Commands().Count(); ++position) {
            const QStringList pieces = engine->Commands().Item(position)->ToText().split(u'|');
            texts += pieces[1] + u':' + pieces[2] + u'=' + pieces.mid(4).join(u',');
        }
        return texts;
    }
    static QString Stored(const QString& section, const QString& key) {
        return IniRead(section, key, Text("none"));
    }
    static QString LastEvent() { return Stored(Text("General"), Text("LastEvent")); }

    FakeModules modules;
    FakeLink* link;
    std::unique_ptr<wPolling> engine;
    QList<EventClass> events;
    QList<int> rounds;            // the panel that each polled
    QList<int> turns;             // the panel that each ended with
    QList<qsizetype> updates;     // frames that were sent when each ended
    QList<BusState> stateChanges; // each that a change brought
    QList<int> givenUp;           // registers of commands
};

/// With a console that forms can show and load.
class EngineWithConsole : public Engine {
protected:
    EngineWithConsole() {
        Forms::Register(FormNames::wRunAlarms, [this]() -> Forms::Form* {
            console = std::make_unique<FakeConsole>(log);
            return console.get();
        });
    }
    ~EngineWithConsole() override { Forms::Register(FormNames::wRunAlarms, {}); }

    /// Starts the bus; then no console stands.
    void Start() {
        Engine::Start();
        console.reset();
        log.clear();
    }

    QStringList log;
    std::unique_ptr<FakeConsole> console;
};
