#include "screens/touch/Navigation.h"

#include "core/Config.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/ScreenForm.h"

namespace {

void TellMissing() {
    Message(GetText(612001), Messages::Information);
}

} // namespace

void ReturnToMenu(ScreenForm& screen, int tile) {
    Forms::Show(FormNames::wMain);
    screen.Unload();
    if (auto* menu = dynamic_cast<MainMenu*>(Forms::Find(FormNames::wMain)))
        menu->imgMenu_Click(tile);
}

bool OpenScreen(const QString& name) {
    Forms::Form* form = Forms::Load(name);
    if (form == nullptr) {
        TellMissing();
        return false;
    }
    form->Show();
    form->BringToFront();
    return true;
}

bool OpenDialog(const QString& name) {
    auto* dialog = dynamic_cast<ScreenForm*>(Forms::Load(name));
    if (dialog == nullptr) {
        TellMissing();
        return false;
    }
    RunDialog(
        dialog, [](ScreenForm&) {}, [](const ScreenForm&) { return true; });
    return true;
}
