#include "screens/menu/dlgMenuSystem.h"

#include "ui_dlgMenuSystem.h"

dlgMenuSystem::dlgMenuSystem()
    : MenuDialog(QStringLiteral("dlgMenuSystem"), Kind::Dialog) {
    Ui::dlgMenuSystem().setupUi(this);
    PrepareMenu();
}
