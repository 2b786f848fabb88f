// The history viewer on its screen, worked by touches.

#include "screens/history/HistoryGrid.h"
#include "screens/history/wHistoric.h"

#include "events/HistoProcs.h"
#include "model/Models.h"
#include "support/ScreensFixture.h"
#include "support/Script.h"

#include <QListWidget>

namespace {

const QString History = "wHistoric";

class HistoryTest : public ScreensTest {
protected:
    HistoryTest() {
        AddPanel(1, Models::Q7100);
        AddPanel(64, Models::Q7000);
    }
    /// A file with numbered lines of channel 7 of panel 1.
    void Put(const QString& name, int lines) const {
        QByteArray all;
        for (int i = 1; i <= lines; ++i)
            all += Line(QByteArray::number(i).rightJustified(6, '0'), "PC1-C07");
        WriteFile(name, all);
    }
    static QByteArray Line(const QByteArray& number, const QByteArray& origin) {
        return "2024-03-15 12:00:00 " + number + " 0000077 " + origin + " AVA " +
               QByteArray(7, ' ') + " ACTIVE          Trip" + QByteArray(23, ' ') + "Pump" +
               QByteArray(36, ' ') + "\r\n";
    }
    static void Open() {
        Forms::Show(History);
        WaitForLoad();
    }
    static void Close() {
        Forms::Unload(History);
        RemoveUnloaded();
    }
    /// A file is read a moment after it was chosen, by the one timer that fires once.
    static void WaitForLoad() {
        EXPECT_TRUE(Comes([] {
            const QList<QTimer*> timers = Screen(History)->findChildren<QTimer*>();
            return std::none_of(timers.cbegin(), timers.cend(), [](const QTimer* timer) {
                return timer->isSingleShot() && timer->isActive();
            });
        }));
    }
    static void TapControl(int index) { Tap(History, "imgControl", index); }
    /// Another file is chosen, and read.
    static void Turn(int index) {
        TapControl(index);
        WaitForLoad();
    }
    static QListWidget& Files() { return *Find<QListWidget>(History, "lstFiles"); }
    static QString Chosen() {
        return Files().currentItem() ? Files().currentItem()->text() : QString();
    }
    static HistoryGrid& Grid() { return *Find<HistoryGrid>(History, "grdAlarms"); }
    static QString Current() { return Grid().CurrentLine().left(6); }
};

} // namespace

TEST_F(HistoryTest, AnEmptyFolderGivesNothingToChoose) {
    Open();
    EXPECT_EQ(Files().count() + Grid().Count(), 0);
    EXPECT_EQ(TextOf(History, "txtNoAlarm"), "No history file yet");
    Tap(History, "imgConsigne");
    for (const int control : {0, 1, 4, 5, 6, 7, 8, 9})
        TapControl(control);
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(TextOf(History, "lblDateTime"), "2024-03-15 12:00:00");
    Tap(History, "imgClose");
    EXPECT_EQ(Forms::Find(History), nullptr);
    ASSERT_EQ(NbInstances("wRunAlarms"), 1) << "opened from nowhere: never a dark display";
    EXPECT_TRUE(Screen("wRunAlarms")->isVisible());
    Forms::Show("wMain");
    Open();
    Tap(History, "imgClose");
    EXPECT_TRUE(Screen("wMain")->isVisible());
    EXPECT_EQ(NbInstances("wRunAlarms"), 0);
}

TEST_F(HistoryTest, BeginsWithTheNewestLineOfTheCurrentFile) {
    Put("Histo202403.his", 200);
    Put("Histo20240315.his", 5);
    for (const char* name : {"Histo202312.his", "Histo202404.his", "Other202401.his"})
        Put(name, 1);
    Open();
    EXPECT_EQ(Files().count(), 4);
    EXPECT_EQ(Files().item(2)->text(), "2024 - 03 - 15");
    EXPECT_EQ(Chosen(), "2024 - 03");
    EXPECT_EQ(Grid().Count(), 200);
    EXPECT_EQ(Current(), "000200");
    const RowPosition& at = Grid().Position();
    const int page = at.Page();
    EXPECT_GE(page, 8);
    EXPECT_GE(Grid().width() - 12,
              QFontMetricsF(Theme::Fixed(16, true)).horizontalAdvance(QString(80, u'0')));
    const std::pair<int, int> steps[] = {{4, 199 - page}, {5, 198 - page}, {6, 199 - page},
                                         {7, 199},        {8, 0},          {9, 199}};
    for (const auto& [control, row] : steps) {
        TapControl(control);
        EXPECT_EQ(at.Current(), row) << control;
        EXPECT_TRUE(at.InSight()) << control;
    }
    QTest::mouseClick(&Grid(), Qt::LeftButton, {}, {100, Grid().RowHeight() * 2 + 5});
    EXPECT_EQ(at.Current(), at.First() + 2);
    EXPECT_EQ(Current(), QString::number(at.First() + 3).rightJustified(6, u'0'));
    Close();
    IniWrite("Files", "PeriodUnit", "1");
    Open();
    EXPECT_EQ(Chosen(), "2024 - 03 - 15");
    EXPECT_EQ(Grid().Count(), 5);
}

TEST_F(HistoryTest, MovesThroughTheFiles) {
    Put("Histo202401.his", 30);
    Put("Histo202402.his", 40);
    Put("Histo202403.his", 50);
    Put("Histo202312.his", 0);
    const auto shows = [](const char* file, const char* line) {
        EXPECT_EQ(Chosen(), file);
        EXPECT_EQ(Current(), line);
    };
    Open();
    TapControl(0);
    EXPECT_EQ(Grid().Count(), 50) << "the screen paints first";
    WaitForLoad();
    shows("2024 - 02", "000040");
    for (int later = 0; later < 2; ++later) {
        Turn(1);
        shows("2024 - 03", "000001"); // reading on, it begins with the first line
    }

    Files().scrollToTop();
    TapRow(&Files(), 1);
    WaitForLoad();
    shows("2024 - 01", "000030");
    TapRow(&Files(), 0);
    WaitForLoad();
    EXPECT_TRUE(Grid().Count() == 0 && !Grid().isVisible());
    EXPECT_EQ(TextOf(History, "txtNoAlarm"), "No entry in this file");
    QFile::remove(Path("Histo202401.his"));
    Turn(1);
    EXPECT_EQ(Grid().Count(), 0) << "gone since the list was made";
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(HistoryTest, InstructionOfTheOriginOfALine) {
    Site().setConsigne(5, "  Open the valve ");
    Site().Panel(64).Channel(24).setHelpNum(5);
    Site().Panel(1).Channel(7).setHelpNum(9);
    QByteArray lines;
    for (const char* origin : {"P64-C24", "P01-C07", "P64-C23", "P64-ACK", "SYSTEM ", "P64-Q70",
                               "P65-C24", "P00-C24", "P64-C25", "P64-C00"})
        lines += Line("000001", origin);
    WriteFile("Histo202403.his", lines);
    Open();
    const QString none = GetText(710021);
    for (int row = 0; row < Grid().Count(); ++row) {
        TapControl(row == 0 ? 8 : 6);
        const QStringList read = ReadInstruction(History);
        if (row == 0)
            EXPECT_EQ(read,
                      QStringList({Grid().CurrentLine().insert(82, u'\n'), "Open the valve"}));
        else
            EXPECT_EQ(read.value(1), row == 1 ? none : QString()) << row;
        EXPECT_EQ(boxes, QStringList(qMax(0, row - 1), none));
    }
    EXPECT_EQ(styles.last(), 16);

    // An alarm sends every screen away while the instruction is read.
    TapControl(8);
    QTimer::singleShot(20, [] { Forms::UnloadAllBut({}); });
    Tap(History, "imgConsigne");
    EXPECT_EQ(Forms::Find(History), nullptr);
}

TEST_F(HistoryTest, RemoteControlIsOfferedWhereThereIsSome) {
    Open();
    for (const bool active : {false, true}) {
        Site().Panel(7).setModel(Models::P5500);
        Site().Panel(7).setActive(active);
        Screen(History)->BringToFront();
        EXPECT_EQ(Child(History, "imgTelecommande")->isVisible(), active);
    }
    Site().setUserCount(1);
    Site().setUserLevel(1, 1);
    Script script;
    script.On("dlgUserCodes", [] { Tap("dlgUserCodes", "imgControl_0"); });
    Tap(History, "imgTelecommande");
    EXPECT_EQ(NbInstances("wTeleCmdes"), 0) << "given up";
    Global::Get().userLevel = 1;
    Tap(History, "imgTelecommande");
    EXPECT_EQ(NbInstances("wTeleCmdes"), 1);
}
