#include "config_screens/ConfigScreens.h"

#include "config_screens/panel/wBusPanneau.h"
#include "core/FormNames.h"
#include "core/Forms.h"

void RegisterConfigScreens() {}
