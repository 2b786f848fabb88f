// From the contact of a module to the alarm report on the stick, through the real windows, while
// the bus goes on.

#include "core/FormNames.h"
#include "platform/Volumes.h"
#include "support/Road.h"
#include "support/Script.h"

#include <QDir>
#include <QLabel>

namespace {

class ReportRoad : public Road {
protected:
    ReportRoad()
        : Road({"1=Q7100"}) {
        for (int option = 0; option <= 4; ++option) {
            Site().setOptionScreen(option, true);
            Site().setOptionHisto(option, true);
        }
        Site().Panel(1).Channel(3).setHisto(true);
        Site().Panel(1).Channel(3).setScreenText("Boiler");
    }
    ~ReportRoad() override { platform::OverrideVolumes({}); }
    ReportRoad(const ReportRoad&) = delete;
    ReportRoad& operator=(const ReportRoad&) = delete;

    static QString Figure(int place) {
        return Find<QLabel>(FormNames::wAlarmReport, QStringLiteral("lblFigure_%1").arg(place))
            ->text();
    }
    static bool Reads() { return Find(FormNames::wAlarmReport, "imgCancel")->isVisible(); }
    bool Stands(const char* words) const { return !folder.History().filter(words).isEmpty(); }
};

} // namespace

TEST_F(ReportRoad, AnAlarmIsCountedAndSavedWhileTheBusIsPolled) {
    Forms::Show(FormNames::wRunAlarms);
    engine->setRun(true);
    simulator.Do("active 1 3");
    ASSERT_TRUE(Until([&] { return Stands("Active"); }));
    simulator.Do("ack 1");
    ASSERT_TRUE(Until([&] { return Stands("Acknowledged"); }));
    simulator.Do("normal 1 3");
    ASSERT_TRUE(Until([&] { return Stands("Normal"); }));
    // A year ago there was more to read than fits a slice.
    QFile past(
        folder.Path("Histo" + QDate::currentDate().addDays(-20).toString("yyyyMMdd") + ".his"));
    ASSERT_TRUE(past.open(QIODevice::WriteOnly));
    const QByteArray line = QDate::currentDate().addDays(-20).toString("yyyy-MM-dd").toLatin1() +
                            " 10:00:00 000001 0000001 P01-C04 State       Active\r\n";
    for (int i = 0; i < 300; ++i)
        past.write(line.repeated(1000));
    past.close();

    // The console takes no touch before its change can have been seen.
    ASSERT_TRUE(Until([] {
        Tap(FormNames::wRunAlarms, "imgHisto");
        return NbInstances(FormNames::wHistoric) == 1;
    }));
    int rounds = 0;
    QObject::connect(engine.get(), &wPolling::RoundDone, engine.get(),
                     [&] { rounds += NbInstances(FormNames::wAlarmReport) == 1 && Reads(); });
    Tap(FormNames::wHistoric, "imgReport");
    ASSERT_TRUE(Until([] { return !Reads(); }));
    EXPECT_GT(rounds, 0) << "the bus stood still";
    EXPECT_EQ(Figure(0), "Alarms   1");
    EXPECT_TRUE(Figure(5).startsWith("Acknowledged in, median   0:00:")) << qPrintable(Figure(5));

    const QString stick = folder.Path("stick");
    QDir().mkpath(stick);
    platform::OverrideVolumes(QList<platform::Volume>{{"STICK", stick}});
    for (const char* button : {"imgPdf", "imgCsv"}) {
        Script script;
        script.On(FormNames::dlgFilePicker, [] { Tap(FormNames::dlgFilePicker, "imgControl_1"); });
        Tap(FormNames::wAlarmReport, button);
    }
    EXPECT_EQ(QDir(stick).entryList(QDir::Files).size(), 2);
    QFile csv(QDir(stick).filePath(QDir(stick).entryList({"*.csv"}).value(0)));
    ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
    EXPECT_TRUE(csv.readAll().contains("P01-C03;1;100.0;Boiler\r\n"));

    // The next alarm takes the display while a report is read.
    Tap(FormNames::wAlarmReport, "cmdUnit_3");
    simulator.Do("active 1 3");
    ASSERT_TRUE(Until([] { return NbInstances(FormNames::wAlarmReport) == 0; }));
    EXPECT_FALSE(Rows().isEmpty());
    EXPECT_TRUE(boxes.isEmpty()) << qPrintable(boxes.join(u'\n'));
}
