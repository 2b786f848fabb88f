#include "screens/menu/dlgMenuParams.h"

#include "core/FormNames.h"
#include "ui_dlgMenuParams.h"

dlgMenuParams::dlgMenuParams()
    : MenuDialog(FormNames::dlgMenuParams, Kind::Dialog) {
    Ui::dlgMenuParams().setupUi(this);
    PrepareMenu();
}
