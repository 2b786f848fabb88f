// The port of the bus, on a line that opens when the test lets it.

#include "ConfigScreensFixture.h"
#include "PortsOfTest.h"

namespace {

class SysCommTest : public ConfigScreensTest {
protected:
    SysCommTest() {
        Site().setBusSettings(QStringLiteral("COM3:19200,N,8,2"));
        engine->ConfigCommPort();
        engine->setRun(true);
        Forms::Show(Form);
    }

    QString Values() {
        QStringList values;
        for (const char* label : {"lblBusPort", "lblBusSpeed", "lblBusStop", "lblAutoStart"})
            values += TextOf(Form, QString::fromLatin1(label));
        return values.join(u' ');
    }
    /// Goes to a field, 0 the port, and chooses a value.
    void Change(int field, const QString& value) {
        for (int i = 0; i < 4; ++i)
            Tap(Form, QStringLiteral("imgBusDir_0"));
        for (int i = 0; i < field; ++i)
            Tap(Form, QStringLiteral("imgBusDir_1"));
        EXPECT_EQ(TextOf(Form, QStringLiteral("lblBusPointer")), QString::number(field + 1));
        Choose(Form, QStringLiteral("imgBusModif"), value);
    }
    void ChooseDevice(int row) {
        Script script;
        script.On(FormNames::dlgPortDevice, [&] {
            Find<QListWidget>(FormNames::dlgPortDevice, QStringLiteral("lstDevices"))
                ->setCurrentRow(row);
            Tap(FormNames::dlgPortDevice, QStringLiteral("imgControl_1"));
        });
        Tap(Form, QStringLiteral("lblPortDevice"));
    }
    void Leave(int reply) {
        answer = reply;
        Tap(Form, QStringLiteral("imgNavig_0"));
        RemoveUnloaded();
    }
    QString Device() { return SLVfonctions::DevicePath(QStringLiteral("COM3")); }

    PortsOfTest ports;
    const QString Form = FormNames::wSysComm;
};

} // namespace

TEST_F(SysCommTest, SpeedStopBitsAndStartWaitForTheAnswer) {
    EXPECT_EQ(Values(), QStringLiteral("3 19200 2 No"));
    Change(1, QStringLiteral("4800"));
    Change(2, QStringLiteral("1"));
    Change(3, GetText(10002));
    EXPECT_EQ(Values(), QStringLiteral("3 4800 1 Yes"));
    EXPECT_EQ(link->Settings(), QStringLiteral("19200,N,8,2"));
    Leave(Messages::Yes);
    EXPECT_EQ(link->Settings(), QStringLiteral("4800,N,8,1"));
    EXPECT_EQ(Site().BusSettings(), QStringLiteral("COM3:4800,N,8,1"));
    EXPECT_TRUE(Site().AutoStart());
    EXPECT_TRUE(engine->Run());
    EXPECT_EQ(Screen(Form), nullptr);
}

TEST_F(SysCommTest, APortTouchesTheBusAtOnce) {
    Change(0, QStringLiteral("255"));
    EXPECT_EQ(link->CommPort(), 255);
    EXPECT_TRUE(link->PortOpen());
    EXPECT_TRUE(engine->Run());
    EXPECT_EQ(TextOf(Form, QStringLiteral("lblBusConfig_5")), QStringLiteral("255"));
    EXPECT_EQ(Site().BusSettings(), QStringLiteral("COM3:19200,N,8,2"));
    Leave(Messages::No);
    EXPECT_EQ(link->CommPort(), 3) << "the answer no puts it back";
    EXPECT_TRUE(engine->Run());
    EXPECT_EQ(Site().BusSettings(), QStringLiteral("COM3:19200,N,8,2"));
}

TEST_F(SysCommTest, APortThatFailsLeavesThePollingStoppedUntilOneWorks) {
    link->canOpen = false;
    Change(0, QStringLiteral("9"));
    EXPECT_EQ(boxes.last(), GetText(630100));
    EXPECT_EQ(styles.last(), 48);
    EXPECT_FALSE(engine->Run());
    EXPECT_NE(Screen(Form), nullptr);
    link->canOpen = true;
    Leave(Messages::No);
    EXPECT_EQ(link->CommPort(), 3);
    EXPECT_TRUE(link->PortOpen());
    EXPECT_TRUE(engine->Run()) << "the watch of the bus goes on";
}

TEST_F(SysCommTest, AnEmptyFieldIsNotTaken) {
    Leave(Messages::Cancel);
    Site().setBusSettings(QString());
    Forms::Show(Form);
    EXPECT_EQ(Values(), QStringLiteral("   No"));
    Change(1, QStringLiteral("9600"));
    Leave(Messages::Yes);
    EXPECT_EQ(boxes.last(), GetText(20006));
    EXPECT_EQ(styles.last(), 16);
    EXPECT_NE(Screen(Form), nullptr);
    Change(0, QStringLiteral("4"));
    Change(2, QStringLiteral("1"));
    Leave(Messages::Yes);
    EXPECT_EQ(Site().BusSettings(), QStringLiteral("COM4:9600,N,8,1"));
}

TEST_F(SysCommTest, TheDeviceOfThePortIsNamedInTheSettings) {
    const QString before = Device();
    const QString adapter = ports.AddSerial(QStringLiteral("ttyUSB0"), QStringLiteral("FTDI"));
    ChooseDevice(1);
    EXPECT_EQ(Device(), ports.Lasting(adapter));
    EXPECT_TRUE(TextOf(Form, QStringLiteral("lblPortDevice")).startsWith(QStringLiteral("FTDI")));
    EXPECT_TRUE(engine->Run());
    Leave(Messages::No);
    EXPECT_EQ(Device(), before);
    Forms::Show(Form);
    ChooseDevice(1);
    Leave(Messages::Yes);
    EXPECT_EQ(Device(), ports.Lasting(adapter));

    Forms::Show(Form);
    Site().setPrtSettings(QStringLiteral("COM8:"));
    Change(0, QStringLiteral("8"));
    EXPECT_EQ(boxes.last(), GetText(630231)) << "the printer has it";
    EXPECT_EQ(link->CommPort(), 3);
}

TEST_F(SysCommTest, TheDirectionIsSwitchedAtOnceAndGoesBackWithTheAnswerNo) {
    const auto isRs485 = [] { return SLVfonctions::PortOf(QStringLiteral("COM3")).rs485; };
    const auto openings = link->openings;
    const QString device = Device();
    link->features.rs485 = platform::LineFeatures::Answer::Refused;
    Tap(Form, QStringLiteral("chkRs485"));
    EXPECT_TRUE(isRs485());
    EXPECT_EQ(link->openings, openings + 1);
    EXPECT_TRUE(engine->Run());
    EXPECT_TRUE(TextOf(Form, QStringLiteral("lblPortUse")).endsWith(GetText(301321)));
    Leave(Messages::No);
    EXPECT_FALSE(isRs485());
    EXPECT_EQ(link->openings, openings + 2);
    Forms::Show(Form);
    Tap(Form, QStringLiteral("chkRs485"));
    Leave(Messages::Yes);
    EXPECT_TRUE(isRs485());
    EXPECT_EQ(Device(), device);
}

TEST_F(SysCommTest, AnAlarmPutsTheBusBackAndKeepsTheEdit) {
    link->canOpen = false;
    Change(0, QStringLiteral("9"));
    link->canOpen = true;
    AlarmComes();
    QCoreApplication::processEvents();
    EXPECT_EQ(link->CommPort(), 3);
    EXPECT_TRUE(engine->Run()) << "nobody is there to start it";
    Forms::Show(Form);
    EXPECT_EQ(Values(), QStringLiteral("9 19200 2 No"));
    EXPECT_TRUE(Child(Form, QStringLiteral("lblKept"))->isVisible());
    Leave(Messages::Yes);
    EXPECT_EQ(link->CommPort(), 9);
    EXPECT_EQ(Site().BusSettings(), QStringLiteral("COM9:19200,N,8,2"));
}

TEST_F(SysCommTest, TheWatchOfTheLineGivesWayToAnAlarm) {
    Script script;
    script.On(FormNames::wPolling, [] { AlarmComes(); });
    Tap(Form, QStringLiteral("imgCommWatch"));
    EXPECT_FALSE(Screen(FormNames::wPolling)->Visible());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_TRUE(Screen(FormNames::wRunAlarms)->Visible());
}
