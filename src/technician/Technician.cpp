#include "technician/Technician.h"

#include "core/FormNames.h"
#include "core/Forms.h"

void RegisterTechnician() {}
