// A machine that is backed up, spoilt and restored with a finger, while its bus goes on.

#include "bus/BusDiagnosis.h"
#include "config_screens/backup/RestoreRun.h"
#include "core/FormNames.h"
#include "core/Rehearsal.h"
#include "core/SLVfonctions.h"
#include "events/Backup.h"
#include "platform/Volumes.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/touch/TouchTable.h"
#include "screens/touch/ValueLabel.h"
#include "support/Road.h"
#include "support/Script.h"

#include <QDir>
#include <QLabel>

namespace {

class BackupRoad : public Road {
protected:
    BackupRoad()
        : Road({"1=Q7100", "2=Q6200XT"}) {
        EXPECT_TRUE(QDir().mkdir(Stick()));
        platform::OverrideVolumes(QList<platform::Volume>{{"STICK", Stick()}});
        Site().Panel(1).setTitle("Boiler house");
        Site().Panel(1).Channel(7).setScreenText("Pump 7");
        EXPECT_EQ(Site().Save(folder.Path("plant.kv2")), ConfigClass::Saved);
        IniWrite("Files", "LastUsed", folder.Path("plant.kv2"));
        SaveCurrentConfig();
    }
    ~BackupRoad() override {
        RestoreRun::Drop();
        platform::OverrideVolumes(std::nullopt);
    }

    QString Stick() const { return folder.Path("stick"); }
    QStringList OnStick() const { return QDir(Stick()).entryList(QDir::Files); }
    QStringList Stages() const {
        return QDir(folder.Path(QString())).entryList({"Restore*"}, QDir::Dirs | QDir::Files);
    }
    void OpenBackup() {
        Forms::Show(FormNames::wMain);
        script.On(FormNames::dlgMenuSystem, [] { Tap(FormNames::dlgMenuSystem, "cmdButtons_5"); });
        Tap(FormNames::wMain, "imgMenu_2");
        ASSERT_EQ(NbInstances(FormNames::wBackup), 1);
    }
    static bool AllVerified(int backups) {
        const auto* list = Find<TouchTable>(FormNames::wBackup, "tblBackups");
        bool all = list->RowCount() == backups;
        for (int row = 0; all && row < backups; ++row)
            all = list->Cell(row, 5) == GetText(716077);
        return all;
    }
    void BackUp() {
        Tap(FormNames::wBackup, "imgControl_0");
        ASSERT_TRUE(Until([] { return AllVerified(1); }));
    }
    void ProposeFirst() {
        auto* list = Find<TouchTable>(FormNames::wBackup, "tblBackups");
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualRect(list->model()->index(0, 0)).center());
        Tap(FormNames::wBackup, "imgControl_1");
        ASSERT_TRUE(Until([] { return NbInstances(FormNames::wSiteCompare) == 1; }));
    }

    Script script;
};

} // namespace

TEST_F(BackupRoad, TakesBackWhatWasSpoiltAndTheBusGoesOn) {
    engine->setRun(true);
    ASSERT_TRUE(Until([&] { return Site().Panel(2).Present(); }));
    OpenBackup();
    const int rounds = engine->Diagnosis().SinceStart(1).exchanges;
    BackUp();
    EXPECT_EQ(OnStick().size(), 1);
    EXPECT_GT(engine->Diagnosis().SinceStart(1).exchanges, rounds);
    script.On(FormNames::dlgListInput, [] {
        dynamic_cast<dlgListInput*>(Forms::Find(FormNames::dlgListInput))->Choose(GetText(716063));
        Tap(FormNames::dlgListInput, "imgControl_2");
    });
    Tap(FormNames::wBackup, "lblWeekday");
    EXPECT_EQ(Backup::Weekday(), 3);

    Site().Panel(1).Channel(7).setScreenText("spoilt");
    Site().Panel(2).setModel(0);
    Site().setUserPwd(1, "stolen");
    SaveCurrentConfig();
    QFile::remove(folder.Path("plant.kv2"));
    ProposeFirst();
    const auto* list = Find<TouchTable>(FormNames::wSiteCompare, "tblDifferences");
    QStringList lines;
    for (int row = 0; row < list->RowCount(); ++row)
        lines += list->Cell(row, 1) + u'=' + list->Cell(row, 2) + u'>' + list->Cell(row, 3);
    EXPECT_TRUE(lines.contains(GetText(300622) + "=spoilt>Pump 7"))
        << lines.join('\n').toStdString();
    EXPECT_EQ(lines.filter("Q6200XT").size(), 1);
    EXPECT_EQ(lines.filter("stolen").size(), 0);
    EXPECT_EQ(lines.filter("plant.kv2").size(), 1);
    EXPECT_EQ(Site().Panel(1).Channel(7).ScreenText(), "spoilt");
    script.On(FormNames::dlgFilePicker, [] { Tap(FormNames::dlgFilePicker, "imgControl_1"); });
    Tap(FormNames::wSiteCompare, "imgSave");
    EXPECT_EQ(OnStick().filter(".csv").size(), 1);
    Tap(FormNames::wSiteCompare, "imgRestore");

    EXPECT_EQ(NbInstances(FormNames::wMain), 1);
    EXPECT_EQ(Site().Panel(1).Channel(7).ScreenText(), "Pump 7");
    EXPECT_EQ(Site().Panel(2).Model(), Models::Q6200XT);
    EXPECT_TRUE(QFile::exists(folder.Path("plant.kv2")));
    EXPECT_EQ(IniRead("Files", "LastUsed", ""), folder.Path("plant.kv2"));
    EXPECT_TRUE(Stages().isEmpty());
    EXPECT_TRUE(engine->Run());
    EXPECT_TRUE(Until([&] { return Site().Panel(2).Present(); }));
}

// An alarm takes the display while a backup is written, and while one waits to be taken.
TEST_F(BackupRoad, AnAlarmEndsWhatIsUnderWay) {
    engine->setRun(true);
    ASSERT_TRUE(Until([&] { return Site().Panel(1).Present(); }));
    OpenBackup();
    BackUp();
    ProposeFirst();
    EXPECT_FALSE(Stages().isEmpty());
    simulator.Do("active 1 7");
    ASSERT_TRUE(
        Until([] { return NbInstances(FormNames::wSiteCompare) == 0 && !Rows().isEmpty(); }));
    EXPECT_TRUE(Stages().isEmpty());

    QFile history(folder.Path("Histo200001.his"));
    ASSERT_TRUE(history.open(QIODevice::WriteOnly));
    const QByteArray line(1000, 'x');
    for (int i = 0; i < 60000; ++i)
        history.write(line);
    history.close();
    simulator.Do("normal 1 7");
    OpenBackup();
    Tap(FormNames::wBackup, "imgControl_0");
    EXPECT_TRUE(Find(FormNames::wBackup, "imgControl_3")->isVisible());
    simulator.Do("active 1 8");
    ASSERT_TRUE(Until([] { return NbInstances(FormNames::wBackup) == 0; }));
    ASSERT_TRUE(Until([] { return BackupJob::Current()->Outcome() != BackupJob::State::Running; }));
    EXPECT_EQ(BackupJob::Current()->Outcome(), BackupJob::State::Stopped);
    EXPECT_EQ(OnStick().size(), 1);
    OpenBackup();
    EXPECT_EQ(Find<QLabel>(FormNames::wBackup, "lblTold")->text(), GetText(716083));
}

// A machine that was never set up offers it on its first screen. A folder in the place of a file
// stands for a disk that fails.
TEST_F(BackupRoad, ANewMachineBecomesTheOneThatDied) {
    const QString sound = folder.Path("AlarmSound5.wav");
    EXPECT_TRUE(QFile(sound).open(QIODevice::WriteOnly));
    OpenBackup();
    Rehearsal::Override(true);
    Tap(FormNames::wBackup, "imgControl_0");
    Rehearsal::Override(false);
    EXPECT_EQ(boxes, QStringList(GetText(716095)));
    BackUp();
    Tap(FormNames::wBackup, "imgNavig_0");
    EXPECT_FALSE(Find(FormNames::wMain, "imgRestore")->isVisible());
    Forms::Unload(FormNames::wMain);
    Global::setConfiguration(std::make_unique<ConfigClass>());
    for (const char* name : {"korvanelle.ini", "korvanelle.dat", "plant.kv2", "AlarmSound5.wav"})
        QFile::remove(folder.Path(name));
    Forms::Show(FormNames::wMain);
    Tap(FormNames::wMain, "imgRestore");
    ASSERT_TRUE(Until([] { return AllVerified(1); }));
    ProposeFirst();
    EXPECT_TRUE(QDir().mkdir(folder.Path("Restore.list")));
    Tap(FormNames::wSiteCompare, "imgRestore");
    EXPECT_TRUE(boxes.last().endsWith(GetText(716094).section(u'$', 1))) << "nothing has changed";
    EXPECT_EQ(Site().Panel(1).Title(), "");
    EXPECT_TRUE(QDir().rmdir(folder.Path("Restore.list")) && QDir().mkdir(sound));
    Tap(FormNames::wSiteCompare, "imgRestore");
    EXPECT_TRUE(boxes.last().endsWith(GetText(716090).section(u'$', 1)))
        << "the next start goes on";
    EXPECT_EQ(NbInstances(FormNames::wSiteCompare), 0);
    EXPECT_TRUE(QDir().rmdir(sound) && Restore::CompleteAtStart() && Stages().isEmpty());
    EXPECT_TRUE(QFile::exists(sound));
    EXPECT_EQ(Site().Panel(1).Title(), "Boiler house");
    EXPECT_FALSE(Find(FormNames::wMain, "imgRestore")->isVisible());
    EXPECT_FALSE(engine->Run());
}
