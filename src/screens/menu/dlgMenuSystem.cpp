#include "screens/menu/dlgMenuSystem.h"

#include "core/FormNames.h"
#include "ui_dlgMenuSystem.h"

dlgMenuSystem::dlgMenuSystem()
    : MenuDialog(FormNames::dlgMenuSystem, Kind::Dialog) {
    Ui::dlgMenuSystem().setupUi(this);
    PrepareMenu();
}
