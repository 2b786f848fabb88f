// The start of the program inside the test: what comes onto the screen, and in which order.

#include "Startup.h"
#include "bus/wPolling.h"
#include "core/Boxes.h"
#include "core/Config.h"
#include "core/Faults.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/Message.h"
#include "screens/touch/ScreenForm.h"
#include "system/Processes.h"

#include <QApplication>

namespace {

/// Names of the forms in the order in which they came onto the screen, without the notices.
class Appearances : public QObject {
public:
    Appearances() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* form = qobject_cast<const ScreenForm*>(watched);
        if (form == nullptr || event->type() != QEvent::Show)
            return false;
        const auto* button = form->findChild<const QWidget*>("cmdButton_0");
        if (button == nullptr || !button->isHidden())
            names += form->Name();
        return false;
    }

    QStringList names;
};

class StartTest : public PlantTest {};

// Nothing can be written into the trace: that stands over the console and not ahead of it.
TEST_F(StartTest, ABoxOfTheStartComesOverTheConsole) {
    Save();
    QFile inTheWay(folder.Path("Trace"));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    const SimulatorProcess simulator(folder.Bus(), {"1=Q7100"});
    const Appearances shown;
    {
        Startup startup;
        ASSERT_TRUE(startup.Main());
        EXPECT_GT(Boxes::Unread(), 0);
        EXPECT_EQ(shown.names, QStringList({"wMain", "wRunAlarms", "dlgMessage"}));
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
