#include "technician/Technician.h"

#include "core/FormNames.h"
#include "core/Forms.h"
#include "technician/wTechDiagnosis.h"

void RegisterTechnician() {
    Forms::Register(FormNames::wTechDiagnosis, [] { return new wTechDiagnosis; });
}
