#include "technician/Technician.h"

#include "core/FormNames.h"
#include "core/Forms.h"
#include "technician/wTechEtatModule.h"

void RegisterTechnician() {
    Forms::Register(FormNames::wTechEtatModule, [] { return new wTechEtatModule; });
}
