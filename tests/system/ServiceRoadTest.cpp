// A channel taken out of service by touch for a shift: who, why and until when stand on its list
// and in the history, its alarm is swallowed meanwhile, and told when it comes back by itself.

#include "core/FormNames.h"
#include "model/OutOfService.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/touch/TouchTable.h"
#include "support/LeadingClock.h"
#include "support/Road.h"
#include "support/Script.h"

#include <QLabel>

namespace {

class ServiceRoad : public Road {
protected:
    ServiceRoad()
        : Road({"1=Q7100"}) {
        for (int bit = 0; bit <= 4; ++bit) {
            Site().setOptionScreen(bit, bit != 3);
            Site().setOptionHisto(bit, true);
        }
        Global::Get().userLevel = 3;
        Global::Get().userName = "DUPONT";
        engine->setRun(true);
    }
    /// Steps to channel 7 of panel 1 and does with it what a button says.
    static void TakeChannel(const QString& button) {
        Tap(List, "imgControl_5");
        for (int step = 0; step < 7; ++step)
            Tap(List, "imgControl_1");
        Tap(List, button);
    }
    QStringList History() const { return folder.History().filter("P01-C07"); }

    inline static const QString List = FormNames::wTechConsignations;
    inline static const QString Dialog = FormNames::dlgOutOfService;
    LeadingClock clock;
};

} // namespace

TEST_F(ServiceRoad, AChannelIsOutForAShiftAndComesBackByItself) {
    Forms::Show(List);
    {
        Script script;
        // The third reason of the site gets other words and is taken for a shift.
        script.On(Dialog, [] { Tap(Dialog, "imgEdit_2"); });
        script.On(FormNames::dlgKeyboard, [] {
            dynamic_cast<dlgKeyboard*>(Forms::Find(FormNames::dlgKeyboard))->setText("Pump pit");
            Tap(FormNames::dlgKeyboard, "imgControl_1");
        });
        script.On(Dialog, [] {
            Tap(Dialog, "imgReason_2");
            Tap(Dialog, "imgEnd_0");
            Tap(Dialog, "imgControl_1");
        });
        Tap(List, "imgReason");
    }
    EXPECT_EQ(OutOfService::Reasons()[2], "Pump pit");
    TakeChannel("imgControl_2");
    Tap(List, "imgNavig_5");
    ASSERT_EQ(History().size(), 1);
    EXPECT_EQ(History()[0].mid(55).simplified(), "Out of service DUPONT Pump pit");

    Forms::Show(List);
    Tap(List, "imgNavig_103");
    const QString detail = Find<QLabel>(List, "lblDetail")->text();
    EXPECT_TRUE(detail.contains(", by DUPONT, until ") && detail.endsWith("\nPump pit"))
        << detail.toStdString();
    Tap(List, "imgNavig_5");

    simulator.Do("active 1 7");
    simulator.Do("active 1 8");
    ASSERT_TRUE(Until([&] { return !Traced("P01-C08").isEmpty(); }));
    EXPECT_EQ(History().size(), 1) << "nobody is told";
    clock.Lead(8.1 / 24);
    ASSERT_TRUE(Until([] { return !Rows().filter("P01-C07").isEmpty(); }));
    ASSERT_EQ(History().size(), 3);
    EXPECT_EQ(History()[1].mid(55).simplified(),
              "Back in service Automatic, time is over Pump pit");
    EXPECT_EQ(Traced("SERV   BACK").size(), 1);
}
