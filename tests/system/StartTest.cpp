// The start of the program inside the test: what stands on the screen after it.

#include "Startup.h"
#include "bus/wPolling.h"
#include "core/Boxes.h"
#include "core/Config.h"
#include "core/Faults.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/Message.h"
#include "system/Processes.h"

#include <QRegularExpression>

namespace {

class StartTest : public PlantTest {
protected:
    ~StartTest() override {
        Messages::Install(nullptr);
        Boxes::Forget();
        Faults::Forget();
        Global::Get() = Global::State();
        Global::setConfiguration(nullptr);
    }
    static void End() {
        Polling()->Form_Unload();
        Forms::UnloadAllBut({});
    }
};

// Nothing can be written into the trace: that stands over the console and not ahead of it.
TEST_F(StartTest, ABoxOfTheStartComesOverTheConsole) {
    Save();
    QFile inTheWay(folder.Path("Trace"));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    const SimulatorProcess simulator(folder.Bus(), {"1=Q7100"});
    {
        Startup startup;
        ASSERT_TRUE(startup.Main());
        EXPECT_GT(Boxes::Unread(), 0);
        for (const char* name : {"wRunAlarms", "dlgMessage"}) {
            const Forms::Form* form = Forms::Find(name);
            EXPECT_TRUE(form != nullptr && form->Visible()) << name;
        }
        End();
    }
}

// A panel whose time was over while the program was off, and a channel that is out for ever.
TEST_F(StartTest, WhatIsOutOfServiceIsTakenUp) {
    Put(1).setActive(false);
    Save();
    const QString shift = "2024-01-01 08:00:00\t2024-01-01 16:00:00\t\t\t\t\tDUPONT\tTest";
    const QString forEver = "2024-01-01 08:00:00\t\t\t\t\t\tDUPONT\t";
    IniWriteSection("OutOfService", {{"1.0", shift}, {"1.5", forEver}});
    const SimulatorProcess simulator(folder.Bus(), {"1=Q7100"});
    {
        Startup startup;
        ASSERT_TRUE(startup.Main());
        EXPECT_TRUE(Global::Configuration().Panel(1).Active());
        EXPECT_TRUE(Global::Configuration().Panel(1).Channel(5).OutOfOrder());
        End();
    }
    const QStringList trace =
        folder.Trace().filter(QRegularExpression("APPLI  START|SERV   BACK|COMM   START"));
    ASSERT_EQ(trace.size(), 3);
    EXPECT_TRUE(trace[1].contains("P01-Q71 SERV   BACK   Automatic, time is over    Test"));
    EXPECT_EQ(site.Read(CurrentConfigFile()), ConfigClass::ReadDone);
    EXPECT_TRUE(site.Panel(1).Active()) << "and kept";
}

} // namespace
