#include "screens/Screens.h"

#include "core/Forms.h"
#include "core/Message.h"
#include "screens/Theme.h"
#include "screens/dlgMessage.h"
#include "screens/wMain.h"
#include "screens/wPollingScreen.h"
#include "screens/wRunAlarms.h"

#include <QApplication>

void RegisterScreens() {
    if (qApp != nullptr)
        Theme::Apply(*qApp);
    Messages::Install(&dlgMessage::Present);
    Messages::InstallNotice(&dlgMessage::PresentNotice);
    Forms::Register(QStringLiteral("wMain"), [] { return new wMain; });
    Forms::Register(QStringLiteral("wPolling"), [] { return new wPollingScreen; });
    Forms::Register(QStringLiteral("wRunAlarms"), [] { return new wRunAlarms; });
}
