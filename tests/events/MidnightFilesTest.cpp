#include "events/HistoProcs.h"

#include "core/ErrorHandling.h"
#include "events/SecondFolder.h"
#include "events/TextProcs.h"
#include "model/Models.h"
#include "support/Bench.h"

#include <QDateTime>
#include <QScopeGuard>
#include <QThread>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QDateTime At(int year, int month, int day, int hour = 0) {
    return QDateTime(QDate(year, month, day), QTime(hour, 0));
}

class Midnight : public QuietBench {
protected:
    Midnight() { clock.Set(2024, 3, 16, 0, 0, 4); }

    void Put(const QString& name, const QByteArray& bytes,
             const QDateTime& written = QDateTime::currentDateTime()) const {
        WriteFile(name, bytes);
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(written, QFileDevice::FileModificationTime));
    }
    QDateTime Written(const QString& name) const { return QFileInfo(Path(name)).lastModified(); }
    QStringList Names(const QString& folder, const QString& pattern = Text("*")) const {
        return QDir(Path(folder)).entryList({pattern}, QDir::Files | QDir::Hidden, QDir::Name);
    }
    static void Set(const char* key, const QString& value) {
        IniWrite(Text("Files"), Text(key), value);
    }
    /// The second folder, "copies" beside the histories.
    QString UseSecond() const {
        QDir().mkpath(Path(Second));
        Set("Histo", Path(Second));
        return Second + u'/';
    }
    static QStringList Box(const char* error) {
        return {Text("Error Nr %1\r\nModule : HistoProcs\r\nFunction : DoMidnightActions")
                    .arg(Text(error))};
    }

    /// The care of a midnight, that of the second folder to its end.
    void Night(bool purges = true) {
        HistoProcs::DoMidnightActions(care, purges);
        ErrorHandling::Guard("HistoProcs.DoMidnightActions", [this] {
            for (; care.IsBusy(); care.Look())
                QThread::msleep(1);
        });
    }

    SecondFolder care;
    const QString Second = Text("copies");
    const QString March = Text("Histo202403.his");
    const QString February = Text("Histo202402.his");
    const QDateTime Old = At(2001, 1, 1);
};

TEST_F(Midnight, TracesGoByTheDateOfTheirName) {
    const int days = GetConfig(100100).toInt();
    ASSERT_GT(days, 0);
    const QString trace = Text("Trace/");
    QStringList kept = TextList({"20240315.log", "20240316.log"});
    // What the system writes, on both sides of the limit; the time stamp says the opposite.
    for (const int day : {-1, 0, 1}) {
        const QString name =
            QDate(2024, 3, 16).addDays(day - days).toString(Text("yyyyMMdd.'log'"));
        Put(trace + name, "x", day < 0 ? QDateTime::currentDateTime() : Old);
        if (day >= 0)
            kept += name;
    }
    Put(trace + Text("19991231.LOG"), "x");
    // What others left there.
    for (const char* foreign :
         {"a.log", "notes of 2001.log", "2001.log", "20011399.log", "2001010.log", "-2001010.log",
          "20010101.txt", "20010101.log.bak", "00000000.log"}) {
        Put(trace + Text(foreign), "x", Old);
        kept += Text(foreign);
    }
    ASSERT_TRUE(QDir().mkdir(Path(trace + Text("20010102.log"))));
    Night();
    kept.sort();
    QStringList left = Names(trace);
    left.sort();
    EXPECT_EQ(left, kept);
    EXPECT_TRUE(QDir(Path(trace + Text("20010102.log"))).exists());
}

TEST_F(Midnight, HistoriesGoByTheTimeTheyWereWritten) {
    const std::tuple<const char*, const char*, QDateTime, int> rows[] = {
        {"0", "6", At(2023, 9, 16), 16},
        {"0", "1", At(2024, 2, 16), 16},
        {"1", "6", At(2024, 3, 10), 16},
        {"7", "1", At(2024, 3, 15), 16},
        {"-1", "12", At(2023, 3, 16), 16},
        // A month that is shorter than the day.
        {"0", "1", At(2024, 2, 29), 31}};
    const QString second = UseSecond();
    for (const auto& [unit, period, limit, day] : rows) {
        clock.Set(2024, 3, day, 0, 0, 4);
        Set("PeriodUnit", Text(unit));
        Set("PeriodTime", Text(period));
        Put(Text("Histo209901.his"), "x", limit.addSecs(-1));
        Put(Text("HISTO20990101.HIS"), "x", limit.addDays(-1));
        Put(Text("Histo199901.his"), "x", limit);
        Put(Text("Histo199902.his"), "x", limit.addSecs(1));
        Put(Text("Histo199901.txt"), "x", limit.addYears(-1));
        Put(Text("protected.his"), "x", limit.addYears(-1));
        QFile::setPermissions(Path(Text("protected.his")), QFile::ReadOwner);
        // The second folder is purged with the same limit.
        Put(second + Text("old.his"), "x", limit.addSecs(-1));
        Put(second + Text("young.his"), "x", limit);
        Put(second + Text("old.txt"), "x", Old);
        Night();
        const QStringList left = TextList({"Histo199901.his", "Histo199902.his"});
        EXPECT_EQ(Names(QString(), Text("*.his")), left) << unit << " " << period;
        EXPECT_TRUE(QFile::exists(Path(Text("Histo199901.txt"))));
        EXPECT_EQ(Names(second), left + TextList({"old.txt", "young.his"}));
    }
}

TEST_F(Midnight, WithoutARetentionNothingGoes) {
    const QString second = UseSecond();
    for (const char* period : {"0", "-3", "x", "", "6"}) {
        Set("PeriodTime", Text(period));
        Put(March, period, Old);
        QFile::remove(Path(second + March));
        // Nor where the clock has leapt.
        Night(Text(period) != Text("6"));
        EXPECT_EQ(BytesOf(second + March), QByteArray(period));
        EXPECT_TRUE(QFile::exists(Path(March)));
    }
}

TEST_F(Midnight, NewerFilesReplaceTheirCopies) {
    const QString second = UseSecond();
    const QDateTime when = At(2024, 3, 15, 8);
    const QString newer = Text("newer.his");
    // Times are ms later than `when`.
    const std::tuple<QString, const char*, int, const char*, int, const char*> rows[] = {
        {Text("equal.his"), "source", 0, "copy", 0, "copy"},
        // Times of a stick: even seconds.
        {Text("longer.his"), "source", 1999, "copy", 0, "source"},
        {Text("new.his"), "new", 0, nullptr, 0, "new"},
        {newer, "newer, shorter", 1, "a copy that is longer than it", 0, "newer, shorter"},
        {Text("older.his"), "source", 0, "copy", 1000, "copy"},
        {Text("other.his"), nullptr, 0, "of another machine", 0, "of another machine"},
        {Text("stick.his"), "source", 1999, "copied", 0, "copied"},
    };
    for (const auto& [name, source, later, copy, copyLater, left] : rows) {
        if (source != nullptr)
            Put(name, source, when.addMSecs(later));
        if (copy != nullptr)
            Put(second + name, copy, when.addMSecs(copyLater));
    }
    Put(Text("note.txt"), "no history", when);
    QFile::setPermissions(Path(second + newer), QFile::ReadOwner);
    for (int night = 0; night < 2; ++night) {
        Night();
        for (const auto& [name, source, later, copy, copyLater, left] : rows)
            EXPECT_EQ(BytesOf(second + name), QByteArray(left)) << name.toStdString();
        EXPECT_EQ(Written(second + newer), when.addMSecs(1));
        EXPECT_EQ(Names(second).size(), qsizetype(std::size(rows)));
    }
    // The line of the day after makes the source newer again.
    Put(Text("new.his"), "new and more", when.addDays(1));
    Night();
    EXPECT_EQ(BytesOf(second + Text("new.his")), QByteArray("new and more"));
}

TEST_F(Midnight, NothingIsCopiedWhereThereIsNoOtherFolder) {
    Put(March, "x", At(2024, 3, 15));
    Put(Text("a file"), "x");
    const QString own = platform::ApplicationFolder();
    Set("Histo", own);
    const QStringList before = Names(QString());
    for (const QString& folder : {QString(), Path(Text("missing")), Path(Text("a file")), own,
                                  own + u'/', own + Text("/Trace/.."), Text(".")}) {
        Set("Histo", folder);
        Night();
        EXPECT_EQ(BytesOf(March), QByteArray("x")) << folder.toStdString();
        EXPECT_EQ(Written(March), At(2024, 3, 15));
        EXPECT_FALSE(QFile::exists(Path(Text("missing"))));
        EXPECT_EQ(Names(Text("Trace"), Text("*.his")), QStringList());
    }
    EXPECT_EQ(TraceLines().filter(Text("HISTORIES NOT COPIED TO ")).size(), 2);
    EXPECT_EQ(Names(QString()), before);
    // As typed: beside the histories, whatever folder the program was started in.
    UseSecond();
    Set("Histo", Second);
    Night();
    EXPECT_EQ(BytesOf(Second + u'/' + March), QByteArray("x"));
}

TEST_F(Midnight, AnotherDiskTakesWhatFitsAndAProtectedOneStopsNothing) {
    // A small file system in memory.
    const QString second = UseSecond();
    const QByteArray folder = QFile::encodeName(Path(second));
    const auto mounted = [&](unsigned long flags, const char* options) {
        return mount("tmpfs", folder.constData(), "tmpfs", flags, options) == 0;
    };
    const auto back = qScopeGuard([&] { umount2(folder.constData(), MNT_DETACH); });
    if (!mounted(0, "size=64k"))
        GTEST_SKIP() << "mounting needs the system's master";
    const QDateTime when = At(2024, 3, 15, 8);
    Put(second + February, "the copy of yesterday", when);
    Put(March, QByteArray(20000, 'y'), when);
    // The second one is a little too long: its last bytes alone don't fit.
    for (const int size : {100000, 40961}) {
        Put(February, QByteArray(size, 'x'), when.addDays(1));
        Night();
        EXPECT_EQ(BytesOf(second + February), QByteArray("the copy of yesterday"));
        EXPECT_EQ(BytesOf(second + March), QByteArray(20000, 'y'));
        EXPECT_EQ(Written(second + March), when);
        EXPECT_EQ(Names(second), QStringList({February, March})) << "no rest of a copy";
        EXPECT_EQ(Boxes(), Box("61 : Disk full"));
    }

    Set("PeriodTime", Text("6"));
    Put(second + Text("old.his"), "x", Old);
    Put(Text("old.his"), "x", Old);
    Put(February, "x");
    ASSERT_TRUE(mounted(MS_REMOUNT | MS_RDONLY, nullptr));
    Night();
    EXPECT_EQ(Names(second), QStringList({February, March, Text("old.his")}));
    EXPECT_EQ(Names(QString(), Text("*.his")), QStringList({February, March}));
    EXPECT_EQ(Boxes(), Box("75 : Path/File access error")) << "once";
}

TEST_F(Midnight, AMediumThatHangsHoldsNothingUp) {
    const QString second = UseSecond();
    Put(March, "x");
    // Whoever opens a pipe to write waits until somebody reads.
    const QByteArray pipe = QFile::encodeName(Path(second + March + Text(".tmp")));
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    for (const int noted : {0, 1, 2}) {
        HistoProcs::DoMidnightActions(care);
        care.Look();
        EXPECT_TRUE(care.IsBusy());
        EXPECT_EQ(TraceLines().filter(Text("HISTORIES NOT COPIED TO ")).size(), noted);
    }
    const int reader = open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    Night();
    close(reader);
    EXPECT_EQ(Boxes(), Box("57 : Device I/O error"));
    Night();
    EXPECT_EQ(BytesOf(second + March), QByteArray("x"));
}

TEST_F(Midnight, ATraceThatCannotBeOpenedKeepsNoFileFromItsEnd) {
    ASSERT_TRUE(QDir().mkpath(Path(Text("Trace/20240316.log"))));
    const QString second = UseSecond();
    Set("PeriodTime", Text("6"));
    Put(Text("old.his"), "x", Old);
    Put(March, "x");
    Night();
    EXPECT_EQ(Boxes(), Box("75 : Path/File access error"));
    EXPECT_EQ(Names(QString(), Text("*.his")), QStringList(March));
    EXPECT_EQ(Names(second), QStringList(March));
}

class HistoFile : public QuietBench {
protected:
    HistoFile() { AddPanel(3, Models::Q7100); }

    EventClass Event() {
        EventClass event(3, 5, 0, 1);
        event.setNum(42);
        event.setGDH(clock.Now());
        return event;
    }
};

const QString Month = Text("Histo202403.his");

TEST_F(HistoFile, BeginsWithItsHeadingAndGrowsLineByLine) {
    HistoProcs::HistoEvent(Event());
    HistoProcs::HistoEvent(Event());
    const QByteArray bytes = BytesOf(Month);
    EXPECT_EQ(bytes.size(), 3 * 140);
    const QByteArray heading = "Date       Time     Evt\xA0No PnlCnt  Origin  Parameter   Display"
                               "         Common\xA0text                Specific\xA0text";
    EXPECT_EQ(bytes.left(140), heading.leftJustified(138, ' ') + "\r\n");
    const QStringList lines = LinesOf(Month);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[1],
              TextProcs::HistoScreenLineToHistoFileLine(TextProcs::FormateHistoScreen(Event())));
    EXPECT_EQ(lines[2], lines[1]);
    // One byte for each character.
    Site().Panel(3).Channel(5).setScreenText(QStringLiteral(u"Überdruck 5 \u20AC \u0394"));
    HistoProcs::HistoEvent(Event());
    EXPECT_EQ(BytesOf(Month).mid(3 * 140 + 98, 40).trimmed(), QByteArray("\xDC"
                                                                         "berdruck 5 \x80 ?"));
}

TEST_F(HistoFile, IsNamedAfterTheMomentOfWriting) {
    WriteFile(Month, "note\r\n");
    EventClass old = Event();
    old.setGDH(clock.Now() - 40);
    HistoProcs::HistoEvent(old);
    EXPECT_EQ(LinesOf(Month).size(), 2) << "no heading in a file that was there";
    EXPECT_EQ(LinesOf(Month).value(0), Text("note"));

    // A change to daily files leaves the file of the month as it is.
    IniWrite(Text("Files"), Text("PeriodUnit"), Text("1"));
    for (const auto second : {0, 1, 2}) {
        HistoProcs::HistoEvent(Event());
        if (second == 0)
            clock.Set(2024, 12, 31, 23, 59, 58);
        clock.Advance(1000);
    }
    EXPECT_EQ(LinesOf(Month).size(), 2);
    for (const char* day : {"20240315", "20241231", "20250101"})
        EXPECT_EQ(LinesOf(Text("Histo%1.his").arg(Text(day))).size(), 2) << day;
}

TEST_F(HistoFile, ThatCannotBeWrittenIsToldOnce) {
    ASSERT_TRUE(QDir().mkdir(Path(Month)));
    HistoProcs::HistoEvent(Event());
    EXPECT_EQ(Boxes(), TextList({"Error Nr 75 : Path/File access error\r\nModule : "
                                 "HistoProcs\r\nFunction : HistoEvent"}));
    EXPECT_TRUE(Faults::Stands(Faults::Kind::HistoryNotWritten));
    // Its folder goes away as a whole, and comes back with the next event.
    ASSERT_TRUE(QDir(Path(QString())).removeRecursively());
    HistoProcs::HistoEvent(Event());
    EXPECT_EQ(LinesOf(Month).size(), 2) << "heading and event";
    EXPECT_FALSE(Faults::Stands(Faults::Kind::HistoryNotWritten));
}

} // namespace
