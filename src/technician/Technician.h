#pragma once

/// Makes the technician's screens known under their names.
void RegisterTechnician();
