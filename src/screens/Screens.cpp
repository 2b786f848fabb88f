#include "screens/Screens.h"

#include "core/Boxes.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "screens/console/wRunAlarms.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/dialogs/dlgFilePicker.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/dlgMessage.h"
#include "screens/dialogs/dlgUserCodes.h"
#include "screens/dialogs/wHelp.h"
#include "screens/history/wHistoric.h"
#include "screens/menu/dlgDefPwds.h"
#include "screens/menu/dlgMenuParams.h"
#include "screens/menu/dlgMenuSystem.h"
#include "screens/menu/wMain.h"
#include "screens/menu/wPollingScreen.h"
#include "screens/remote/wTeleCmde.h"
#include "screens/remote/wTeleCmdes.h"
#include "screens/touch/Theme.h"

#include <QApplication>

void RegisterScreens() {
    if (qApp != nullptr)
        Theme::Apply(*qApp);
    Messages::Install(&dlgMessage::Present);
    Boxes::Install(&dlgMessage::PresentUnread);
    Messages::InstallNotice(&dlgMessage::PresentNotice);
    Forms::Register(QStringLiteral("dlgUserCodes"), [] { return new dlgUserCodes; });
    Forms::Register(QStringLiteral("dlgDefPwds"), [] { return new dlgDefPwds; });
    Forms::Register(QStringLiteral("dlgMenuParams"), [] { return new dlgMenuParams; });
    Forms::Register(QStringLiteral("dlgMenuSystem"), [] { return new dlgMenuSystem; });
    Forms::Register(QStringLiteral("wMain"), [] { return new wMain; });
    Forms::Register(QStringLiteral("wPolling"), [] { return new wPollingScreen; });
    Forms::Register(QStringLiteral("wRunAlarms"), [] { return new wRunAlarms; });
    Forms::Register(QStringLiteral("wTeleCmdes"), [] { return new wTeleCmdes; });
    Forms::Register(QStringLiteral("wTeleCmde"), [] { return new wTeleCmde; });
    Forms::Register(QStringLiteral("wHistoric"), [] { return new wHistoric; });
    Forms::Register(QStringLiteral("dlgConsigne"), [] { return new dlgConsigne; });
    Forms::Register(QStringLiteral("wHelp"), [] { return new wHelp; });
    Forms::Register(QStringLiteral("dlgListInput"), [] { return new dlgListInput; });
    Forms::Register(QStringLiteral("dlgKeyboard"), [] { return new dlgKeyboard; });
    Forms::Register(QStringLiteral("dlgFilePicker"), [] { return new dlgFilePicker; });
}
