#include "technician/Technician.h"

#include "core/FormNames.h"
#include "core/Forms.h"
#include "technician/dlgOutOfService.h"
#include "technician/wRehearsal.h"
#include "technician/wTechConsignations.h"
#include "technician/wTechDiagnosis.h"
#include "technician/wTechEtatModule.h"
#include "technician/wTechFindPanels.h"
#include "technician/wTechnician.h"

void RegisterTechnician() {
    Forms::Register(FormNames::wTechnician, [] { return new wTechnician; });
    Forms::Register(FormNames::wTechFindPanels, [] { return new wTechFindPanels; });
    Forms::Register(FormNames::wTechEtatModule, [] { return new wTechEtatModule; });
    Forms::Register(FormNames::wTechConsignations, [] { return new wTechConsignations; });
    Forms::Register(FormNames::wRehearsal, [] { return new wRehearsal; });
    Forms::Register(FormNames::dlgOutOfService, [] { return new dlgOutOfService; });
    Forms::Register(FormNames::wTechDiagnosis, [] { return new wTechDiagnosis; });
}
