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

namespace {

class StartTest : public PlantTest {};

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
        Polling()->Form_Unload();
        Forms::UnloadAllBut({});
    }
    Messages::Install(nullptr);
    Boxes::Forget();
    Faults::Forget();
    Global::Get() = Global::State();
    Global::setConfiguration(nullptr);
}

} // namespace
