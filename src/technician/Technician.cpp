#include "technician/Technician.h"

#include "core/FormNames.h"
#include "core/Forms.h"
#include "technician/wTechFindPanels.h"

void RegisterTechnician() {
    Forms::Register(FormNames::wTechFindPanels, [] { return new wTechFindPanels; });
}
