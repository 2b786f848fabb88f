#pragma once

#include "support/ConfigScreensFixture.h"
#include "technician/Technician.h"

/// A bench with the technician's screens as well.
class TechnicianTest : public ConfigScreensTest {
protected:
    explicit TechnicianTest(const QString& form = {}, const QString& out = "imgNavig_5")
        : ConfigScreensTest(form, out) {
        RegisterTechnician();
    }
};
