// The screens of backup and comparison, with a stick that holds some.

#include "Shots.h"

#include "config_screens/backup/RestoreRun.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "events/Backup.h"
#include "model/CurrentConfig.h"
#include "platform/Folders.h"
#include "platform/Volumes.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>

namespace {

/// Backups of three weeks and one that was cut short.
void FillStick(const QString& stick) {
    if (QDir(stick).exists())
        return;
    platform::MakeFolder(stick);
    const QDate first(2026, 11, 1);
    platform::Unwatched nobody;
    for (int week = 0; week < 3; ++week) {
        BackupFile::Manifest head;
        head.version = QStringLiteral("2.2.27");
        head.date = QDateTime(first.addDays(qint64(7) * week), QTime(2, week));
        head.machine = QStringLiteral("control-room");
        head.site = QStringLiteral("Waterworks North");
        const QString name = QStringLiteral("Korvanelle-control_room-%1%2.zip")
                                 .arg(head.date.toString(QStringLiteral("yyyyMMdd-HHmmss")),
                                      week == 1 ? QString() : QStringLiteral("-auto"));
        QByteArray site;
        QFile file(CurrentConfigFile());
        if (file.open(QIODevice::ReadOnly))
            site = file.readAll();
        BackupFile::Write(QDir(stick).filePath(name), head,
                          {{BackupFile::CurrentSite, {}, site, site.size(), head.date},
                           {BackupFile::SettingsFile, {}, "[General]\r\nLanguage=1\r\n", 22, {}}},
                          nobody);
    }
    QFile cut(QDir(stick).filePath(QStringLiteral("Korvanelle-control_room-20261020-020000.zip")));
    if (cut.open(QIODevice::WriteOnly))
        cut.write("PK");
}

void LetRun(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
}

void Spoil(ConfigClass& site) {
    site.Panel(1).setTitle(QStringLiteral("Old title of a panel that is rather long"));
    site.Panel(1).Channel(2).setScreenText(QStringLiteral("Water high"));
    site.Panel(1).Channel(2).setAlmPrio(12);
    site.Panel(2).setModel(4);
    site.Panel(2).Channel(1).setKlaxon(!site.Panel(2).Channel(1).Klaxon());
    site.setOptionKlaxon(1, !site.OptionKlaxon(1));
    site.setUserPwd(1, QStringLiteral("other"));
    site.Mirrors().Add(1, 1, 2, 2, 1);
}

} // namespace

void TakeBackups(const Paths& path) {
    const QString stick = Global::InApplicationFolder(QStringLiteral("STICK"));
    platform::OverrideVolumes(QList<platform::Volume>{});
    Take(FormNames::wBackup, path("wBackup_nostick"));
    FillStick(stick);
    platform::OverrideVolumes(QList<platform::Volume>{{QStringLiteral("STICK"), stick}});
    Forms::Show(FormNames::wBackup);
    LetRun(800);
    // The folder of the pictures is nobody's stick.
    if (auto* form = dynamic_cast<QWidget*>(Forms::Find(FormNames::wBackup)))
        form->findChild<QLabel*>(QStringLiteral("lblFolder"))
            ->setText(QStringLiteral("/media/STICK"));
    Save(FormNames::wBackup, path("wBackup"));
    Forms::Unload(FormNames::wBackup);
    Take(FormNames::wSiteCompare, path("wSiteCompare_files"));
    Spoil(Global::Configuration());
    platform::Unwatched nobody;
    const QStringList backups = QDir(stick).entryList({QStringLiteral("*-auto.zip")});
    RestoreRun::Propose(
        Restore::Stage(QDir(stick).filePath(backups.last()), Restore::Places::OfProgram(), nobody));
    Take(FormNames::wSiteCompare, path("wSiteCompare"));
    Global::setConfiguration(std::make_unique<ConfigClass>());
    Take(FormNames::wMain, path("wMain_new"));
    Global::Configuration().Read(CurrentConfigFile());
    Global::Configuration().setModified(false);
    platform::OverrideVolumes(std::nullopt);
}
