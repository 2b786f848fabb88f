// Saves a picture of every screen in every language, at the design size or scaled:
// korvanelle-screens <folder with korvanelle.cfg and korvanelle.dat> <target folder> [<width>
// <height> [rehearsal]]

#include "Base.h"
#include "Shots.h"

#include "bus/wPolling.h"
#include "config_screens/ConfigScreens.h"
#include "core/Faults.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Rehearsal.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "events/HistoProcs.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "platform/Folders.h"
#include "screens/Screens.h"
#include "screens/console/ConsoleHead.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/dlgMessage.h"
#include "screens/dialogs/wHelp.h"
#include "screens/remote/wTeleCmde.h"
#include "screens/touch/ResizeForm.h"
#include "support/FakeLink.h"
#include "support/FakeModules.h"
#include "technician/Technician.h"

#include <QApplication>
#include <QDir>
#include <QTimer>
#include <cstdio>

namespace {

/// Alarms of all kinds on the console, newest last.
void RaiseAlarms(wPolling& engine) {
    struct Alarm {
        qint16 panel, chnl, param, aff;
    };
    constexpr Alarm Alarms[] = {
        {1, 3, 0, 1},   {1, 4, 1, 3},  {2, 5, 1, 4}, {2, 6, 1, 2}, {3, 2, 0, 0},
        {3, 7, 1, 1},   {5, 4, 0, 1},  {5, 9, 0, 1}, {6, 1, 0, 0}, {6, 3, 0, 1},
        {7, 1, 1, 2},   {7, 4, 1, 3},  {7, 5, 1, 4}, {8, 1, 0, 1}, {8, 255, 1, 0},
        {1, 8, 1, 255}, {2, 11, 0, 1}, {4, 0, 0, 2}, {1, 1, 1, 1}, {3, 255, 1, 0},
    };
    for (const Alarm& alarm : Alarms) {
        EventClass event(alarm.panel, alarm.chnl, alarm.param, alarm.aff);
        event.setGDH(DateTimes::Now());
        event.setNum(124300 + qint32(&alarm - Alarms));
        Q_EMIT engine.BusEvent(event);
    }
}

/// A line on which silence takes no time.
class PromptLink : public FakeLink {
public:
    void WaitForInput(int, qint64) override {}
};

/// The modules of the demonstration site and one more; panel 8 is silent. Their lamps are in every
/// state.
void PutModules(FakeModules& modules) {
    for (int address : {1, 2, 3, 4, 5, 6, 7, 12}) {
        modules[address][132] = address == 4 ? 2 : 1;
        modules[address][133] = address == 6 ? 2 : 1;
        for (int channel = 1; channel <= 24; ++channel)
            modules[address][channel] = quint16(channel % 7 % 6);
    }
}

/// A day of history for the viewer.
void WriteHistory() {
    for (int i = 0; i < 40; ++i) {
        EventClass event(qint16(1 + i % 8), qint16(1 + i % 12), qint16(i / 2 % 2), qint16(i % 2));
        event.setGDH(DateTimes::Now());
        event.setNum(120000 + i);
        event.setClock(36000 + 37 * i);
        HistoProcs::HistoEvent(event);
    }
}

/// The console in each state of the watch and with what can stand on its band.
void TakeWatch(const Paths& path) {
    const struct {
        const char* name;
        ConsoleHead::Watch watch;
    } watches[] = {
        {"console_empty", {BusState::Running, {}, false}},
        {"console_stopped", {BusState::Stopped, {}, false}},
        {"console_waits_for_port", {BusState::WaitsForPort, {}, false}},
        {"console_first_reading", {BusState::FirstReading, {}, false}},
        {"console_port_lost", {BusState::PortLost, {}, true}},
        {"console_missing", {BusState::Running, {3, 8}, false}},
        {"console_bus_lost", {BusState::Running, {1, 2, 3, 4, 5, 6, 7, 8}, true}},
        {"console_no_panel", {BusState::Running, {}, false, false}},
    };
    for (const auto& [name, watch] : watches) {
        ConsoleHead::OverrideWatch(watch);
        Take(FormNames::wRunAlarms, path(name));
    }
    ConsoleHead::OverrideWatch(ConsoleHead::Watch{BusState::Running, {}, false});
    for (int kind = 0; kind < Faults::KindCount; ++kind) {
        const auto which = Faults::Kind(kind);
        Faults::Set(which, Faults::HasDetail(which) ? QStringLiteral("17") : QString());
        const QByteArray name = "console_fault_" + QByteArray::number(kind + 1);
        Take(FormNames::wRunAlarms, path(name.constData()));
        Faults::Clear(which);
    }
}

void TakeConsole(wPolling& engine, const Paths& path) {
    IniDeleteSection(QStringLiteral("LastAlarms"));
    Global::Configuration().Panel(8).setErrCptr(2, 0);
    TakeWatch(path);
    ConsoleHead::OverrideWatch(ConsoleHead::Watch{BusState::Running, {8}, false});
    Forms::Show(FormNames::wRunAlarms);
    RaiseAlarms(engine);
    Global::Configuration().Panel(8).setErrCptr(2, 1);
    Save(FormNames::wRunAlarms, path("console_alarms"));
    ConsoleHead::OverrideWatch(
        ConsoleHead::Watch{BusState::Running, {1, 2, 3, 4, 5, 6, 7, 8}, true});
    for (int panel = 1; panel <= 8; ++panel)
        Global::Configuration().Panel(panel).setErrCptr(2, 1);
    for (const auto kind :
         {Faults::Kind::NoHorn, Faults::Kind::DiskFull, Faults::Kind::HistoryNotWritten})
        Faults::Set(kind);
    Faults::Set(Faults::Kind::PrinterNotReached, QStringLiteral("17"));
    Save(FormNames::wRunAlarms, path("console_alarms_faults"));
    for (int panel = 1; panel <= 8; ++panel)
        Global::Configuration().Panel(panel).setErrCptr(2, 0);
    Faults::Forget();
    ConsoleHead::OverrideWatch(std::nullopt);
    Forms::Unload(FormNames::wRunAlarms);
}

/// What the demo site shows only at a touch: a module that is commanded, an instruction, the help
/// at the chapter of a screen.
void TakeTouched(const Paths& path) {
    ConfigClass& site = Global::Configuration();
    if (auto* module = dynamic_cast<wTeleCmde*>(Forms::Load(FormNames::wTeleCmde)))
        module->setPanel(&site.Panel(5));
    Take(FormNames::wTeleCmde, path("wTeleCmde_module"));
    if (auto* box = dynamic_cast<dlgConsigne*>(Forms::Load(FormNames::dlgConsigne))) {
        box->setAlarm(site.Panel(1).Title());
        box->setConsigne(site.Consigne(1));
    }
    Take(FormNames::dlgConsigne, path("dlgConsigne_read"));
    // The month before: the present one holds what the technician's pictures took out of service.
    Forms::Show(FormNames::wHistoric);
    Click(FormNames::wHistoric, "imgControl_0");
    Save(FormNames::wHistoric, path("wHistoric"));
    Forms::Unload(FormNames::wHistoric);
    for (const QString& form :
         {FormNames::wRunAlarms, FormNames::wBusPanneau, FormNames::wTechDiagnosis}) {
        Forms::Show(form);
        QApplication::processEvents();
        ShowHelp();
        Save(FormNames::wHelp, path(("help_" + form.toLatin1()).constData()));
        Forms::Unload(FormNames::wHelp);
        Forms::Unload(form);
    }
}

/// What stands only while it is asked.
void TakeAsked(const Paths& path) {
    const auto take = [&](const QString& form, const char* name, const std::function<void()>& ask) {
        QTimer::singleShot(0, qApp, [&] {
            Save(form, path(name));
            Forms::Unload(form);
        });
        ask();
    };
    take(FormNames::dlgMessage, "dlgMessage",
         [] { dlgMessage::Present(GetText(30010), 35, false); });
    take(FormNames::dlgListInput, "dlgListInput", [] {
        AskValue(nullptr, QStringLiteral("@|1200|2400|4800|9600|19200"), QStringLiteral("9600"));
    });
    take(FormNames::dlgUserCodes, "dlgUserCodes_prompt", [] { AskPassword(nullptr, 2); });
}

void TakeAll(wPolling& engine, const QDir& target, const QString& language) {
    const auto path = [&](const char* name) {
        return target.filePath(QString::fromLatin1(name) + u'_' + language +
                               QStringLiteral(".png"));
    };
    TakeConsole(engine, path);
    TakeTechnician(engine, path);
    for (const QString& form : Forms::Names())
        if (form != FormNames::wRunAlarms && form != FormNames::wParamPrinter &&
            form != FormNames::wRehearsal)
            Take(form, path(form.toLatin1().constData()));
    TakeTouched(path);
    TakeAsked(path);
    TakeReport(path);
    TakeHistorySearch(path);
    TakeConfiguration(path);
    TakeBackups(path);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 5 && argc != 6) {
        std::fprintf(stderr, "usage: korvanelle-screens <folder> <target> [<width> <height> "
                             "[rehearsal]]\n");
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (!Base::Open(QString::fromLocal8Bit(argv[1])))
        return 1;
    RegisterScreens();
    RegisterConfigScreens();
    RegisterTechnician();
    Messages::Install([](const QString&, int, bool) { return int(Messages::Ok); });
    Rehearsal::Override(argc == 6);
    // As on a machine on which it lies beside the program.
    Rehearsal::OverrideSimulator(QApplication::applicationFilePath());
    if (argc > 4) {
        Global::Get().noResize = false;
        OverrideScreenSize(QSize(QByteArray(argv[3]).toInt(), QByteArray(argv[4]).toInt()));
    }
    Global::Get().sound = std::make_unique<platform::SilentSound>();
    Global::setConfiguration(std::make_unique<ConfigClass>());
    Global::Configuration().Read(CurrentConfigFile());
    IniWrite(QStringLiteral("Files"), QStringLiteral("LastUsed"),
             QStringLiteral("/sites/Waterworks.kv2"));
    FakeModules modules;
    PutModules(modules);
    Global::ReadMarks();
    Trace::OpenToday();
    WriteAlarms();
    WriteHistory();
    const QDir target(QString::fromLocal8Bit(argv[2]));
    platform::MakeFolder(target.path());
    for (int language = 0; !GetLanguage(language).isEmpty(); ++language) {
        Global::Get().language = qint16(language);
        Global::ReadMarks();
        // One for each language: the engine ends with its screen.
        auto line = std::make_unique<PromptLink>();
        line->answer = [&](const QByteArray& frame) { return modules.Answer(frame); };
        wPolling engine(std::move(line));
        TakeAll(engine, target, GetLanguage(language).left(2).toLower());
    }
    return 0;
}
