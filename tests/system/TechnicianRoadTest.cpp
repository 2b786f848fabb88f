// A technician with the screen alone: what hangs on the bus is found, taken into the site and
// watched.

#include "bus/BusDiagnosis.h"
#include "core/FormNames.h"
#include "screens/touch/ScreenForm.h"
#include "screens/touch/TouchTable.h"
#include "support/Road.h"
#include "support/Script.h"

namespace {

const QString Console = FormNames::wTechnician;
const QString Finder = FormNames::wTechFindPanels;

/// Six addresses are silent.
bool IsSilent(int address) {
    return address % 13 == 3 || address == 64;
}

/// The models by turns. What the search reports of a `P5000` is a `Q7100`. Those that refuse a
/// register cost the whole wait for its reply each time, and are few.
quint8 ModelAt(int address) {
    switch (address % 32) {
    case 5:
        return Models::Q7000;
    case 10:
        return Models::P5000;
    case 14:
        return Models::P5500;
    default:
        return address % 4 == 0 ? Models::Q7100 : Models::Q6200XT;
    }
}
int FoundAt(int address) {
    if (IsSilent(address))
        return Models::None;
    return ModelAt(address) == Models::P5000 ? int(Models::Q7100) : int(ModelAt(address));
}

QStringList ModulesOnTheBus() {
    QStringList modules;
    for (int address = 1; address <= ConfigClass::PanelCount; ++address) {
        if (!IsSilent(address))
            modules += QString::number(address) + u'=' + ModuleName(ModelAt(address));
    }
    return modules;
}

class TechnicianRoad : public Road {
protected:
    TechnicianRoad()
        : Road(ModulesOnTheBus(), false) {
        Forms::Show(Console);
    }

    static TouchTable* Grid() { return Find<TouchTable>(Finder, "grdPanels"); }
    static void TakeAll() {
        for (int address = 1; address <= ConfigClass::PanelCount; ++address) {
            Grid()->SelectTag(QString::number(address));
            Tap(Finder, "imgCommand_2");
            if (FoundAt(address) != Models::None)
                Tap(Finder, "imgCommand_1");
        }
    }

    Script script;
};

} // namespace

TEST_F(TechnicianRoad, ABusOf64AddressesIsFoundTakenOverAndWatched) {
    // What the papers say is wrong three times.
    for (const int address : {1, 12, 40}) {
        ASSERT_NE(FoundAt(address), Models::P5500);
        Site().Panel(address).setModel(Models::P5500);
    }
    script.On(Finder, [&] {
        Tap(Finder, "imgFind_1");
        for (int address = 1; address <= ConfigClass::PanelCount; ++address)
            EXPECT_EQ(Grid()->Cell(address - 1, 4), ModuleName(FoundAt(address))) << address;
        TakeAll();
        Tap(Finder, "imgNavig_5");
    });
    Tap(Console, "cmdFindPanels");
    int watched = 0;
    for (int address = 1; address <= ConfigClass::PanelCount; ++address) {
        const PanelClass& panel = Site().Panel(address);
        EXPECT_EQ(panel.Model(), FoundAt(address)) << address;
        EXPECT_EQ(panel.Active(), FoundAt(address) != Models::None) << address;
        watched += panel.Active() ? 1 : 0;
    }
    EXPECT_EQ(watched, 58);
    EXPECT_EQ(engine->Diagnosis().LastOf(3), BusDiagnosis::Outcome::NoAnswer);

    // The first start makes PC and modules agree.
    Tap(Console, "imgStopRun_1");
    EXPECT_TRUE(Until([&] { return engine->State() == BusState::Running; }));
    EXPECT_TRUE(Until([&] {
        for (int address = 1; address <= ConfigClass::PanelCount; ++address) {
            if (Site().Panel(address).Active() && !Site().Panel(address).Present())
                return false;
        }
        return true;
    }));
    for (int address = 1; address <= ConfigClass::PanelCount; ++address)
        EXPECT_EQ(Site().Panel(address).ActualModel(), FoundAt(address)) << address;
    EXPECT_TRUE(engine->MissingPanels().isEmpty());
}
