// The history viewer on its screen, worked by touches.

#include "core/FormNames.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/history/HistoryGrid.h"
#include "screens/history/wHistoric.h"

#include "events/HistoProcs.h"
#include "model/Models.h"
#include "support/ScreensFixture.h"

#include <QListWidget>

namespace {

const QString History = QStringLiteral("wHistoric");

class HistoryTest : public ScreensTest {
protected:
    HistoryTest() {
        AddPanel(1, Models::Q7100);
        AddPanel(64, Models::Q7000);
    }
    /// A file with numbered lines of channel 7 of panel 1.
    void Put(const QString& name, int lines) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        for (int i = 1; i <= lines; ++i)
            file.write(Line(QByteArray::number(i).rightJustified(6, '0'), "PC1-C07"));
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
    /// A file is read a moment after it was chosen, by the one timer that fires once.
    static void WaitForLoad() {
        EXPECT_TRUE(Comes([] {
            const QList<QTimer*> timers = Screen(History)->findChildren<QTimer*>();
            return std::none_of(timers.cbegin(), timers.cend(), [](const QTimer* timer) {
                return timer->isSingleShot() && timer->isActive();
            });
        }));
    }
    static QListWidget& Files() { return *qobject_cast<QListWidget*>(Child(History, "lstFiles")); }
    static QString Chosen() {
        return Files().currentItem() ? Files().currentItem()->text() : QString();
    }
    static HistoryGrid& Grid() { return *qobject_cast<HistoryGrid*>(Child(History, "grdAlarms")); }
    static QString Current() { return Grid().CurrentLine().left(6); }
    static void TapFile(int row) {
        QTest::mouseClick(Files().viewport(), Qt::LeftButton, {},
                          Files().visualItemRect(Files().item(row)).center());
    }
    /// Taps the instruction; gives the two texts of the dialog, or the text of the box.
    QStringList Instruction() {
        QStringList texts;
        boxes.clear();
        QTimer::singleShot(20, Screen(History), [&] {
            if (Screen(FormNames::dlgConsigne) == nullptr)
                return;
            texts = QStringList{TextOf(FormNames::dlgConsigne, "lblAlarm"),
                                TextOf(FormNames::dlgConsigne, "lblConsigne")};
            Tap(FormNames::dlgConsigne, "imgClose");
        });
        Tap(History, "imgConsigne");
        QTest::qWait(30);
        return texts + boxes;
    }
};

} // namespace

TEST_F(HistoryTest, AnEmptyFolderGivesNothingToChoose) {
    Open();
    EXPECT_EQ(Files().count(), 0);
    EXPECT_EQ(Grid().Count(), 0);
    EXPECT_EQ(TextOf(History, "txtNoAlarm"), "No history file yet");
    for (const char* control :
         {"imgConsigne", "imgControl_0", "imgControl_1", "imgControl_4", "imgControl_5",
          "imgControl_6", "imgControl_7", "imgControl_8", "imgControl_9"})
        Tap(History, QString::fromLatin1(control));
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(TextOf(History, "lblDateTime"), "2024-03-15 12:00:00");
}

TEST_F(HistoryTest, BeginsWithTheNewestLineOfTheCurrentFile) {
    Put("Histo202312.his", 3);
    Put("Histo202403.his", 200);
    Put("Histo20240315.his", 5);
    Put("Histo202404.his", 1);
    Put("Other202401.his", 1);
    Open();
    EXPECT_EQ(Files().count(), 4);
    EXPECT_EQ(Files().item(2)->text(), "2024 - 03 - 15");
    EXPECT_EQ(Chosen(), "2024 - 03");
    EXPECT_EQ(Grid().Count(), 200);
    EXPECT_EQ(Current(), "000200");
    EXPECT_EQ(Grid().Position().First() + Grid().Position().Page(), 200);

    Forms::Unload(History);
    RemoveUnloaded();
    IniWrite(QStringLiteral("Files"), QStringLiteral("PeriodUnit"), QStringLiteral("1"));
    Open();
    EXPECT_EQ(Chosen(), "2024 - 03 - 15");
    EXPECT_EQ(Grid().Count(), 5);
}

TEST_F(HistoryTest, GoesToTheEndsAndOnWhileAnArrowIsHeld) {
    Put("Histo202403.his", 200);
    Open();
    Tap(History, "imgControl_8");
    EXPECT_EQ(Current(), "000001");
    Tap(History, "imgControl_9");
    EXPECT_EQ(Current(), "000200");
    auto* timer = Screen(History)->findChild<QTimer*>(QStringLiteral("tmrRepeat"));
    QTest::mousePress(Child(History, "imgControl_5"), Qt::LeftButton);
    EXPECT_EQ(timer->interval(), 1000);
    timer->setInterval(1);
    EXPECT_TRUE(Comes([] { return Current() < QStringLiteral("000199"); }));
    EXPECT_EQ(timer->interval(), 100);
    QTest::mouseRelease(Child(History, "imgControl_5"), Qt::LeftButton);
    EXPECT_FALSE(timer->isActive());
}

TEST_F(HistoryTest, MovesThroughTheFiles) {
    Put("Histo202401.his", 30);
    Put("Histo202402.his", 40);
    Put("Histo202403.his", 50);
    QFile(Path("Histo202312.his")).open(QIODevice::WriteOnly);
    Open();
    Tap(History, "imgControl_0");
    EXPECT_EQ(Grid().Count(), 50) << "the screen paints first";
    WaitForLoad();
    EXPECT_EQ(Chosen(), "2024 - 02");
    EXPECT_EQ(Current(), "000040");
    Tap(History, "imgControl_1");
    WaitForLoad();
    EXPECT_EQ(Chosen(), "2024 - 03");
    EXPECT_EQ(Current(), "000001") << "reading on, it begins with the first line";
    Tap(History, "imgControl_1");
    WaitForLoad();
    EXPECT_EQ(Chosen(), "2024 - 03") << "there is no later file";
    EXPECT_EQ(Current(), "000001");

    Files().scrollToTop();
    TapFile(1);
    WaitForLoad();
    EXPECT_EQ(Current(), "000030");
    EXPECT_EQ(Chosen(), "2024 - 01");
    TapFile(0);
    WaitForLoad();
    EXPECT_EQ(Grid().Count(), 0);
    EXPECT_FALSE(Grid().isVisible());
    EXPECT_EQ(TextOf(History, "txtNoAlarm"), "No entry in this file");
    QFile::remove(Path("Histo202401.his"));
    Tap(History, "imgControl_1");
    WaitForLoad();
    EXPECT_EQ(Grid().Count(), 0) << "gone since the list was made";
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(HistoryTest, TouchesAndScrollButtonsMoveTheSelection) {
    Put("Histo202403.his", 100);
    Open();
    const RowPosition& at = Grid().Position();
    EXPECT_GE(at.Page(), 8);
    Tap(History, "imgControl_4");
    EXPECT_EQ(at.Current(), 99 - at.Page());
    Tap(History, "imgControl_5");
    EXPECT_EQ(at.Current(), 98 - at.Page());
    EXPECT_EQ(at.First(), at.Current()) << "the view follows";
    Tap(History, "imgControl_6");
    Tap(History, "imgControl_7");
    EXPECT_EQ(at.Current(), 99);
    QTest::mouseClick(&Grid(), Qt::LeftButton, {}, {100, Grid().RowHeight() * 2 + 5});
    EXPECT_EQ(at.Current(), at.First() + 2);
    EXPECT_EQ(Current(), QString::number(at.First() + 3).rightJustified(6, u'0'));
}

TEST_F(HistoryTest, InstructionOfTheOriginOfALine) {
    Site().setConsigne(5, QStringLiteral("  Open the valve "));
    Site().Panel(64).Channel(24).setHelpNum(5);
    Site().Panel(1).Channel(7).setHelpNum(9);
    QFile file(Path("Histo202403.his"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const char* origin : {"P64-C24", "P01-C07", "P64-C23", "P64-ACK", "SYSTEM ", "P64-Q70",
                               "P65-C24", "P00-C24", "P64-C25", "P64-C00"})
        file.write(Line("000001", origin));
    file.close();
    Open();
    for (int row = 0; row < 10; ++row)
        Tap(History, "imgControl_5");
    const QStringList texts = Instruction();
    ASSERT_EQ(texts.size(), 2);
    EXPECT_EQ(texts[1], "Open the valve");
    QString alarm = texts[0];
    EXPECT_FALSE(alarm.contains(u' '));
    alarm.replace(QChar(0xA0), u' ');
    EXPECT_EQ(alarm.indexOf(u'\n'), 82);
    EXPECT_EQ(alarm.remove(u'\n'), Grid().CurrentLine());

    Tap(History, "imgControl_6");
    EXPECT_EQ(Instruction().value(1), GetText(710021)) << "an instruction without a text";
    for (int row = 2; row < Grid().Count(); ++row) {
        Tap(History, "imgControl_6");
        EXPECT_EQ(Instruction(), QStringList(GetText(710021))) << row;
        EXPECT_EQ(styles.last(), 16);
    }

    // An alarm sends every screen away while the instruction is read.
    Tap(History, "imgControl_4");
    Tap(History, "imgControl_4");
    QTimer::singleShot(20, [] { Forms::UnloadAllBut({}); });
    Tap(History, "imgConsigne");
    EXPECT_EQ(Forms::Find(History), nullptr);
}

TEST_F(HistoryTest, LeavesToWhereItCameFrom) {
    Forms::Show(QStringLiteral("wMain"));
    Open();
    Tap(History, "imgClose");
    EXPECT_EQ(Forms::Find(History), nullptr);
    EXPECT_TRUE(Screen("wMain")->isVisible());
    EXPECT_EQ(NbInstances(QStringLiteral("wRunAlarms")), 0);
    Forms::UnloadAllBut({});
    RemoveUnloaded();
    Open();
    Tap(History, "imgClose");
    EXPECT_TRUE(Screen("wRunAlarms")->isVisible()) << "never a dark display";
}

TEST_F(HistoryTest, RemoteControlIsOfferedWhereThereIsSome) {
    Open();
    EXPECT_FALSE(Child(History, "imgTelecommande")->isVisible());
    Site().Panel(7).setModel(Models::P5500);
    Screen(History)->BringToFront();
    EXPECT_FALSE(Child(History, "imgTelecommande")->isVisible());
    Site().Panel(7).setActive(true);
    Screen(History)->BringToFront();
    ASSERT_TRUE(Child(History, "imgTelecommande")->isVisible());
    Site().setUserCount(1);
    Site().setUserLevel(1, 1);
    Site().setUserPwd(1, QStringLiteral("A1"));
    int prompts = 0;
    QTimer prompt;
    prompt.callOnTimeout([&] {
        if (Forms::Find(QStringLiteral("dlgUserCodes")) == nullptr)
            return;
        ++prompts;
        Tap("dlgUserCodes", "cmdChar_66");
        Tap("dlgUserCodes", "imgControl_1");
        Tap("dlgUserCodes", "imgControl_0");
    });
    prompt.start(5);
    Tap(History, "imgTelecommande");
    EXPECT_EQ(prompts, 1) << "a wrong code, given up";
    EXPECT_EQ(NbInstances(QStringLiteral("wTeleCmdes")), 0);
    Global::Get().userLevel = 1;
    Tap(History, "imgTelecommande");
    EXPECT_EQ(NbInstances(QStringLiteral("wTeleCmdes")), 1);
}

/// Both halves of a line are read whole, at the design size and on a larger display.
TEST_F(HistoryTest, EightyColumnsFitTheDisplay) {
    Put("Histo202403.his", 3);
    for (const QSize& size : {QSize(800, 600), QSize(1280, 800), QSize(1024, 768)}) {
        Global::Get().noResize = false;
        OverrideScreenSize(size);
        Open();
        QImage with = Grid().grab().toImage();
        const int room = Grid().width() - 12;
        int pixels = 1;
        while (QFontMetricsF(Theme::Fixed(pixels + 1, true)).horizontalAdvance(QString(80, u'0')) <=
               room)
            ++pixels;
        EXPECT_GE(pixels, 16);
        EXPECT_GE(Grid().RowHeight(), pixels * 2);
        EXPECT_EQ(with.size(), Grid().size());
        Forms::Unload(History);
        RemoveUnloaded();
    }
}
