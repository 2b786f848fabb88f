#include "config_screens/ConfigForm.h"

#include "core/Config.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/Navigation.h"

#include <QLabel>
#include <QPointer>

namespace {
constexpr int KeepTheChanges = 30010;
} // namespace

ConfigForm::ConfigForm(const QString& name)
    : ScreenForm(name) {
    OnKey(Qt::Key_F1, [] { ShowHelp(); });
}

int ConfigForm::Question() const {
    return KeepTheChanges;
}

bool ConfigForm::AskForClose() {
    if (!Differs())
        return true;
    const QPointer<ConfigForm> self(this);
    const int answer = Message(GetText(Question()), Messages::Question | Messages::YesNoCancel);
    if (!IsLoaded(self.data()))
        return false;
    if (answer == Messages::Yes)
        return Take() && IsLoaded(self.data());
    if (answer != Messages::No)
        return false;
    Drop();
    return IsLoaded(self.data());
}

bool ConfigForm::Leave(const QString& form) {
    if (!AskForClose())
        return false;
    left_ = true;
    Forms::Show(form);
    Unload();
    return true;
}

bool ConfigForm::LeaveToMenu(int tile) {
    if (!AskForClose())
        return false;
    left_ = true;
    ReturnToMenu(*this, tile);
    return true;
}

bool ConfigForm::LeaveModal() {
    if (!AskForClose())
        return false;
    left_ = true;
    Unload();
    return true;
}

void ConfigForm::ShowKept(bool kept) {
    if (auto* note = findChild<QLabel*>(QStringLiteral("lblKept")))
        note->setVisible(kept);
}

void ConfigForm::Form_Unload() {
    if (!left_ && Differs())
        Keep();
    Closing();
}
