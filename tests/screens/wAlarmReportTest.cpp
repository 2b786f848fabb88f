// The alarm report on its screen: periods, bars, lists, and what is given out.

#include "model/Models.h"
#include "screens/report/BarChart.h"
#include "screens/touch/TouchTable.h"
#include "support/HistoryWriter.h"
#include "support/PipePrinter.h"
#include "support/ScreensFixture.h"
#include "support/Script.h"

#include <QAbstractButton>

namespace {

const QString Report = "wAlarmReport";
const QString Viewer = "wHistoric";
const QString ReportPicker = "dlgFilePicker";

class wAlarmReportTest : public ScreensTest {
protected:
    wAlarmReportTest() {
        AddPanel(1, Models::Q7100).Channel(7).setScreenText("Pump");
        HistoryWriter history;
        for (const qint64 day : {20, 15, 10, 1, 0})
            for (qint64 i = 0; i < 20 - day; ++i)
                history.PutAlarm(1, 7, noon - day * 86400 - 3600 + i * 20, 5, 15);
    }
    static void Open() {
        Forms::Show(Report);
        Wait();
    }
    static void Wait() {
        EXPECT_TRUE(Comes([] { return !Child(Report, "imgCancel")->isVisible(); }));
    }
    static void Turn(const char* array, int index) {
        Tap(Report, array, index);
        Wait();
    }
    static QString Period() { return TextOf(Report, "lblPeriod"); }
    static QString Alarms() { return TextOf(Report, "lblFigure_0").section("   ", 1); }
    static bool CanTap(const char* name) { return Child(Report, name)->isEnabled(); }
    static TouchTable& Table() { return *Find<TouchTable>(Report, "grdAlarms"); }
    /// Touches one of so many bars, at the foot of its column.
    static void TouchBar(int bar, int bars) {
        QWidget* chart = Child(Report, "barAlarms");
        const double left = chart->width() * 0.05;
        const double column = (chart->width() - 8 - left) / bars;
        QTest::mouseClick(chart, Qt::LeftButton, {},
                          {int(left + (bar + 0.6) * column), chart->height() - 40});
        Wait();
    }

    const qint64 noon = AlarmPeriod::SecondsOf({{2024, 3, 15}, {12, 0}});
};

} // namespace

TEST_F(wAlarmReportTest, FromTheHistoryThroughPeriodsToTheHourOfABar) {
    Forms::Show(Viewer);
    ASSERT_TRUE(Child(Viewer, "imgReport")->isVisible());
    Tap(Viewer, "imgReport");
    Wait();
    EXPECT_EQ(Period(), "Friday 2024-03-15");
    EXPECT_EQ(Alarms(), "20");
    EXPECT_FALSE(CanTap("imgStep_1")) << "nothing has happened yet";
    Turn("imgStep", 0);
    EXPECT_EQ(Period(), "Thursday 2024-03-14");
    EXPECT_EQ(Alarms(), "19");
    Turn("cmdUnit", 3);
    EXPECT_EQ(Period(), "March 2024");
    EXPECT_EQ(Alarms(), "49");
    Turn("imgStep", 0);
    EXPECT_EQ(Alarms(), "5");
    EXPECT_FALSE(CanTap("imgStep_0")) << "no history is older";
    Turn("imgStep", 1);
    TouchBar(13, 31);
    EXPECT_EQ(Period(), "Thursday 2024-03-14");
    TouchBar(11, 24);
    EXPECT_EQ(Period(), "2024-03-14  11:00 - 12:00");
    EXPECT_EQ(Alarms(), "19");
    TouchBar(0, 6);
    EXPECT_EQ(Period(), "2024-03-14  11:00 - 12:00") << "ten minutes are the last";
    Turn("cmdUnit", 4);
    Tap(Report, "cmdPage", 1);
    TouchBar(11, 24);
    EXPECT_EQ(Period(), "2024") << "an hour of every day is no period";
    Turn("cmdUnit", 1);
    EXPECT_EQ(Period(), "Friday 2024-03-15") << "the present day of the year";
    Tap(Report, "imgClose");
    EXPECT_EQ(NbInstances(Report), 0);
    EXPECT_TRUE(Screen(Viewer)->isVisible());
}

TEST_F(wAlarmReportTest, Lists) {
    Open();
    Tap(Report, "cmdPage", 2);
    ASSERT_EQ(Table().RowCount(), 1);
    EXPECT_EQ(Table().Cell(0, 0), "P01-C07");
    EXPECT_EQ(Table().Cell(0, 3), "Pump");
    EXPECT_FALSE(Child(Report, "barAlarms")->isVisible());
    Tap(Report, "cmdPage", 3);
    EXPECT_EQ(Table().Cell(0, 2), "20");
    Tap(Report, "cmdPage", 4);
    EXPECT_FALSE(Table().isVisible());
    EXPECT_TRUE(Child(Report, "txtNoAlarm")->isVisible());
    Tap(Report, "cmdPage", 5);
    EXPECT_EQ(Table().RowCount(), 1);
    Turn("imgStep", 0);
    EXPECT_EQ(Table().RowCount(), 1) << "the list stays chosen";
    EXPECT_EQ(Table().Cell(0, 3), "19");
}

TEST_F(wAlarmReportTest, ReadingIsGivenUpAndAnAlarmTakesTheScreen) {
    Forms::Show(Report);
    EXPECT_TRUE(CanTap("imgCancel"));
    EXPECT_FALSE(CanTap("imgPdf"));
    Tap(Report, "imgCancel");
    EXPECT_EQ(TextOf(Report, "lblTold"), GetText(715027));
    EXPECT_FALSE(CanTap("imgCsv"));
    EXPECT_EQ(Alarms(), "");
    Turn("imgStep", 0);
    EXPECT_EQ(Alarms(), "19");
    Tap(Report, "cmdUnit", 3);
    AlarmComes();
    EXPECT_EQ(NbInstances(Report), 0);
    QTest::qWait(20);
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(wAlarmReportTest, SavedOnTheStickByAnOperator) {
    const QString stick = Path("stick");
    QDir().mkpath(stick);
    platform::OverrideVolumes(QList<platform::Volume>{{"STICK", stick}});
    Site().setUserCount(1);
    Site().setUserLevel(1, 1);
    Site().setUserPwd(1, "A1");
    Open();
    {
        Script script;
        script.On("dlgUserCodes", [] { Tap("dlgUserCodes", "imgControl_0"); });
        Tap(Report, "imgPdf");
    }
    EXPECT_EQ(QDir(stick).entryList(QDir::Files), QStringList()) << "given up";
    Global::Get().userLevel = 1;
    for (const char* button : {"imgPdf", "imgCsv"}) {
        Script script;
        script.On(ReportPicker, [] { Tap(ReportPicker, "imgControl_1"); });
        Tap(Report, button);
    }
    EXPECT_EQ(QDir(stick).entryList(QDir::Files),
              QStringList({"Alarms20240315.csv", "Alarms20240315.pdf"}));
    EXPECT_TRUE(BytesOf("stick/Alarms20240315.csv").startsWith("\xEF\xBB\xBF"));
    const QByteArray pdf = BytesOf("stick/Alarms20240315.pdf");
    EXPECT_TRUE(pdf.startsWith("%PDF-") && pdf.trimmed().endsWith("%%EOF"));
    EXPECT_EQ(TextOf(Report, "lblTold"), "Saved: Alarms20240315.csv");

    // An alarm comes while the name is chosen.
    Script script;
    script.On(ReportPicker, [] { AlarmComes(); });
    Tap(Report, "imgPdf");
    EXPECT_EQ(NbInstances(Report), 0);
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(wAlarmReportTest, PrintedOnTheEventPrinter) {
    Open();
    EXPECT_FALSE(CanTap("imgPrint")) << "no printer";
    IniWrite("Ports", "LPT1", Path("printer"));
    PipePrinter printer(Path("printer"));
    printer.SwitchOn();
    Site().setPrtSettings("LPT1:");
    Site().setPrintMaxLen(40);
    engine->SetupPrinter();
    printer.Taken();
    Turn("imgStep", 0);
    Tap(Report, "imgPrint");
    EXPECT_TRUE(Comes([] { return TextOf(Report, "lblTold") == GetText(715009); }));
    const QByteArray paper = printer.Taken();
    EXPECT_TRUE(
        paper.startsWith(QByteArray(40, '-') + "\r\nAlarm report - Thursday 2024-03-14\r\n"))
        << paper.data();
    EXPECT_TRUE(paper.contains("\r\nP01-C07      19    100.0  Pump\r\n")) << paper.data();
    EXPECT_TRUE(paper.endsWith(QByteArray(40, '-') + "\r\n"));
}
