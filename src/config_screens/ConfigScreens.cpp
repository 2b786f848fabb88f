#include "config_screens/ConfigScreens.h"

#include "config_screens/panel/wBusPanneau.h"
#include "config_screens/texts/wParamBiblio.h"
#include "config_screens/texts/wParamConsignes.h"
#include "core/FormNames.h"
#include "core/Forms.h"

void RegisterConfigScreens() {
    Forms::Register(FormNames::wParamBiblio, [] { return new wParamBiblio; });
    Forms::Register(FormNames::wParamConsignes, [] { return new wParamConsignes; });
}
