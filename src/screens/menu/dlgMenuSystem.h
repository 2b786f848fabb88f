#pragma once

#include "screens/menu/MenuDialog.h"

/// The submenu of the system settings.
class dlgMenuSystem : public MenuDialog {
    Q_OBJECT
public:
    dlgMenuSystem();
};
