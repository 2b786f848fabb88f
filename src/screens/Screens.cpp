#include "screens/Screens.h"

#include "core/Boxes.h"
#include "core/FormNames.h"
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
#include "screens/history/dlgHistoryPeriod.h"
#include "screens/history/wHistoric.h"
#include "screens/history/wHistorySearch.h"
#include "screens/menu/dlgDefPwds.h"
#include "screens/menu/dlgMenuParams.h"
#include "screens/menu/dlgMenuSystem.h"
#include "screens/menu/wMain.h"
#include "screens/menu/wPollingScreen.h"
#include "screens/remote/wTeleCmde.h"
#include "screens/remote/wTeleCmdes.h"
#include "screens/report/wAlarmReport.h"
#include "screens/touch/Theme.h"

#include <QApplication>

void RegisterScreens() {
    if (qApp != nullptr)
        Theme::Apply(*qApp);
    Messages::Install(&dlgMessage::Present);
    Boxes::Install(&dlgMessage::PresentUnread);
    Messages::InstallNotice(&dlgMessage::PresentNotice);
    Forms::Register(FormNames::dlgUserCodes, [] { return new dlgUserCodes; });
    Forms::Register(FormNames::dlgDefPwds, [] { return new dlgDefPwds; });
    Forms::Register(FormNames::dlgMenuParams, [] { return new dlgMenuParams; });
    Forms::Register(FormNames::dlgMenuSystem, [] { return new dlgMenuSystem; });
    Forms::Register(FormNames::wMain, [] { return new wMain; });
    Forms::Register(FormNames::wPolling, [] { return new wPollingScreen; });
    Forms::Register(FormNames::wRunAlarms, [] { return new wRunAlarms; });
    Forms::Register(FormNames::wTeleCmdes, [] { return new wTeleCmdes; });
    Forms::Register(FormNames::wTeleCmde, [] { return new wTeleCmde; });
    Forms::Register(FormNames::wHistoric, [] { return new wHistoric; });
    Forms::Register(FormNames::wAlarmReport, [] { return new wAlarmReport; });
    Forms::Register(FormNames::wHistorySearch, [] { return new wHistorySearch; });
    Forms::Register(FormNames::dlgHistoryPeriod, [] { return new dlgHistoryPeriod; });
    Forms::Register(FormNames::dlgConsigne, [] { return new dlgConsigne; });
    Forms::Register(FormNames::wHelp, [] { return new wHelp; });
    Forms::Register(FormNames::dlgListInput, [] { return new dlgListInput; });
    Forms::Register(FormNames::dlgKeyboard, [] { return new dlgKeyboard; });
    Forms::Register(FormNames::dlgFilePicker, [] { return new dlgFilePicker; });
}
