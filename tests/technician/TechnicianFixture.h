#pragma once

#include "core/FormNames.h"
#include "model/CurrentConfig.h"
#include "support/ScreensFixture.h"
#include "support/Script.h"
#include "technician/Technician.h"

/// A bench with the technician's screens and a site of its own.
class TechnicianTest : public ScreensTest {
protected:
    TechnicianTest() {
        RegisterTechnician();
        Global::setConfiguration(nullptr);
    }
};
