#include "technician/Technician.h"

#include "core/FormNames.h"
#include "core/Forms.h"
#include "technician/wTechConsignations.h"

void RegisterTechnician() {
    Forms::Register(FormNames::wTechConsignations, [] { return new wTechConsignations; });
}
