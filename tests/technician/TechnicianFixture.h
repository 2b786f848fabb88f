#pragma once

#include "model/Models.h"
#include "screens/touch/TouchTable.h"
#include "support/ConfigScreensFixture.h"
#include "support/FakeModules.h"
#include "technician/Technician.h"

/// A bench with the technician's screens as well, and modules at the far end of an open line.
class TechnicianTest : public ConfigScreensTest {
protected:
    explicit TechnicianTest(const QString& form = {}, const QString& out = "imgNavig_5")
        : ConfigScreensTest(form, out) {
        RegisterTechnician();
        link->setPortOpen(true);
        link->answer = [this](const QByteArray& frame) { return modules.Answer(frame); };
    }

    FakeModules modules;
};
