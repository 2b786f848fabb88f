#include "events/Backup.h"
#include "core/Faults.h"
#include "events/BackupFile.h"
#include "events/Restore.h"
#include "model/CurrentConfig.h"
#include "platform/RunTimeError.h"
#include "platform/Volumes.h"
#include "support/Bench.h"

#include <QCoreApplication>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class BackupTest : public Bench {
protected:
    BackupTest() {
        EXPECT_TRUE(QDir().mkdir(Stick()));
        platform::OverrideVolumes(QList<platform::Volume>{{"STICK", Stick()}});
        Site().Panel(1).setTitle("Boiler");
        Site().Save(Path("plant.kv2"));
        SaveCurrentConfig();
        WriteFile("Histo202401.his", "january\r\n");
        WriteFile("Histo202402.his", "february\r\n");
        WriteFile("AlarmSound5.wav", "RIFF");
        WriteFile("ALARM.WAV", "RIFF");
        WriteFile("own.prt", "[Styles]");
        WriteFile("korvanelle.ini",
                  "[General]\r\nLastEvent=40\r\nNoResize=0\r\nLanguage=2\r\n[Files]\r\nLastUsed=" +
                      Path("plant.kv2").toLatin1() +
                      "\r\n[PendingCommands]\r\n1=old\r\n[Ports]\r\nCOM3=/dev/old\r\n");
        EXPECT_TRUE(QDir().mkdir(Path("Certificates")));
        for (const char* name : {"Certificates/own.PEM", "Certificates/left.pem", "far.pem"})
            WriteFile(name, "KEY");
        IniWrite("Forward", "Certificate", Path("Certificates/own.PEM"));
        IniWrite("Forward", "Authority", Path("far.pem"));
    }
    QString Stick() const { return Path("stick"); }
    QStringList OnStick() const { return QDir(Stick()).entryList(QDir::Files, QDir::Name); }

    static void WaitFor(const BackupJob& job) {
        while (job.Outcome() == BackupJob::State::Running)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 60000);
    }
    QString MakeBackup(bool automatic = false) {
        BackupJob job(Stick(), automatic, nullptr);
        WaitFor(job);
        EXPECT_EQ(job.Outcome(), BackupJob::State::Complete) << job.Error();
        return job.Path();
    }
    Restore::Plan Stage(const QString& backup) {
        platform::Unwatched nobody;
        return Restore::Stage(backup, Restore::Places::OfProgram(), nobody);
    }
    QStringList Stages() const {
        return QDir(Path(QString())).entryList({"Restore*"}, QDir::Dirs | QDir::Files);
    }
    /// Number of the error with which a file of these bytes is refused, 0 when it isn't.
    int Refusal(const QByteArray& bytes) {
        WriteFile("refused.zip", bytes);
        try {
            Stage(Path("refused.zip"));
            return 0;
        } catch (const platform::RunTimeError& error) {
            EXPECT_EQ(Stages(), QStringList());
            return error.Number();
        }
    }
    /// Another machine, with a past of its own.
    void BecomeAnother() {
        for (const char* name : {"plant.kv2", "Histo202401.his", "own.prt", "korvanelle.dat"})
            QFile::remove(Path(name));
        QDir(Path("Certificates")).removeRecursively();
        WriteFile("Histo202402.his", "another february\r\n");
        WriteFile("AlarmSound5.wav", "RIFF2");
        WriteFile("korvanelle.ini", "[General]\r\nLastEvent=12\r\nNoResize=1\r\n"
                                    "[PendingCommands]\r\n1=new\r\n[Ports]\r\nCOM3=/dev/new\r\n");
    }
    /// All files of the folder with their content.
    QMap<QString, QByteArray> Content() const {
        QMap<QString, QByteArray> content;
        for (const QString& name : QDir(Path(QString())).entryList(QDir::Files))
            content[name] = BytesOf(name);
        return content;
    }
};

} // namespace

TEST_F(BackupTest, RefusesWhatIsCutAlteredOrForeign) {
    const QString own = Backup::FileName(clock.Now(), true) + ".tmp.Xy12ab";
    for (const QString& left : {own, QString("Korvanelle-other-20240317-020000.zip.tmp.Xy12ab")})
        EXPECT_TRUE(QFile(Stick() + u'/' + left).open(QIODevice::WriteOnly));
    const QString path = MakeBackup();
    EXPECT_EQ(OnStick().size(), 2) << "another machine's is on its way";
    EXPECT_FALSE(OnStick().contains(own));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    EXPECT_EQ(Refusal(whole), 0);
    QList<QByteArray> bad{QByteArray(), "PK", "hello", whole + '\n'};
    for (qsizetype size = 0; size < whole.size(); size += 1000)
        bad += whole.left(size);
    for (qsizetype at = 0; at < whole.size(); at += 37) {
        bad += whole;
        bad.last()[at] = char(bad.last()[at] ^ (1 << at % 8));
    }
    for (qsizetype i = whole.size() - 70; i < whole.size(); ++i) {
        bad += whole;
        bad.last()[i] = char(bad.last()[i] ^ 0x20);
    }
    for (qsizetype i = 0; i < bad.size(); ++i)
        EXPECT_EQ(Refusal(bad[i]), platform::errors::InvalidPropertyValue) << i;
}

// A good digest over a manifest that leads out of its folder.
TEST_F(BackupTest, TakesNothingButFilesOfItsKinds) {
    platform::Unwatched nobody;
    for (const char* name : {"site/../x.kv2", "../x.wav", "/etc/x.his", "sounds/x.sh",
                             "history/a/b.his", "site/other.dat", "history/..\\x.his",
                             "certificates/..", "certificates/../x.pem", "certificates/x.sh"}) {
        const QString path = Path("forged.zip");
        EXPECT_THROW(BackupFile::Write(path, {}, {{name, {}, "x", 1, {}}}, nobody),
                     platform::RunTimeError)
            << name;
        EXPECT_FALSE(QFile::exists(path) || QFile::exists(path + ".tmp")) << name;
    }
}

TEST_F(BackupTest, MovesAMachineOntoAnother) {
    const QByteArray site = BytesOf("korvanelle.dat");
    const QDateTime written = QFileInfo(Path("Histo202401.his")).lastModified();
    const QString path = MakeBackup();
    BecomeAnother();
    const auto before = Content();
    const Restore::Plan plan = Stage(path);
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(plan.TargetsOf("history", Restore::Effect::New), QStringList{"Histo202401.his"});
    EXPECT_EQ(plan.TargetsOf("history", Restore::Effect::Beside), QStringList{"Histo202402R1.his"});
    EXPECT_EQ(plan.TargetsOf("sounds", Restore::Effect::Replaced), QStringList{"AlarmSound5.wav"});
    Restore::Commit(plan, true);
    // The month of a line that comes meanwhile, and its number.
    WriteFile("Histo202401.his", "line\r\n");
    IniWrite("General", "LastEvent", "41");
    EXPECT_TRUE(Restore::Complete());
    EXPECT_EQ(BytesOf("Histo202401.his"), "line\r\n");
    ASSERT_TRUE(QFile::remove(Path("Histo202401.his")));
    ASSERT_TRUE(QFile::rename(Path("Histo202401R1.his"), Path("Histo202401.his")));
    EXPECT_EQ(BytesOf("korvanelle.dat"), site);
    EXPECT_EQ(BytesOf("Histo202402.his"), "another february\r\n");
    EXPECT_EQ(BytesOf("Histo202402R1.his"), "february\r\n");
    EXPECT_EQ(BytesOf("own.prt"), "[Styles]");
    const QFile key(Path("Certificates/own.PEM"));
    EXPECT_EQ(BytesOf("Certificates/own.PEM"), "KEY");
    EXPECT_EQ(key.permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    EXPECT_EQ(IniRead("Forward", "Certificate", ""), key.fileName());
    EXPECT_EQ(IniRead("Forward", "Authority", ""), Path("far.pem"));
    EXPECT_EQ(QDir(Path("Certificates")).entryList(QDir::Files), QStringList{"own.PEM"});
    EXPECT_EQ(QFileInfo(Path("Histo202401.his")).lastModified(), written);
    EXPECT_EQ(IniRead("General", "LastEvent", ""), "41");
    EXPECT_EQ(IniRead("General", "Language", ""), "2");
    EXPECT_EQ(IniRead("General", "NoResize", ""), "1");
    EXPECT_EQ(IniRead("Ports", "COM3", ""), "/dev/new");
    EXPECT_EQ(IniRead("PendingCommands", "1", ""), "new");
    EXPECT_EQ(IniRead("Files", "LastUsed", ""), Path("plant.kv2"));
    EXPECT_EQ(Stages(), QStringList());
    // A second time there is nothing to add, and a history that has grown goes on.
    WriteFile("Histo202401.his", "january\r\nmore\r\n");
    const Restore::Plan again = Stage(path);
    for (const Restore::Item& item : again.items)
        EXPECT_TRUE(item.effect == Restore::Effect::Same || item.name == BackupFile::SettingsFile)
            << item.name.toStdString();
}

// Killed at any moment, a restore has not begun or comes to its end at the next start.
TEST_F(BackupTest, IsAllOrNothingOverAKill) {
    const QString path = MakeBackup();
    BecomeAnother();
    const auto before = Content();
    Stage(path);
    EXPECT_EQ(Stages(), QStringList()) << "nobody waits for it";
    EXPECT_TRUE(QDir().mkdir(Path("Restore.stage7")));
    EXPECT_FALSE(Restore::CompleteAtStart());
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(Stages(), QStringList());
    platform::OverrideSpace(platform::Space{5'000'100, 100'000'000});
    EXPECT_THROW(Stage(path), platform::RunTimeError) << "no room for what the watch writes";
    EXPECT_EQ(Stages(), QStringList());
    platform::OverrideSpace(platform::Space{50'000'000, 100'000'000});

    const auto Names = [&] { return Content().keys(); };
    Restore::Commit(Stage(path), false);
    ASSERT_TRUE(Restore::Complete());
    const auto after = Content();
    int killedInTheMiddle = 0;
    for (int round = 0; round < 15; ++round) {
        for (const QString& name : Names())
            QFile::remove(Path(name));
        for (auto file = before.cbegin(); file != before.cend(); ++file)
            WriteFile(file.key(), file.value());
        Restore::Commit(Stage(path), false);
        const pid_t child = fork();
        if (child == 0) {
            Restore::Complete();
            _exit(0);
        }
        usleep(useconds_t(300 + round * 100));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        killedInTheMiddle += WIFSIGNALED(status) ? 1 : 0;
        Restore::CompleteAtStart();
        EXPECT_EQ(Content(), after) << round;
        EXPECT_EQ(Stages(), QStringList()) << round;
    }
    RecordProperty("killed", killedInTheMiddle);
}

TEST_F(BackupTest, IsMadeOnItsDayAndTheLastFourStay) {
    BackupSchedule schedule;
    const auto Look = [&] {
        schedule.Look();
        if (BackupJob::Current() != nullptr)
            WaitFor(*BackupJob::Current());
    };
    clock.Set(2024, 3, 13, 12);
    Backup::setWeekday(7);
    clock.Set(2024, 3, 17, 1, 59);
    Look();
    EXPECT_TRUE(OnStick().isEmpty());
    for (int week = 0; week < 6; ++week) {
        platform::OverrideVolumes(QList<platform::Volume>{{"STICK", Stick()}});
        clock.Set(2024, 3, 17, 2 + week % 3);
        clock.Set(clock.Now() + 7 * week);
        Look();
        Look();
        EXPECT_EQ(OnStick().size(), qMin(week + 1, Backup::KeptAutomatic)) << week;
        for (const QString& name : OnStick())
            EXPECT_TRUE(Backup::IsOwnAutomatic(name)) << name.toStdString();
        platform::OverrideVolumes(QList<platform::Volume>{});
    }
    EXPECT_FALSE(Faults::Stands(Faults::Kind::NoBackup));
    // Two weeks without a stick are told, and over with the next backup.
    clock.Set(clock.Now() + 15);
    Look();
    EXPECT_TRUE(Faults::Stands(Faults::Kind::NoBackup));
    clock.Set(clock.Now() + 6);
    platform::OverrideVolumes(QList<platform::Volume>{{"STICK", Stick()}});
    Look();
    EXPECT_FALSE(Faults::Stands(Faults::Kind::NoBackup));
    // What fails is told until one is good, whoever made it.
    clock.Set(clock.Now() + 7);
    QFile::remove(Path("korvanelle.dat"));
    EXPECT_TRUE(QDir().mkdir(Path("korvanelle.dat")));
    Look();
    EXPECT_TRUE(Faults::Stands(Faults::Kind::NoBackup));
    EXPECT_TRUE(QDir().rmdir(Path("korvanelle.dat")));
    WaitFor(*new BackupJob(Stick(), false, &schedule));
    schedule.Look();
    EXPECT_FALSE(Faults::Stands(Faults::Kind::NoBackup));
    // A clock that was years ahead stops nothing, and drops no backup in favour of its own.
    clock.Set(2024, 1, 7, 3);
    EXPECT_TRUE(Backup::IsOverdue());
    schedule.Look();
    WaitFor(*BackupJob::Current());
    EXPECT_TRUE(QFile::exists(BackupJob::Current()->Path()));
    EXPECT_EQ(Backup::Last(), clock.Now());
    EXPECT_EQ(OnStick().filter("-auto").size(), Backup::KeptAutomatic);
    EXPECT_TRUE(boxes.isEmpty());
}
