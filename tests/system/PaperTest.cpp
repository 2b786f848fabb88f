// What the program writes on paper, with a printer that is stuck.

#include "support/PipePrinter.h"
#include "system/Processes.h"

namespace {

class PaperTest : public PlantTest {
protected:
    PaperTest()
        : simulator_(folder.Bus(), {"1=Q7100", "2=Q7100"})
        , printer_(folder.Path("printer")) {
        IniWrite("Ports", "LPT1", folder.Path("printer"));
        for (int bit = 0; bit <= 4; ++bit)
            site.setOptionPrinter(bit, true);
        PanelClass& panel = Put(1);
        for (int number = 1; number <= PanelClass::MaxChannel; ++number)
            panel.Channel(number).setPrtAlm(true);
        Put(2);
        site.setPrtSettings("LPT1:");
        Save();
    }

    /// Place in the trace of the first line that holds a part; -1 without one.
    qsizetype TraceLine(const QString& part) const {
        return folder.Trace().indexOf(Traced(part).value(0));
    }
    void Alarms(int panel, int first, int last) {
        for (int channel = first; channel <= last; ++channel)
            simulator_.Do("active " + QByteArray::number(panel) + ' ' +
                          QByteArray::number(channel));
    }
    bool Prints(const char* part) {
        return Eventually([&] { return printer_.Paper().contains(part); }, 120);
    }

    SimulatorProcess simulator_;
    PipePrinter printer_;
};

} // namespace

TEST_F(PaperTest, AStuckPrinterHoldsUpNoAlarm) {
    constexpr int Last = 13;
    printer_.SwitchOn();
    ProgramProcess program(folder);
    ASSERT_TRUE(Comes("SYNCHR"));
    Alarms(1, 1, 1);
    ASSERT_TRUE(Prints("P01-C01"));

    printer_.Stick();
    Alarms(1, 2, Last);
    ASSERT_TRUE(Comes("P01-C02"));
    Alarms(2, 1, 1);
    ASSERT_TRUE(Comes("P02-C01"));
    ASSERT_TRUE(Comes("PRINTER ERROR"));
    EXPECT_LT(TraceLine("P02-C01"), TraceLine("PRINTER ERROR"))
        << "it came while the printer still had its time";
    ASSERT_TRUE(Comes("FAULT BEGINS PRINTER NOT REACHED"));

    // It prints again: what is missing is told, and the next alarm stands behind that.
    printer_.Paper();
    ASSERT_TRUE(Prints("\n12 events not printed, see history\r\n"))
        << printer_.Paper().toStdString();
    ASSERT_TRUE(Comes("FAULT ENDS   PRINTER NOT REACHED"));
    Alarms(1, Last + 1, Last + 1);
    ASSERT_TRUE(Prints("P01-C14"));
    EXPECT_FALSE(printer_.Paper().contains("P01-C02"));
}
