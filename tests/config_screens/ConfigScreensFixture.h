#pragma once

#include "config_screens/ConfigScreens.h"
#include "core/FormNames.h"
#include "model/CurrentConfig.h"
#include "support/ScreensFixture.h"

/// A bench with the screens of the configuration and a site of its own.
class ConfigScreensTest : public ScreensTest {
protected:
    ConfigScreensTest() {
        RegisterConfigScreens();
        Global::setConfiguration(nullptr);
    }

    static ConfigClass& Site() { return Global::Configuration(); }
    /// A control of a form by its class.
    template <class W> static W* Find(const QString& form, const QString& name) {
        return qobject_cast<W*>(Child(form, name));
    }
    /// An alarm comes: the console takes the display and unloads what is open.
    static void AlarmComes() {
        Forms::Show(FormNames::wRunAlarms);
        Forms::GiveWayTo({FormNames::wPolling, FormNames::wRunAlarms});
        RemoveUnloaded();
    }
};
