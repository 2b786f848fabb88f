#include "config_screens/ConfigScreens.h"

#include "core/FormNames.h"
#include "core/Forms.h"

void RegisterConfigScreens() {}
