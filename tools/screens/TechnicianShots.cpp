// The technician's screens at work: modules answer on a line of the tool's own.

#include "Shots.h"

#include "bus/SimulatedPlant.h"
#include "bus/wPolling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "model/Access.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/OutOfService.h"
#include "screens/console/ConsoleHead.h"
#include "screens/touch/TouchTable.h"
#include "technician/ModuleFront.h"
#include "technician/dlgOutOfService.h"
#include "technician/wRehearsal.h"
#include "technician/wTechnician.h"

#include <QApplication>
#include <QDir>
#include <QTimer>

namespace {

void SelectRow(const QString& form, const char* table, int row) {
    if (auto* rows = qobject_cast<TouchTable*>(Child(form, table)))
        rows->SelectTag(QString::number(row));
}

void Done(const QString& form, const QString& path) {
    Save(form, path);
    Forms::Unload(form);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// The form is modal: its picture is taken when it has read its module.
void TakeFront(int panel, const QString& path) {
    auto* front = dynamic_cast<ModuleFront*>(Forms::Load(FormNames::wTechEtatModule));
    if (front == nullptr)
        return;
    constexpr int FirstReading = 1300;
    QTimer::singleShot(FirstReading, qApp, [path] { Done(FormNames::wTechEtatModule, path); });
    front->Present(Global::Configuration().Panel(panel));
}

void TakeSearch(const Paths& path) {
    const QString form = FormNames::wTechFindPanels;
    Forms::Show(form);
    Click(form, "imgFind_1");
    SelectRow(form, "grdPanels", 9);
    Done(form, path("wTechFindPanels_searched"));
}

void TakeConsole(const Paths& path) {
    const QString form = FormNames::wTechnician;
    IniWrite(QStringLiteral("Files"), QStringLiteral("Histo"),
             QDir::tempPath() + QStringLiteral("/korvanelle-pictures"));
    Forms::Show(form);
    if (auto* console = dynamic_cast<wTechnician*>(Forms::Find(form)))
        console->setNumero(1);
    Click(form, "cmdTestLeds");
    Click(form, "cmdCopyTraces");
    Done(form, path("wTechnician_at_work"));
    QDir(QDir::tempPath() + QStringLiteral("/korvanelle-pictures")).removeRecursively();
    // As on a panel PC, for the screens that show it.
    IniWrite(QStringLiteral("Files"), QStringLiteral("Histo"), QStringLiteral("/media/usb0"));
}

/// Panels and channels with long names out of service, on their list and on the console.
void TakeOutOfService(const Paths& path) {
    ConfigClass& site = Global::Configuration();
    const QString widest(PanelClass::MaxTitle, u'W');
    Global::Get().userLevel = Levels::Technician;
    Global::Get().userName = QString(16, u'W');
    site.Panel(5).setTitle(widest);
    OutOfService::Apply({{{3, 0}, true}, {{5, 0}, true}});
    for (const int channel : {1, 4, 12}) {
        OutOfService::Apply({{{1, channel},
                              true,
                              channel == 4 ? QString(OutOfService::MaxReason, u'W')
                                           : OutOfService::Reasons().first(),
                              channel * OutOfService::Day}});
        site.Panel(1).Channel(channel).setScreenText(channel == 4 ? widest
                                                                  : QStringLiteral("Pump"));
    }
    const QString form = FormNames::wTechConsignations;
    Forms::Show(form);
    for (int step = 0; step < 6; ++step)
        Click(form, "imgControl_5");
    Click(form, "imgControl_6");
    for (int row = 0; row < 2; ++row)
        Click(form, "imgNavig_103");
    Done(form, path("wTechConsignations_full"));
    if (auto* dialog = dynamic_cast<dlgOutOfService*>(Forms::Load(FormNames::dlgOutOfService))) {
        dialog->setChoice({QString(OutOfService::MaxReason, u'W'), 200 * OutOfService::Day});
        dialog->Show();
        Done(FormNames::dlgOutOfService, path("dlgOutOfService_full"));
    }
    ConsoleHead::OverrideWatch(ConsoleHead::Watch{BusState::Running, {}, false});
    Take(FormNames::wRunAlarms, path("console_out_of_service"));
    ConsoleHead::OverrideWatch(std::nullopt);
    OutOfService::setMemory({});
    Global::Get().userLevel = 0;
    Global::Get().userName.clear();
    site.Read(CurrentConfigFile());
}

/// With the strip that every window then bears.
void TakeRehearsal(const Paths& path) {
    const bool before = Rehearsal::Runs();
    Rehearsal::Override(true);
    SimulatedPlant plant;
    plant.setContact(1, 3, SimulatedPlant::Contact::Active);
    plant.setContact(1, 8, SimulatedPlant::Contact::CableFault);
    plant.setOff(7, true);
    const QString form = FormNames::wRehearsal;
    for (const auto& [panel, name] :
         {std::pair{7, "wRehearsal_off"}, {4, "wRehearsal_display"}, {1, "wRehearsal"}}) {
        Forms::Show(form);
        if (auto* modules = dynamic_cast<wRehearsal*>(Forms::Find(form)))
            modules->setPanel(panel);
        Done(form, path(name));
    }
    Rehearsal::Override(before);
}

} // namespace

void TakeTechnician(wPolling& engine, const Paths& path) {
    engine.CommBus().setPortOpen(true);
    TakeSearch(path);
    TakeFront(1, path("wTechEtatModule_12"));
    TakeFront(4, path("wTechEtatModule_24"));
    Forms::Show(FormNames::wTechDiagnosis);
    Done(FormNames::wTechDiagnosis, path("wTechDiagnosis_full"));
    TakeConsole(path);
    TakeOutOfService(path);
    TakeRehearsal(path);
    engine.CommBus().setPortOpen(false);
}
