#pragma once

#include "events/Backup.h"
#include "events/BackupList.h"
#include "events/Restore.h"
#include "screens/touch/ScreenForm.h"

#include <QPointer>
#include <QString>
#include <QTimer>
#include <memory>

namespace Ui {
class wBackup;
}

/// Backups of the whole machine on a stick: made now or by themselves once a week, looked through,
/// and unpacked to be compared and taken. What is under way when the screen goes is given up.
class wBackup : public ScreenForm {
    Q_OBJECT
public:
    wBackup();
    ~wBackup() override;

protected:
    void Form_Unload() override;
    void CloseRequested() override;

private:
    enum Button { BackUp, TakeBack, Compare, Stop };
    enum Navigation { ToMenu = 0, Help = 7 };

    void FindStick();
    void setFolder(const QString& folder);
    void ReadList();
    void ShowList();
    void ShowButtons();
    void ShowWeekday();
    void Look();
    void WatchRunning();
    void Watch(BackupJob* job);
    void ShowJob();
    void Tell(const QString& text);
    bool Busy() const;
    static bool Refuses();
    void imgControl_Click(int index);
    void imgNavig_Click(int index);
    void imgFolder_Click();
    void lblWeekday_Click();
    void StartBackup();
    void Unpack();
    void ShowUnpacking();
    void Unpacked();
    void OpenCompare();

    std::unique_ptr<Ui::wBackup> ui_;
    QString folder_;
    std::unique_ptr<BackupList> list_;
    QPointer<BackupJob> job_;
    /// Filled by the work in the background.
    std::shared_ptr<Restore::Plan> plan_;
    std::unique_ptr<platform::BackgroundTask> unpacking_;
    QTimer tmrLook_;
    QTimer tmrStick_;
};
