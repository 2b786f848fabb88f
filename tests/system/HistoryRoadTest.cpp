// An alarm of a module is looked for in a long history while the bus is watched, and what was found
// goes to a stick.

#include "core/DateTimes.h"
#include "core/FormNames.h"
#include "platform/Volumes.h"
#include "screens/history/FoundGrid.h"
#include "support/LeadingClock.h"
#include "support/Road.h"
#include "support/Script.h"

#include <QLabel>

namespace {

const QString Console = FormNames::wRunAlarms;
const QString Search = FormNames::wHistorySearch;

class HistoryRoad : public Road {
protected:
    HistoryRoad()
        : Road({"1=Q7100"}) {
        for (int bit = 0; bit <= 4; ++bit) {
            Site().setOptionScreen(bit, bit != 3);
            Site().setOptionHisto(bit, true);
        }
        for (int number = 1; number <= 12; ++number)
            Site().Panel(1).Channel(number).setHisto(true);
        Site().Panel(1).Channel(7).setScreenText("Feed pump");
        QDir().mkpath(Stick());
        platform::OverrideVolumes(QList<platform::Volume>{{"STICK", Stick()}});
        Forms::Show(Console);
    }
    ~HistoryRoad() override { platform::OverrideVolumes(std::nullopt); }

    QString Stick() const { return folder.Path("stick"); }
    /// Yesterday's daily file, of a site that wrote much.
    void WriteLongPast() const {
        const DateTime yesterday = DateTimes::Now() - 1;
        QFile file(folder.Path("Histo" + DateTimes::FileDate(yesterday) + ".his"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        const QString line = DateTimes::DateAndTime(yesterday) +
                             QStringLiteral(" 000001 0000077 P02-C03 State       Normal");
        const QByteArray lines = (line.leftJustified(138).toLatin1() + "\r\n").repeated(1000);
        for (int i = 0; i < 300; ++i)
            file.write(lines);
    }
    static QString Told() { return Find<QLabel>(Search, "lblFound")->text(); }
    static bool IsThrough() { return !Find(Search, "imgStop")->isVisible(); }
    static void TouchCurrentRow() {
        auto& grid = *Find<FoundGrid>(Search, "grdAlarms");
        const int place = grid.Position().Current() - grid.Position().First();
        QTest::mouseClick(&grid, Qt::LeftButton, {}, {100, grid.RowHeight() * place + 9});
    }

    LeadingClock clock;
    Script script;
};

} // namespace

TEST_F(HistoryRoad, AnAlarmIsFoundFollowedAndSavedWhileTheBusIsWatched) {
    WriteLongPast();
    engine->setRun(true);
    simulator.Do("fault 1 7 first");
    ASSERT_TRUE(Until([&] { return !Traced("1stFLT").isEmpty(); }));
    clock.Lead(platform::OneMinute);
    QTest::qWait(1000);
    Tap(Console, "imgAcquit");
    ASSERT_TRUE(Until([&] { return !Traced("ACKLGD").isEmpty(); }));
    clock.Lead(platform::OneMinute);
    simulator.Do("normal 1 7");
    ASSERT_TRUE(Until([] { return Rows().isEmpty(); }));

    int rounds = 0;
    QObject::connect(engine.get(), &wPolling::RoundDone, engine.get(), [&] { ++rounds; });
    QTest::qWait(1000);
    Tap(Console, "imgHisto");
    Tap(FormNames::wHistoric, "imgSearch");
    rounds = 0;
    ASSERT_TRUE(Until(IsThrough));
    EXPECT_GT(rounds, 0) << "the bus waits for the search";
    EXPECT_TRUE(Told().endsWith(" lines")) << Told().toStdString();
    TouchCurrentRow();
    ASSERT_TRUE(Until(IsThrough));
    const QStringList mine = folder.History().filter("P01-C07");
    EXPECT_EQ(Told().section(' ', 0, 0), QString::number(mine.size()));
    const QString course = Find<QLabel>(Search, "lblCourse")->text();
    EXPECT_TRUE(course.contains("acknowledged after 1:") &&
                course.contains("returned to normal after 2:"))
        << course.toStdString();
    Tap(Search, "imgStep_0");
    EXPECT_TRUE(Find<FoundGrid>(Search, "grdAlarms")->CurrentLine().contains("Active"));

    script.On("dlgFilePicker", [] { Tap("dlgFilePicker", "imgControl_1"); });
    Tap(Search, "imgExport_0");
    ASSERT_TRUE(Until([] { return Told().contains(" saved "); })) << Told().toStdString();
    const QStringList saved = LinesIn(Stick(), "*.csv");
    ASSERT_EQ(saved.size(), mine.size() + 1);
    EXPECT_TRUE(saved[1].contains(";P01-C07;") && saved[1].endsWith(";Feed pump"));

    // All of the history is being saved when an alarm comes.
    Tap(Search, "imgBack");
    ASSERT_TRUE(Until(IsThrough));
    QFile::remove(Stick() + "/" + QDir(Stick()).entryList(QDir::Files).value(0));
    script.On("dlgFilePicker", [] { Tap("dlgFilePicker", "imgControl_1"); });
    Tap(Search, "imgExport_1");
    simulator.Do("fault 1 8 first");
    ASSERT_TRUE(Until([] { return NbInstances(Search) == 0; }));
    EXPECT_EQ(Rows().filter("P01-C08").size(), 1);
    EXPECT_TRUE(QDir(Stick()).isEmpty()) << "half a file";
    EXPECT_TRUE(boxes.isEmpty()) << boxes.join(u'\n').toStdString();
}
