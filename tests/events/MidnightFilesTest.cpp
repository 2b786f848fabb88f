#include "events/HistoProcs.h"

#include "model/Models.h"
#include "support/Bench.h"

#include <QDateTime>
#include <sys/mount.h>

namespace {

QDateTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second));
}

/// A small file system in memory at a folder, as long as it lives.
class Disk {
public:
    Disk(const QString& folder, const char* options)
        : folder_(QFile::encodeName(folder)) {
        QDir().mkpath(folder);
        mounted_ = mount("tmpfs", folder_.constData(), "tmpfs", 0, options) == 0;
    }
    ~Disk() {
        if (mounted_)
            umount2(folder_.constData(), MNT_DETACH);
    }
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    bool IsThere() const { return mounted_; }
    bool Protect() const {
        return mount("tmpfs", folder_.constData(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

private:
    QByteArray folder_;
    bool mounted_ = false;
};

class Midnight : public Bench {
protected:
    Midnight() { clock.Set(2024, 3, 16, 0, 0, 4); }

    void Put(const QString& name, const QByteArray& bytes,
             const QDateTime& written = QDateTime::currentDateTime()) const {
        QDir().mkpath(QFileInfo(Path(name)).path());
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.flush();
        ASSERT_TRUE(file.setFileTime(written, QFileDevice::FileModificationTime));
    }
    QDateTime Written(const QString& name) const { return QFileInfo(Path(name)).lastModified(); }
    QStringList Names(const QString& folder, const QString& pattern = QStringLiteral("*")) const {
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
    static QString Box(const char* error) {
        return Text("Error Nr %1\r\nModule : HistoProcs\r\nFunction : DoMidnightActions")
            .arg(Text(error));
    }

    const QString Second = QStringLiteral("copies");
    const QString March = QStringLiteral("Histo202403.his");
    const QString February = QStringLiteral("Histo202402.his");
};

TEST_F(Midnight, FilesFollowTheDayAndTheMonth) {
    AddPanel(3, Models::Q7100);
    const auto work = [this] {
        Trace::Write(Text("line"));
        EventClass event(3, 5, 0, 1);
        event.setGDH(clock.Now());
        HistoProcs::HistoEvent(event);
    };
    clock.Set(2024, 2, 29, 23, 59, 59);
    HistoProcs::DoMidnightActions();
    work();
    clock.Advance(1000);
    HistoProcs::DoMidnightActions();
    work();
    Set("PeriodUnit", Text("1"));
    work();
    EXPECT_EQ(LinesOf(Text("Trace/20240229.log")), QStringList(Text("line")));
    EXPECT_EQ(LinesOf(Text("Trace/20240301.log")).size(), 2);
    EXPECT_EQ(Names(QString(), Text("*.his")),
              QStringList({February, March, Text("Histo20240301.his")}));
    EXPECT_EQ(boxes, QStringList());
}

TEST_F(Midnight, TracesGoByTheDateOfTheirName) {
    const int days = GetConfig(100100).toInt();
    ASSERT_GT(days, 0);
    const QDate limit = QDate(2024, 3, 16).addDays(-days);
    const auto name = [](const QDate& date) {
        return date.toString(Text("yyyyMMdd")) + Text(".log");
    };
    const QString trace = Text("Trace/");
    const QDateTime old = At(2001, 1, 1);
    // What the system writes, on both sides of the limit; the time stamp says the opposite.
    Put(trace + name(limit), "x", old);
    Put(trace + name(limit.addDays(1)), "x", old);
    Put(trace + name(limit.addDays(-1)), "x");
    Put(trace + Text("19991231.LOG"), "x");
    QStringList kept = {name(limit), name(limit.addDays(1)), Text("20240315.log"),
                        Text("20240316.log")};
    // What others left there.
    for (const char* foreign :
         {"a.log", "notes of 2001.log", "2001.log", "20011399.log", "2001010.log", "-2001010.log",
          "20010101.txt", "20010101.log.bak", "00000000.log"}) {
        Put(trace + Text(foreign), "x", old);
        kept += Text(foreign);
    }
    ASSERT_TRUE(QDir().mkdir(Path(trace + Text("20010102.log"))));
    HistoProcs::DoMidnightActions();
    kept.sort();
    QStringList left = Names(trace, Text("*"));
    left.sort();
    EXPECT_EQ(left, kept);
    EXPECT_TRUE(QDir(Path(trace + Text("20010102.log"))).exists());
    EXPECT_EQ(boxes, QStringList());
}

TEST_F(Midnight, HistoriesGoByTheTimeTheyWereWritten) {
    struct {
        const char* unit;
        const char* period;
        QDateTime limit;
    } const rows[] = {{"0", "6", At(2023, 9, 16)},
                      {"0", "1", At(2024, 2, 16)},
                      {"1", "6", At(2024, 3, 10)},
                      {"7", "1", At(2024, 3, 15)},
                      {"-1", "12", At(2023, 3, 16)}};
    for (const auto& row : rows) {
        Set("PeriodUnit", Text(row.unit));
        Set("PeriodTime", Text(row.period));
        Put(Text("Histo209901.his"), "x", row.limit.addSecs(-1));
        Put(Text("HISTO20990101.HIS"), "x", row.limit.addDays(-1));
        Put(Text("Histo199901.his"), "x", row.limit);
        Put(Text("Histo199902.his"), "x", row.limit.addSecs(1));
        Put(Text("Histo199901.txt"), "x", row.limit.addYears(-1));
        Put(Text("protected.his"), "x", row.limit.addYears(-1));
        QFile::setPermissions(Path(Text("protected.his")), QFile::ReadOwner);
        HistoProcs::DoMidnightActions();
        EXPECT_EQ(Names(QString(), Text("*.his")),
                  QStringList({Text("Histo199901.his"), Text("Histo199902.his")}))
            << row.unit << " " << row.period;
        EXPECT_TRUE(QFile::exists(Path(Text("Histo199901.txt"))));
    }
    EXPECT_EQ(boxes, QStringList());
}

TEST_F(Midnight, AMonthShorterThanTheDayEndsTheRetention) {
    clock.Set(2024, 3, 31);
    Set("PeriodTime", Text("1"));
    Put(Text("a.his"), "x", At(2024, 2, 28, 23, 59, 59));
    Put(Text("b.his"), "x", At(2024, 2, 29));
    HistoProcs::DoMidnightActions();
    EXPECT_EQ(Names(QString(), Text("*.his")), QStringList(Text("b.his")));
}

TEST_F(Midnight, WithoutARetentionNothingGoesAndAllIsCopied) {
    const QString second = UseSecond();
    for (const char* period : {"0", "-3", "x", ""}) {
        Set("PeriodTime", Text(period));
        Put(March, period, At(1990, 1, 1));
        QFile::remove(Path(second + March));
        HistoProcs::DoMidnightActions();
        EXPECT_EQ(BytesOf(second + March), QByteArray(period));
        EXPECT_TRUE(QFile::exists(Path(March)));
    }
}

TEST_F(Midnight, TheSecondFolderIsPurgedWithTheSameLimit) {
    const QString second = UseSecond();
    Set("PeriodTime", Text("6"));
    Put(second + Text("old.his"), "x", At(2023, 9, 15, 23, 59, 59));
    Put(second + Text("young.his"), "x", At(2023, 9, 16));
    Put(second + Text("old.txt"), "x", At(2001, 1, 1));
    Put(Text("old.his"), "x", At(2023, 9, 15));
    HistoProcs::DoMidnightActions();
    EXPECT_EQ(Names(second), QStringList({Text("old.txt"), Text("young.his")}));
}

TEST_F(Midnight, NewerFilesReplaceTheirCopies) {
    const QString second = UseSecond();
    const QDateTime when = At(2024, 3, 15, 8);
    Put(Text("new.his"), "new", when);
    Put(Text("newer.his"), "newer, shorter", when.addMSecs(1));
    Put(second + Text("newer.his"), "a copy that is longer than it", when);
    Put(Text("equal.his"), "source", when);
    Put(second + Text("equal.his"), "copy", when);
    Put(Text("older.his"), "source", when);
    Put(second + Text("older.his"), "copy", when.addSecs(1));
    Put(second + Text("other.his"), "of another machine", when);
    Put(Text("note.txt"), "no history", when);
    // Times of a stick: even seconds.
    Put(Text("stick.his"), "source", when.addMSecs(1999));
    Put(second + Text("stick.his"), "copied", when);
    Put(Text("longer.his"), "source", when.addMSecs(1999));
    Put(second + Text("longer.his"), "copy", when);
    QFile::setPermissions(Path(second + Text("newer.his")), QFile::ReadOwner);
    for (int night = 0; night < 2; ++night) {
        HistoProcs::DoMidnightActions();
        EXPECT_EQ(BytesOf(second + Text("new.his")), QByteArray("new"));
        EXPECT_EQ(BytesOf(second + Text("newer.his")), QByteArray("newer, shorter"));
        EXPECT_EQ(BytesOf(second + Text("equal.his")), QByteArray("copy"));
        EXPECT_EQ(BytesOf(second + Text("older.his")), QByteArray("copy"));
        EXPECT_EQ(BytesOf(second + Text("stick.his")), QByteArray("copied"));
        EXPECT_EQ(BytesOf(second + Text("longer.his")), QByteArray("source"));
        EXPECT_EQ(Written(second + Text("newer.his")), when.addMSecs(1));
        EXPECT_EQ(Names(second), QStringList({Text("equal.his"), Text("longer.his"),
                                              Text("new.his"), Text("newer.his"), Text("older.his"),
                                              Text("other.his"), Text("stick.his")}));
    }
    // The line of the day after makes the source newer again.
    Put(Text("new.his"), "new and more", when.addDays(1));
    HistoProcs::DoMidnightActions();
    EXPECT_EQ(BytesOf(second + Text("new.his")), QByteArray("new and more"));
    EXPECT_EQ(boxes, QStringList());
}

TEST_F(Midnight, NothingIsCopiedWhereThereIsNoOtherFolder) {
    Put(March, "x", At(2024, 3, 15));
    Put(Text("a file"), "x");
    const QStringList before = Names(QString(), Text("*"));
    const QString own = platform::ApplicationFolder();
    for (const QString& folder : {QString(), Path(Text("missing")), Path(Text("a file")), own,
                                  own + u'/', own + Text("/Trace/.."), Text(".")}) {
        Set("Histo", folder);
        HistoProcs::DoMidnightActions();
        EXPECT_EQ(BytesOf(March), QByteArray("x")) << folder.toStdString();
        EXPECT_EQ(Written(March), At(2024, 3, 15));
        EXPECT_FALSE(QFile::exists(Path(Text("missing"))));
        EXPECT_EQ(Names(Text("Trace"), Text("*.his")), QStringList());
    }
    EXPECT_EQ(TraceLines().filter(Text("HISTORIES NOT COPIED TO ")).size(), 2);
    EXPECT_EQ(Names(QString(), Text("*")).size(), before.size() + 1) << "the settings";
    EXPECT_EQ(boxes, QStringList());
    // As typed: beside the histories, whatever folder the program was started in.
    UseSecond();
    Set("Histo", Second);
    HistoProcs::DoMidnightActions();
    EXPECT_EQ(BytesOf(Second + u'/' + March), QByteArray("x"));
}

TEST_F(Midnight, AnotherDiskTakesWhatFits) {
    const Disk disk(Path(Second), "size=64k");
    if (!disk.IsThere())
        GTEST_SKIP() << "mounting needs the system's master";
    const QString second = UseSecond();
    const QDateTime when = At(2024, 3, 15, 8);
    Put(second + February, "the copy of yesterday", when);
    Put(February, QByteArray(100000, 'x'), when.addDays(1));
    Put(March, QByteArray(20000, 'y'), when);
    HistoProcs::DoMidnightActions();
    EXPECT_EQ(BytesOf(second + February), QByteArray("the copy of yesterday"));
    EXPECT_EQ(BytesOf(second + March), QByteArray(20000, 'y'));
    EXPECT_EQ(Written(second + March), when);
    EXPECT_EQ(Names(second), QStringList({February, March})) << "no rest of a copy";
    EXPECT_EQ(boxes, QStringList(Box("61 : Disk full")));

    // A file that is a little too long, whose last bytes alone don't fit.
    boxes.clear();
    Put(February, QByteArray(40961, 'z'), when.addDays(2));
    HistoProcs::DoMidnightActions();
    EXPECT_EQ(BytesOf(second + February), QByteArray("the copy of yesterday"));
    EXPECT_EQ(Names(second), QStringList({February, March}));
    EXPECT_EQ(boxes.size(), 1);
}

TEST_F(Midnight, AProtectedDiskIsToldOnceAndStopsNothing) {
    const Disk disk(Path(Second), "size=64k");
    if (!disk.IsThere())
        GTEST_SKIP() << "mounting needs the system's master";
    const QString second = UseSecond();
    Set("PeriodTime", Text("6"));
    Put(second + Text("old.his"), "x", At(2001, 1, 1));
    Put(Text("old.his"), "x", At(2001, 1, 1));
    Put(February, "x");
    Put(March, "x");
    ASSERT_TRUE(disk.Protect());
    HistoProcs::DoMidnightActions();
    EXPECT_EQ(Names(second), QStringList(Text("old.his")));
    EXPECT_EQ(Names(QString(), Text("*.his")), QStringList({February, March}));
    EXPECT_EQ(boxes, QStringList(Box("75 : Path/File access error")));
}

TEST_F(Midnight, ATraceThatCannotBeOpenedKeepsNoFileFromItsEnd) {
    ASSERT_TRUE(QDir().mkpath(Path(Text("Trace/20240316.log"))));
    const QString second = UseSecond();
    Set("PeriodTime", Text("6"));
    Put(Text("old.his"), "x", At(2001, 1, 1));
    Put(March, "x");
    HistoProcs::DoMidnightActions();
    EXPECT_EQ(boxes, QStringList(Box("75 : Path/File access error")));
    EXPECT_EQ(Names(QString(), Text("*.his")), QStringList(March));
    EXPECT_EQ(Names(second), QStringList(March));
}

} // namespace
