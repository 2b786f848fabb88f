// Somebody taps anywhere on the technician's screens, the bus running or not.

#include "support/Monkey.h"
#include "TechnicianFixture.h"
#include "support/FakeModules.h"

namespace {

class TechnicianMonkey : public TechnicianTest, public ::testing::WithParamInterface<const char*> {
protected:
    TechnicianMonkey() {
        for (int address = 1; address <= ConfigClass::PanelCount; ++address) {
            Site().Panel(address).setModel(quint8(address % 6));
            Site().Panel(address).setActive(address % 3 != 0);
            if (address % 5 != 0)
                modules[address][132] = quint16(1 + address % 2);
        }
        link->answer = [this](const QByteArray& frame) { return modules.Answer(frame); };
    }

    FakeModules modules;
};

} // namespace

TEST_P(TechnicianMonkey, NoTapsHarmTheProgramOrTheSite) {
    const QString form = QString::fromLatin1(GetParam());
    for (const QString& other : {FormNames::wMain, FormNames::wHelp, FormNames::wRunAlarms})
        Forms::Register(other, [other] { return new Elsewhere(other); });
    AnswerAtRandom();
    Monkey monkey(form, 20240315);
    monkey.Run(MonkeyTaps());
    RemoveUnloaded();
    engine->setRun(false);
    const QString file = Path("monkey.kv2");
    ASSERT_EQ(Site().Save(file), ConfigClass::Saved);
    ConfigClass again;
    EXPECT_EQ(again.Read(file), 0);
    EXPECT_EQ(again.Panel(1).Model(), Site().Panel(1).Model());
}

INSTANTIATE_TEST_SUITE_P(EachScreen, TechnicianMonkey,
                         ::testing::Values("wTechnician", "wTechFindPanels", "wTechEtatModule",
                                           "wTechConsignations", "wTechDiagnosis"),
                         [](const auto& screen) { return std::string(screen.param); });
