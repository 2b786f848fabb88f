#include "screens/menu/dlgMenuParams.h"

#include "ui_dlgMenuParams.h"

dlgMenuParams::dlgMenuParams()
    : MenuDialog(QStringLiteral("dlgMenuParams"), Kind::Dialog) {
    Ui::dlgMenuParams().setupUi(this);
    PrepareMenu();
}
