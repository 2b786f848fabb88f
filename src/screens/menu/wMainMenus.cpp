// Where the tiles of the main menu lead.

#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/menu/dlgMenuParams.h"
#include "screens/menu/dlgMenuSystem.h"
#include "screens/menu/wMain.h"
#include "screens/touch/ModalDialog.h"

#include <QPointer>
#include <QScopeGuard>
#include <utility>

namespace {

/// Buttons of the submenus.
enum ParameterCmd { Consignes = 1, Biblio = 2, Ecran = 3, Printer = 4 };
enum SystemCmd { Comm = 1, Sounds = 2, SystemTime = 3, Users = 4, Backup = 5 };

template <class Menu> int AskMenu() {
    return RunDialog(
               new Menu, [](Menu&) {}, [](const Menu& menu) { return int(menu.Cmd()); })
        .value_or(0);
}

void ShowConsole() {
    Forms::Show(FormNames::wRunAlarms);
    Forms::BringToFront(FormNames::wRunAlarms);
    Forms::UnloadAllBut({FormNames::wRunAlarms, FormNames::wPolling});
}

} // namespace

/// A dialog that closes asks for its submenu while the tile that opened it is not done yet.
void wMain::imgMenu_Click(int index) {
    nextTile_ = index;
    if (inTile_)
        return;
    inTile_ = true;
    const QPointer<wMain> self(this);
    const auto done = qScopeGuard([self] {
        if (self)
            self->inTile_ = false;
    });
    while (IsLoaded(self.data()) && nextTile_ >= 0)
        RunTile(MenuTile(std::exchange(nextTile_, -1)));
}

void wMain::RunTile(MenuTile tile) {
    switch (tile) {
    case MenuTile::BusModules:
        if (InsistOnLevel(*this, Levels::Configuration))
            Open(FormNames::wBusModules);
        break;
    case MenuTile::Parameters:
        if (InsistOnLevel(*this, Levels::Configuration))
            OpenParameters();
        break;
    case MenuTile::System:
        if (InsistOnLevel(*this, Levels::Configuration))
            OpenSystem();
        break;
    case MenuTile::RunMode:
        ShowConsole();
        break;
    case MenuTile::Technician:
        if (InsistOnLevel(*this, Levels::Technician))
            Open(FormNames::wTechnician);
        break;
    case MenuTile::Factory:
        break;
    }
}

void wMain::Open(const QString& name) {
    const QPointer<wMain> self(this);
    if (OpenScreen(name) && IsLoaded(self.data()))
        Unload();
}

/// What a new machine begins with.
void wMain::imgRestore_Click() {
    if (InsistOnLevel(*this, Levels::Configuration))
        Open(FormNames::wBackup);
}

void wMain::OpenParameters() {
    switch (AskMenu<dlgMenuParams>()) {
    case Consignes:
        Open(FormNames::wParamConsignes);
        break;
    case Biblio:
        Open(FormNames::wParamBiblio);
        break;
    case Ecran:
        Open(FormNames::wParamEcran);
        break;
    case Printer:
        Open(FormNames::wParamPrinter);
        break;
    default:
        break;
    }
}

void wMain::OpenSystem() {
    const QPointer<wMain> self(this);
    switch (AskMenu<dlgMenuSystem>()) {
    case Comm:
        Open(FormNames::wSysComm);
        break;
    case Sounds:
        Open(FormNames::wSysConfSon);
        break;
    case SystemTime:
        OpenDialog(FormNames::dlgSysTime);
        break;
    case Users:
        OpenDialog(FormNames::dlgDefPwds);
        if (Global::Configuration().Modified())
            SaveCurrent();
        if (IsLoaded(self.data()))
            ShowModified();
        break;
    case Backup:
        Open(FormNames::wBackup);
        break;
    default:
        break;
    }
}
