// The port of the bus, on a line that opens when the test lets it.

#include "support/ConfigScreensFixture.h"

namespace {

class SysCommTest : public ConfigScreensTest {
protected:
    SysCommTest()
        : ConfigScreensTest(FormNames::wSysComm) {
        Site().setBusSettings("COM3:19200,N,8,2");
        engine->ConfigCommPort();
        engine->setRun(true);
        Forms::Show(Form);
    }

    QString Values() {
        QStringList values;
        for (const char* label : {"lblBusPort", "lblBusSpeed", "lblBusStop", "lblAutoStart"})
            values += TextOf(Form, label);
        return values.join(u' ');
    }
    /// Goes to a field, 0 the port, and chooses a value.
    void Change(int field, const QString& value) {
        Press("imgBusDir", 0, 4);
        Press("imgBusDir", 1, field);
        EXPECT_EQ(Shown("lblBusPointer"), QString::number(field + 1));
        Choose(Form, "imgBusModif", value);
    }
    QString Device() { return SLVfonctions::DevicePath("COM3"); }
};

} // namespace

TEST_F(SysCommTest, SpeedStopBitsAndStartWaitForTheAnswer) {
    Change(1, "4800");
    Change(2, "1");
    Change(3, GetText(10002));
    EXPECT_EQ(Values(), "3 4800 1 Yes");
    EXPECT_EQ(link->Settings(), "19200,N,8,2");
    Leave(Messages::Yes);
    EXPECT_EQ(link->Settings(), "4800,N,8,1");
    EXPECT_EQ(Site().BusSettings(), "COM3:4800,N,8,1");
    EXPECT_TRUE(Site().AutoStart() && engine->Run());
    EXPECT_EQ(Screen(Form), nullptr);
}

TEST_F(SysCommTest, APortTouchesTheBusAtOnce) {
    Change(0, "255");
    EXPECT_EQ(link->CommPort(), 255);
    EXPECT_TRUE(link->PortOpen() && engine->Run());
    EXPECT_EQ(Shown("lblBusConfig_5"), "255");
    Leave(Messages::No);
    EXPECT_EQ(link->CommPort(), 3) << "the answer no puts it back";
    EXPECT_TRUE(engine->Run());
    EXPECT_EQ(Site().BusSettings(), "COM3:19200,N,8,2");
}

TEST_F(SysCommTest, APortThatFailsStopsThePollingAsLongAsItIsEdited) {
    for (const bool alarm : {false, true}) {
        Forms::Show(Form);
        link->canOpen = false;
        Change(0, "9");
        EXPECT_EQ(boxes.last(), GetText(630100));
        EXPECT_FALSE(engine->Run());
        link->canOpen = true;
        if (alarm)
            AlarmComes();
        else
            Leave(Messages::No);
        QCoreApplication::processEvents();
        EXPECT_EQ(link->CommPort(), 3);
        EXPECT_TRUE(link->PortOpen() && engine->Run()) << "nobody is there to start it";
    }
    Forms::Show(Form);
    EXPECT_EQ(Values(), "9 19200 2 No");
    EXPECT_TRUE(TellsOfKept());
    // The file from which the program starts can't be written.
    QFile::remove(CurrentConfigFile());
    ASSERT_TRUE(QDir().mkpath(CurrentConfigFile()));
    int failures = 0;
    Messages::Install([&](const QString& text, int, bool) {
        failures += text == GetText(20002) ? 1 : 0;
        EXPECT_TRUE(text == GetText(30010) || (link->CommPort() == 9 && engine->Run()))
            << "the bus waits for no answer";
        return int(Messages::Yes);
    });
    Leave(Messages::Yes);
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(Site().BusSettings(), "COM9:19200,N,8,2");
}

TEST_F(SysCommTest, AnEmptyFieldIsNotTaken) {
    Leave(Messages::Cancel);
    Site().setBusSettings(QString());
    Forms::Show(Form);
    Change(1, "9600");
    Press("imgBusDir", 0, 4);
    script.On(FormNames::dlgListInput, [] { Tap(FormNames::dlgListInput, "imgControl_2"); });
    Tap(Form, "imgBusModif");
    EXPECT_EQ(link->CommPort(), 3) << "nothing was chosen";
    Leave(Messages::Yes);
    EXPECT_EQ(boxes.last(), GetText(20006));
    EXPECT_NE(Screen(Form), nullptr);
    Change(0, "4");
    Change(2, "1");
    Leave(Messages::Yes);
    EXPECT_EQ(Site().BusSettings(), "COM4:9600,N,8,1");
}

TEST_F(SysCommTest, TheDeviceOfThePortIsNamedInTheSettings) {
    const QString before = Device();
    const QString adapter = ports.AddSerial("ttyUSB0", "FTDI");
    ChooseDevice("lblPortDevice", 1);
    EXPECT_EQ(Device(), ports.Lasting(adapter));
    EXPECT_TRUE(Shown("lblPortDevice").startsWith("FTDI"));
    const int openings = link->openings;
    Leave(Messages::No);
    EXPECT_EQ(Device(), before);
    EXPECT_EQ(link->openings, openings + 1) << "the bus goes back to it";
    Forms::Show(Form);
    ChooseDevice("lblPortDevice", 1);
    Leave(Messages::Yes);
    EXPECT_EQ(Device(), ports.Lasting(adapter));

    Forms::Show(Form);
    Change(0, "4");
    ChooseDevice("lblPortDevice", 1);
    Change(0, "3");
    boxes.clear();
    Leave(Messages::Yes);
    EXPECT_TRUE(boxes.isEmpty()) << "nothing differs";
    EXPECT_EQ(SLVfonctions::DevicePath("COM4"), "/dev/ttyS3")
        << "nor means another port another device";

    Forms::Show(Form);
    Site().setPrtSettings("COM8:");
    Change(0, "8");
    EXPECT_EQ(boxes.last(), GetText(630231)) << "the printer has it";
    EXPECT_EQ(link->CommPort(), 3);
}

TEST_F(SysCommTest, TheDirectionIsSwitchedAtOnceAndGoesBackWithTheAnswerNo) {
    const auto isRs485 = [] { return SLVfonctions::PortOf("COM3").rs485; };
    const auto openings = link->openings;
    const QString device = Device();
    link->features.rs485 = platform::LineFeatures::Answer::Refused;
    Tap(Form, "chkRs485");
    EXPECT_TRUE(isRs485() && engine->Run());
    EXPECT_EQ(link->openings, openings + 1);
    EXPECT_TRUE(Shown("lblPortUse").endsWith(GetText(301321)));
    Leave(Messages::No);
    EXPECT_FALSE(isRs485());
    EXPECT_EQ(link->openings, openings + 2);
    Forms::Show(Form);
    Tap(Form, "chkRs485");
    Leave(Messages::Yes);
    EXPECT_TRUE(isRs485());
    EXPECT_EQ(Device(), device);
}

TEST_F(SysCommTest, TheWatchOfTheLineGivesWayToAnAlarm) {
    script.On(FormNames::wPolling, [] { AlarmComes(); });
    Tap(Form, "imgCommWatch");
    EXPECT_FALSE(Screen(FormNames::wPolling)->Visible());
    EXPECT_TRUE(Screen(FormNames::wRunAlarms)->Visible());
}
