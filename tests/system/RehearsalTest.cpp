// A rehearsal through the real windows, with the real engine and the simulator of the program.

#include "core/Rehearsal.h"
#include "bus/SimulatedPlant.h"
#include "core/FormNames.h"
#include "model/SimulatedSite.h"
#include "platform/Clock.h"
#include "platform/Replacement.h"
#include "screens/touch/TouchGuard.h"
#include "simulator/Scenario.h"
#include "support/Road.h"

#include <QTimer>

namespace {

class RehearsalRoad : public Road {
protected:
    RehearsalRoad()
        : Road({"1=Q7100", "4=Q6200XT"}) {
        Rehearsal::OverrideSimulator(
            QStringLiteral(KORVANELLE_BUILD_DIR "/simulator/korvanelle-sim"));
    }
    ~RehearsalRoad() override {
        Rehearsal::Override(false);
        Rehearsal::OverrideSimulator(QString());
        platform::Replacement::Forget();
    }
};

} // namespace

TEST_F(RehearsalRoad, BeginsBesideAStoppedBusAlone) {
    Forms::Show(FormNames::wTechnician);
    engine->setRun(true);
    Tap(FormNames::wTechnician, "cmdRehearse");
    EXPECT_EQ(boxes, QStringList{GetText(718011)});
    EXPECT_FALSE(platform::Replacement::IsAsked());
    engine->setRun(false);
    Tap(FormNames::wTechnician, "cmdRehearse");
    EXPECT_TRUE(platform::Replacement::IsAsked());
    EXPECT_EQ(Traced("REHEARSAL BEGINS").size(), 1);
    EXPECT_EQ(NbInstances(FormNames::wTechnician), 0);
}

TEST_F(RehearsalRoad, PlaysThePolledPanelsOfTheSite) {
    Site().Panel(2).setModel(Models::P5500);
    Site().Panel(3).setActive(true);
    const auto scenario = Sim::ParseScenario(SimulatedSite::ScenarioOf(Site()).toStdString());
    ASSERT_EQ(scenario.modules.size(), 2U);
    EXPECT_EQ(scenario.modules[1].address, 4);
    EXPECT_EQ(scenario.modules[1].model, Sim::Model::Q6200XT);
    // A site that is saved in a rehearsal is the plant's.
    Site().setPrtSettings("COM2:9600,N,8,1");
    Rehearsal::Override(true);
    QFile prints(Rehearsal::Prints());
    ASSERT_TRUE(prints.open(QIODevice::ReadWrite));
    engine->SetupPrinter();
    EXPECT_EQ(engine->dpPrinter().PrintLine("line"), QString());
    EXPECT_EQ(prints.readAll(), "line\r\n");
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(Site().PrtSettings(), "COM2:9600,N,8,1");
    Forms::Show(FormNames::wSysForward);
    EXPECT_FALSE(Find(FormNames::wSysForward, "chkSyslog")->isEnabled());
}

// The strip of the console leads to the modules, an alarm that is raised there back to the console.
TEST_F(RehearsalRoad, AnAlarmIsRaisedAndTheSimulatorsDeathMended) {
    Rehearsal::Override(true);
    SimulatedPlant plant;
    ASSERT_TRUE(plant.Start());
    engine->setRun(true);
    Forms::Show(FormNames::wRunAlarms);
    QTimer opener;
    opener.callOnTimeout([&] {
        const Forms::Form* modules = Forms::Find(FormNames::wRehearsal);
        if (modules == nullptr || !modules->Visible())
            return;
        opener.stop();
        Tap(FormNames::wRehearsal, "imgChannel_3");
    });
    opener.start(20);
    // The console takes no touch before its operator can have seen what it shows.
    dynamic_cast<QWidget*>(Forms::Find(FormNames::wRunAlarms))->grab();
    platform::Clock::Current().Sleep(TouchGuard::HoldMs);
    Tap(FormNames::wRunAlarms, "lblRehearsal");
    EXPECT_TRUE(Until([] { return Rows().size() == 1; }));
    EXPECT_TRUE(Rows().value(0).contains("P01-C03"));
    EXPECT_EQ(NbInstances(FormNames::wRehearsal), 0);
    EXPECT_EQ(folder.History().filter("P01-C03").size(), 1);

    const qint64 first = plant.Process();
    ::kill(pid_t(first), SIGKILL);
    ASSERT_TRUE(Until([&] { return plant.Process() != first && plant.Process() > 0; }));
    EXPECT_TRUE(boxes.contains(GetText(718031)));
    Forms::Show(FormNames::wRehearsal);
    Tap(FormNames::wRehearsal, "optContact_2");
    Tap(FormNames::wRehearsal, "imgChannel_5");
    EXPECT_TRUE(Until([&] { return !Traced("P01-C05 Alarm  CABLE").isEmpty(); }));
    EXPECT_GE(Traced("P01-C03 State  ACTIVE").size(), 2) << "the wiring is as it was";

    std::optional<Rehearsal::Ending> over;
    QObject::connect(&plant, &SimulatedPlant::Over, &plant,
                     [&](Rehearsal::Ending ending) { over = ending; });
    for (int minute = 0; minute < 59; ++minute)
        plant.Attendance().Check();
    EXPECT_EQ(over, std::nullopt);
    plant.Attendance().Check();
    EXPECT_EQ(over, Rehearsal::Ending::Unattended);

    Forms::Show(FormNames::wRehearsal);
    Tap(FormNames::wRehearsal, "cmdEnd");
    EXPECT_EQ(boxes.last(), GetText(718022) + "\r\n" + GetText(718023)) << "no start by itself";
    EXPECT_TRUE(platform::Replacement::IsAsked());
    EXPECT_FALSE(engine->Run());
}
