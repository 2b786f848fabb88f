#include "screens/Screens.h"

#include "core/Boxes.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "screens/Theme.h"
#include "screens/dlgConsigne.h"
#include "screens/dlgDefPwds.h"
#include "screens/dlgFilePicker.h"
#include "screens/dlgKeyboard.h"
#include "screens/dlgListInput.h"
#include "screens/dlgMenuParams.h"
#include "screens/dlgMenuSystem.h"
#include "screens/dlgMessage.h"
#include "screens/dlgUserCodes.h"
#include "screens/wHelp.h"
#include "screens/wHistoric.h"
#include "screens/wMain.h"
#include "screens/wPollingScreen.h"
#include "screens/wRunAlarms.h"
#include "screens/wTeleCmde.h"
#include "screens/wTeleCmdes.h"

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
