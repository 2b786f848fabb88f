#pragma once

#include "screens/menu/MenuDialog.h"

/// The submenu of the general parameters.
class dlgMenuParams : public MenuDialog {
    Q_OBJECT
public:
    dlgMenuParams();
};
