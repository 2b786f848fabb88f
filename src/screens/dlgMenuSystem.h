#pragma once

#include "screens/MenuDialog.h"

/// The submenu of the system settings.
class dlgMenuSystem : public MenuDialog {
    Q_OBJECT
public:
    dlgMenuSystem();
};
