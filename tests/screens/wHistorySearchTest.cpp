// The search through the history, worked by touches.

#include "screens/history/FoundGrid.h"
#include "screens/history/HistoryExport.h"
#include "screens/history/dlgHistoryPeriod.h"

#include "core/ErrorHandling.h"
#include "events/HistoProcs.h"
#include "model/Models.h"
#include "support/ScreensFixture.h"
#include "support/Script.h"

#include <QCalendarWidget>
#include <QLineEdit>
#include <QListWidget>

namespace {

const QString Search = FormNames::wHistorySearch;
const QString Period = FormNames::dlgHistoryPeriod;

class HistorySearchScreenTest : public ScreensTest {
protected:
    HistorySearchScreenTest() {
        AddPanel(1, Models::Q7100);
        AddPanel(12, Models::Q7100).setTitle("Boiler house");
        Site().Panel(12).Channel(7).setScreenText("Feed pump");
        Site().Panel(12).Channel(7).setHelpNum(5);
        Site().setConsigne(5, "Open the valve");
        clock.Set(2024, 3, 15, 8);
        for (qint16 i = 0; i < 100; ++i)
            Write({1, qint16(1 + i % 12), 0, qint16(i / 12 % 2)}, 60);
        Write({12, 7, 1, 3}, 60);
        Write({1, 3, 0, 1}, 41);
        Write({12, 7, 1, 1}, 3600);
        Write({12, 7, 1, 0}, 60);
        Global::Get().userName = "Ole";
        Write({0, 254, 0, 3}, 60);
    }
    ~HistorySearchScreenTest() override {
        // What an alarm took away is kept over screens, and would be over tests.
        Forms::Show(Search);
        Tap(Search, "imgClose");
    }
    /// A line, and so many seconds after it.
    void Write(EventClass event, int seconds) {
        event.setGDH(DateTimes::Now());
        HistoProcs::HistoEvent(event);
        clock.Advance(1000LL * seconds);
    }
    static FoundGrid& Grid() { return *Find<FoundGrid>(Search, "grdAlarms"); }
    static void Open() {
        Forms::Show(Search);
        WaitForEnd();
    }
    static void WaitForEnd() {
        EXPECT_TRUE(Comes([] { return !Child(Search, "imgStop")->isVisible(); }));
    }
    static QString Told() { return TextOf(Search, "lblFound"); }
    static QString Filter() { return TextOf(Search, "lblFilter"); }
    static QString Course() { return TextOf(Search, "lblCourse"); }
    static QString Current() { return Grid().CurrentLine().mid(39, 7); }
    static void Touch(const char* control) {
        Tap(Search, control);
        WaitForEnd();
    }
    /// Touches a row of those in sight.
    static void TouchRow(int place) {
        QTest::mouseClick(&Grid(), Qt::LeftButton, {}, {100, Grid().RowHeight() * place + 9});
        WaitForEnd();
    }
    /// Chooses an item of the list that a button of the filter brings up.
    void Choose(const char* button, const QString& item) {
        script.On("dlgListInput", [item] {
            auto* list = Find<QListWidget>("dlgListInput", "lstValue");
            const auto found = list->findItems(item, Qt::MatchExactly);
            ASSERT_EQ(found.size(), 1) << item.toStdString();
            list->setCurrentItem(found[0]);
            Tap("dlgListInput", "imgControl_2");
        });
        Touch(button);
    }
    /// Saves under the name that is there.
    void Save(const char* button) {
        script.On("dlgFilePicker", [] { Tap("dlgFilePicker", "imgControl_1"); });
        Tap(Search, button);
    }

    Script script;
};

} // namespace

TEST_F(HistorySearchScreenTest, TheFilterStandsInWordsAndOneTouchClearsIt) {
    Open();
    EXPECT_EQ(Told(), "105 of 105 lines");
    EXPECT_EQ(Current(), "SYSTEM ") << "the newest line";
    EXPECT_FALSE(Child(Search, "imgClear")->isEnabled());
    Choose("imgFilter_1", "12 Boiler house");
    EXPECT_EQ(Told(), "3 of 105 lines");
    Write({12, 8, 0, 1}, 60);
    Choose("imgFilter_1", "12 Boiler house");
    EXPECT_EQ(Told(), "4 of 106 lines") << "the same again, with what was written since";
    Choose("imgFilter_2", "07 Feed pump");
    Choose("imgFilter_3", "Acknowledgements");
    EXPECT_EQ(Told(), "1 of 106 lines");
    EXPECT_TRUE(Filter().endsWith("Panel 12 Boiler house \u00B7 Channel 07 Feed pump \u00B7 "
                                  "Acknowledgements"))
        << Filter().toStdString();
    Choose("imgFilter_4", "Ole");
    EXPECT_EQ(Told(), "0 of 106 lines");
    EXPECT_TRUE(Child(Search, "txtNoAlarm")->isVisible());
    Touch("imgClear");
    EXPECT_EQ(Told(), "106 of 106 lines");
    script.On("dlgKeyboard", [] {
        Find<QLineEdit>("dlgKeyboard", "txtValue_0")->setText("FEED pump");
        Tap("dlgKeyboard", "imgControl_1");
    });
    Touch("imgFilter_5");
    EXPECT_EQ(Told(), "3 of 106 lines");
    // Another panel has other channels.
    Choose("imgFilter_2", "07");
    Choose("imgFilter_1", "01");
    EXPECT_TRUE(Filter().endsWith("Panel 01 \u00B7 \"FEED pump\"")) << Filter().toStdString();
}

TEST_F(HistorySearchScreenTest, ATouchShowsTheChannelAndOneMoreLeadsBack) {
    Open();
    for (const char* control : {"imgControl_8", "imgControl_7", "imgControl_7"})
        Tap(Search, control);
    const int first = Grid().Position().First();
    TouchRow(2);
    const int touched = first + 2;
    EXPECT_EQ(Told().section(' ', 0, 0).toInt(), 8 + (touched % 12 < 4) + (touched % 12 == 2));
    EXPECT_EQ(Current(), QStringLiteral("P01-C%1").arg(1 + touched % 12, 2, 10, QChar('0')));
    TouchRow(0);
    EXPECT_EQ(Grid().Position().Current(), 0) << "it is the channel's list already";
    Touch("imgBack");
    EXPECT_EQ(Told(), "105 of 105 lines");
    EXPECT_EQ(Grid().Position().Current(), touched);
    EXPECT_EQ(Grid().Position().First(), first);
    EXPECT_FALSE(Child(Search, "imgBack")->isVisible());
    Tap(Search, "imgControl_9");
    TouchRow(Grid().Position().Current() - Grid().Position().First());
    EXPECT_FALSE(Child(Search, "imgBack")->isVisible()) << "the system has no channel";
}

TEST_F(HistorySearchScreenTest, AFileThatIsPurgedMeanwhile) {
    WriteFile("Histo202402.his", QByteArray("2024-02-20 10:00:00").leftJustified(138) + "\r\n");
    Open();
    EXPECT_EQ(Told(), "106 of 106 lines");
    Tap(Search, "imgControl_4");
    QFile::remove(Path("Histo202402.his"));
    TouchRow(0);
    Touch("imgBack");
    EXPECT_EQ(Told(), "105 of 105 lines");
    Tap(Search, "imgControl_9");
    EXPECT_EQ(Current(), "SYSTEM ");
}

TEST_F(HistorySearchScreenTest, StepsFromTheComingOfAnAlarmToItsGoing) {
    Open();
    Choose("imgFilter_3", "First fault");
    EXPECT_EQ(Course(), "Raised 2024-03-15 09:40:00, acknowledged after 1:41, "
                        "returned to normal after 1:01:41");
    EXPECT_EQ(ReadInstruction(Search).value(1), "Open the valve");
    Touch("imgStep_2");
    EXPECT_EQ(Told(), "3 of 105 lines") << "the list of its channel";
    EXPECT_TRUE(Grid().CurrentLine().contains("10:41:41"));
    Touch("imgStep_1");
    EXPECT_TRUE(Grid().CurrentLine().contains("09:41:41"));
    Touch("imgStep_0");
    EXPECT_EQ(Grid().Position().Current(), 0);
    Touch("imgBack");
    EXPECT_EQ(Told(), "1 of 105 lines");
    Choose("imgFilter_3", "Login or logout");
    EXPECT_EQ(Course(), "");
    EXPECT_FALSE(Child(Search, "imgStep_0")->isEnabled());
}

TEST_F(HistorySearchScreenTest, DaysAreChosenOnCalendars) {
    clock.Set(2024, 1, 31, 8);
    Write({12, 7, 1, 3}, 60);
    clock.Set(2024, 3, 16);
    Open();
    EXPECT_EQ(Told(), "105 of 105 lines");
    script.On(Period, [] {
        Tap(Period, "imgPreset_3");
        EXPECT_EQ(TextOf(Period, "lblDay_0"), "From Monday 2024-01-01");
        Tap(Period, "imgControl_1");
    });
    Touch("imgFilter_0");
    EXPECT_EQ(Told(), "106 of 106 lines");
    EXPECT_TRUE(Filter().startsWith("2024-01-01 \u2013 2024-03-31"))
        << "lines of a clock that was set back since are among them";
    script.On(Period, [] {
        // The later day first.
        Tap(Period, "imgMonth_1");
        Find<QCalendarWidget>(Period, "calDays_0")->setSelectedDate({2024, 3, 14});
        Find<QCalendarWidget>(Period, "calDays_1")->setSelectedDate({2024, 1, 2});
        Tap(Period, "imgControl_1");
    });
    Touch("imgFilter_0");
    EXPECT_EQ(Told(), "1 of 1 lines");
    script.On(Period, [] {
        Tap(Period, "imgPreset_0");
        Tap(Period, "imgControl_0");
    });
    Touch("imgFilter_0");
    EXPECT_EQ(Told(), "1 of 1 lines") << "given up";
}

TEST_F(HistorySearchScreenTest, WhatIsShownGoesToAStick) {
    QDir().mkpath(Path("stick"));
    platform::OverrideVolumes(QList<platform::Volume>{{"STICK", Path("stick")}});
    Open();
    Choose("imgFilter_1", "12 Boiler house");
    Save("imgExport_0");
    EXPECT_TRUE(Comes([] { return Told() == "3 lines saved in History20240315.csv"; }))
        << Told().toStdString();
    const QList<QByteArray> lines = BytesOf("stick/History20240315.csv").split('\n');
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], "\xEF\xBB\xBF"
                        "Date;Time;No.;Clock;Origin;Parameter;Event;Common text;Specific text\r");
    EXPECT_EQ(lines[1],
              "2024-03-15;09:40:00;000000;0000000;P12-C07;Alarm;First fault;;Feed pump\r");
    Save("imgExport_1");
    EXPECT_TRUE(Comes([] { return Told() == "3 lines saved in History20240315.pdf"; }))
        << Told().toStdString();
    const QByteArray pdf = BytesOf("stick/History20240315.pdf");
    EXPECT_TRUE(pdf.startsWith("%PDF-"));
    EXPECT_TRUE(pdf.trimmed().endsWith("%%EOF"));

    QFile::remove(Path("stick/History20240315.pdf"));
    QFile::link("/dev/full", Path("stick/History20240315.pdf.tmp"));
    Save("imgExport_1");
    EXPECT_TRUE(Comes([] { return Told() == "Not saved: Disk full"; })) << Told().toStdString();
    Global::Get().language = 2;
    EXPECT_EQ(ErrorHandling::RunTimeText(61), "Datenträger voll") << "not half of it in English";
    Global::Get().language = 0;

    // Stopped, or interrupted by an alarm, nothing is left, and the filter is still there.
    Touch("imgClear");
    Choose("imgFilter_1", "01");
    Save("imgExport_1");
    EXPECT_FALSE(Child(Search, "imgFilter_1")->isEnabled()) << "what is saved stays";
    Tap(Search, "imgStop");
    EXPECT_EQ(Told(), GetText(711136));
    Save("imgExport_1");
    AlarmComes();
    EXPECT_EQ(QDir(Path("stick")).entryList(QDir::Files), QStringList("History20240315.csv"));
    clock.Set(2024, 3, 16);
    Open();
    EXPECT_TRUE(Filter().endsWith("2024-03-16 \u00B7 Panel 01")) << Filter().toStdString();
    EXPECT_TRUE(boxes.isEmpty());

    // What leaves the machine takes an operator's code.
    Site().setUserCount(1);
    Site().setUserLevel(1, 1);
    Site().setUserPwd(1, "A1");
    script.On("dlgUserCodes", [] { Tap("dlgUserCodes", "imgControl_0"); });
    Tap(Search, "imgExport_0");
    EXPECT_EQ(QDir(Path("stick")).entryList(QDir::Files), QStringList("History20240315.csv"));
    EXPECT_FALSE(Child(Search, "imgStop")->isVisible());
}
