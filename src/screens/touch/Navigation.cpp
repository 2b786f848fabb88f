#include "screens/touch/Navigation.h"

#include "core/Config.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "screens/touch/ScreenForm.h"

#include <QPointer>

namespace {

constexpr int Information = 64;

void TellMissing() {
    Message(GetText(612001), Information);
}

} // namespace

void ReturnToMenu(ScreenForm& screen, int tile) {
    Forms::Show(QStringLiteral("wMain"));
    screen.Unload();
    if (auto* menu = dynamic_cast<MainMenu*>(Forms::Find(QStringLiteral("wMain"))))
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
    const QPointer<ScreenForm> dialog(dynamic_cast<ScreenForm*>(Forms::Load(name)));
    if (!dialog) {
        TellMissing();
        return false;
    }
    dialog->ShowModal();
    if (dialog)
        dialog->Unload();
    return true;
}
