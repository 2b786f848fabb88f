#include "config_screens/ConfigScreens.h"

#include "config_screens/backup/wBackup.h"
#include "config_screens/backup/wSiteCompare.h"
#include "config_screens/mirrors/dlgEditMirror.h"
#include "config_screens/mirrors/wBusMiroirs.h"
#include "config_screens/mirrors/wBusMirrorOne.h"
#include "config_screens/panel/wBusPanneau.h"
#include "config_screens/panels/dlgBusCopy.h"
#include "config_screens/panels/wBusModules.h"
#include "config_screens/printer/dlgParamPrinter.h"
#include "config_screens/printer/wParamPrinter.h"
#include "config_screens/system/dlgSysTime.h"
#include "config_screens/system/wParamEcran.h"
#include "config_screens/system/wSysComm.h"
#include "config_screens/system/wSysConfSon.h"
#include "config_screens/texts/wParamBiblio.h"
#include "config_screens/texts/wParamConsignes.h"
#include "core/FormNames.h"
#include "core/Forms.h"

void RegisterConfigScreens() {
    Forms::Register(FormNames::wBusMiroirs, [] { return new wBusMiroirs; });
    Forms::Register(FormNames::wBusMirrorOne, [] { return new wBusMirrorOne; });
    Forms::Register(FormNames::dlgEditMirror, [] { return new dlgEditMirror; });
    Forms::Register(FormNames::wBusModules, [] { return new wBusModules; });
    Forms::Register(FormNames::dlgBusCopy, [] { return new dlgBusCopy; });
    Forms::Register(FormNames::wBusPanneau, [] { return new wBusPanneau; });
    Forms::Register(FormNames::wParamBiblio, [] { return new wParamBiblio; });
    Forms::Register(FormNames::wParamConsignes, [] { return new wParamConsignes; });
    Forms::Register(FormNames::wParamEcran, [] { return new wParamEcran; });
    Forms::Register(FormNames::wParamPrinter, [] { return new wParamPrinter; });
    Forms::Register(FormNames::dlgParamPrinter, [] { return new dlgParamPrinter; });
    Forms::Register(FormNames::wSysComm, [] { return new wSysComm; });
    Forms::Register(FormNames::wSysConfSon, [] { return new wSysConfSon; });
    Forms::Register(FormNames::wBackup, [] { return new wBackup; });
    Forms::Register(FormNames::wSiteCompare, [] { return new wSiteCompare; });
    Forms::Register(FormNames::dlgSysTime, [] { return new dlgSysTime; });
}
