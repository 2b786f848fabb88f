// Where the tiles of the main menu lead.

#include "core/Forms.h"
#include "core/Global.h"
#include "model/CurrentConfig.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/menu/dlgMenuParams.h"
#include "screens/menu/dlgMenuSystem.h"
#include "screens/menu/wMain.h"

#include <QPointer>
#include <QScopeGuard>
#include <utility>

namespace {

constexpr int ConfigurationLevel = 2;
constexpr int TechnicianLevel = 3;

/// Buttons of the submenus.
enum ParameterCmd { Consignes = 1, Biblio = 2, Ecran = 3, Printer = 4 };
enum SystemCmd { Comm = 1, Sounds = 2, SystemTime = 3, Users = 4 };

template <class Menu> int AskMenu() {
    const QPointer<Menu> menu(new Menu);
    menu->ShowModal();
    if (!menu)
        return 0;
    const int cmd = menu->Cmd();
    menu->Unload();
    return cmd;
}

void ShowConsole() {
    const QString console = QStringLiteral("wRunAlarms");
    Forms::Show(console);
    Forms::BringToFront(console);
    Forms::UnloadAllBut({console, QStringLiteral("wPolling")});
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
        if (Insist(ConfigurationLevel))
            Open(QStringLiteral("wBusModules"));
        break;
    case MenuTile::Parameters:
        if (Insist(ConfigurationLevel))
            OpenParameters();
        break;
    case MenuTile::System:
        if (Insist(ConfigurationLevel))
            OpenSystem();
        break;
    case MenuTile::RunMode:
        ShowConsole();
        break;
    case MenuTile::Technician:
        if (Insist(TechnicianLevel))
            Open(QStringLiteral("wTechnician"));
        break;
    case MenuTile::Factory:
        break;
    }
}

bool wMain::Insist(int level) {
    const QPointer<wMain> self(this);
    const bool reached = InsistOnLevel(*this, level);
    // Any code may have changed the level, one that isn't enough as well.
    if (IsLoaded(self.data()))
        ShowLogin();
    return reached;
}

void wMain::AskLogin() {
    const QPointer<wMain> self(this);
    AskPassword(this);
    if (IsLoaded(self.data()))
        ShowLogin();
}

void wMain::Open(const QString& name) {
    const QPointer<wMain> self(this);
    if (OpenScreen(name) && IsLoaded(self.data()))
        Unload();
}

void wMain::OpenParameters() {
    switch (AskMenu<dlgMenuParams>()) {
    case Consignes:
        Open(QStringLiteral("wParamConsignes"));
        break;
    case Biblio:
        Open(QStringLiteral("wParamBiblio"));
        break;
    case Ecran:
        Open(QStringLiteral("wParamEcran"));
        break;
    case Printer:
        Open(QStringLiteral("wParamPrinter"));
        break;
    default:
        break;
    }
}

void wMain::OpenSystem() {
    const QPointer<wMain> self(this);
    switch (AskMenu<dlgMenuSystem>()) {
    case Comm:
        Open(QStringLiteral("wSysComm"));
        break;
    case Sounds:
        Open(QStringLiteral("wSysConfSon"));
        break;
    case SystemTime:
        OpenDialog(QStringLiteral("dlgSysTime"));
        break;
    case Users:
        OpenDialog(QStringLiteral("dlgDefPwds"));
        if (Global::Configuration().Modified())
            SaveCurrent();
        if (IsLoaded(self.data()))
            ShowModified();
        break;
    default:
        break;
    }
}
