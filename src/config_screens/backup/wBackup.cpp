#include "config_screens/backup/wBackup.h"

#include "bus/wPolling.h"
#include "config_screens/backup/RestoreRun.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Message.h"
#include "core/Rehearsal.h"
#include "core/SLVfonctions.h"
#include "events/AlarmTables.h"
#include "platform/RunTimeError.h"
#include "platform/Volumes.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/ResizeForm.h"
#include "ui_wBackup.h"

#include <QApplication>
#include <QFileInfo>
#include <QLocale>
#include <utility>

using ErrorHandling::Guard;

namespace {

enum Texts {
    NoStick = 716052,
    Free,
    Never = 716059,
    FirstDay = 716061,
    FirstColumn = 716070,
    FirstState = 716076,
    ByHand = 716079,
    ByItself,
    Writing,
    Written,
    Stopped,
    Failed,
    Unpacking,
    Refused,
    Unreadable,
    FolderTitle = 716091,
    NoBackups,
    Reading,
    NotInRehearsal = 716095,
    NotReadBack,
};

constexpr int LookPeriodMs = 250;
constexpr int StickPeriodMs = 1000;
constexpr int DaysOfWeek = 7;
const QString Section = QStringLiteral("Backup");
const QString FolderKey = QStringLiteral("Folder");

QString SizeText(qint64 bytes) {
    return AlarmTables::Language().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

QString DayText(int day) {
    return GetText(day == 0 ? int(Never) : FirstDay + day - 1);
}

QStringList Cells(const BackupList::Backup& backup) {
    const bool automatic = Backup::IsAutomatic(QFileInfo(backup.path).fileName());
    const QString site = backup.manifest.site;
    return {backup.manifest.DateText(),
            site.isEmpty() ? QStringLiteral("---") : site,
            backup.manifest.machine,
            SizeText(backup.size),
            GetText(automatic ? ByItself : ByHand),
            GetText(FirstState + int(backup.state))};
}

} // namespace

wBackup::wBackup()
    : ScreenForm(FormNames::wBackup)
    , ui_(std::make_unique<Ui::wBackup>()) {
    ui_->setupUi(this);
    Prepare();
    OnKey(Qt::Key_F1, [] { ShowHelp(); });
    constexpr std::array<int, 6> Shares = {21, 21, 15, 12, 15, 16};
    QList<TouchTable::Column> columns;
    for (int i = 0; i < int(Shares.size()); ++i)
        columns += {GetText(FirstColumn + i), Shares[size_t(i)]};
    ui_->tblBackups->setColumns(columns, IsScaled() ? CurrentScreenFactors().vertical : 1);
    ui_->tblBackups->setSortable(false);
    connect(ui_->tblBackups, &TouchTable::RowChanged, this, &wBackup::ShowButtons);
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgFolder, [this] { imgFolder_Click(); });
    OnClick(ui_->lblFolder, [this] { imgFolder_Click(); });
    OnClick(ui_->lblWeekday, [this] { lblWeekday_Click(); });
    OnClick(ui_->imgClose, [this] { ReturnToMenu(*this, int(MenuTile::System)); });
    // Also what became of one that ended while nobody looked.
    if (BackupJob* job = BackupJob::Current())
        Watch(job);
    ShowWeekday();
    FindStick();
    tmrLook_.callOnTimeout([this] { Guard("wBackup.tmrLook", [&] { Look(); }); });
    tmrLook_.start(LookPeriodMs);
    tmrStick_.callOnTimeout([this] { Guard("wBackup.tmrStick", [&] { FindStick(); }); });
    tmrStick_.start(StickPeriodMs);
}

wBackup::~wBackup() = default;

/// The folder used last as long as it is there, or else the first stick.
void wBackup::FindStick() {
    if (Busy())
        return;
    if (!folder_.isEmpty() && platform::IsReady(folder_))
        return;
    const QString last = IniRead(Section, FolderKey, QString());
    if (!last.isEmpty() && platform::IsReady(last)) {
        setFolder(last);
        return;
    }
    for (const platform::Volume& volume : platform::RemovableVolumes()) {
        if (platform::IsReady(volume.path)) {
            setFolder(volume.path);
            return;
        }
    }
    if (!folder_.isEmpty() || ui_->lblFolder->Caption().isEmpty())
        setFolder(QString());
}

void wBackup::setFolder(const QString& folder) {
    folder_ = folder;
    ui_->lblFolder->setCaption(folder.isEmpty() ? GetText(NoStick) : folder);
    ReadList();
}

void wBackup::ReadList() {
    list_.reset();
    const auto space = folder_.isEmpty() ? std::nullopt : platform::SpaceOf(folder_);
    ui_->lblFree->setText(space ? GetText(Free).replace(u'$', SizeText(space->free)) : QString());
    if (!folder_.isEmpty()) {
        list_ = std::make_unique<BackupList>(folder_, nullptr);
        connect(list_.get(), &BackupList::Changed, this, &wBackup::ShowList);
    }
    ShowList();
}

void wBackup::ShowList() {
    Guard("wBackup.ShowList", [&] {
        QList<TouchTable::Row> rows;
        if (list_) {
            for (const BackupList::Backup& backup : list_->Backups())
                rows += {Cells(backup), backup.path, {}, {QString::number(rows.size())}};
        }
        if (list_ && rows.isEmpty())
            rows += {{GetText(list_->IsRead() ? NoBackups : Reading)}, QString()};
        ui_->tblBackups->setRows(rows);
        ShowButtons();
    });
}

bool wBackup::Busy() const {
    return unpacking_ != nullptr || (job_ && job_->Outcome() == BackupJob::State::Running);
}

/// One that is still being checked can be taken: it is checked once more before.
void wBackup::ShowButtons() {
    bool sound = false;
    if (list_) {
        for (const BackupList::Backup& backup : list_->Backups())
            sound |= backup.path == ui_->tblBackups->CurrentTag() &&
                     backup.state != BackupList::State::Damaged;
    }
    ui_->imgControl_0->setEnabled(!folder_.isEmpty() && !Busy());
    ui_->imgControl_1->setEnabled(sound && !Busy());
    ui_->imgControl_2->setEnabled(!Busy());
    ui_->imgControl_3->setVisible(Busy());
}

void wBackup::ShowWeekday() {
    ui_->lblWeekday->setCaption(DayText(Backup::Weekday()));
}

void wBackup::Tell(const QString& text) {
    ui_->lblTold->setText(text);
}

void wBackup::imgControl_Click(int index) {
    switch (index) {
    case BackUp:
        StartBackup();
        break;
    case TakeBack:
        Unpack();
        break;
    case Compare:
        RestoreRun::Drop();
        OpenCompare();
        break;
    default:
        if (job_)
            job_->Stop();
        if (unpacking_)
            unpacking_->Stop();
    }
}

void wBackup::imgNavig_Click(int index) {
    if (index == ToMenu)
        CloseRequested();
    else if (index == Help)
        ShowHelp();
}

void wBackup::imgFolder_Click() {
    const QPointer<wBackup> self(this);
    const QString folder = FilePicker::ChooseFolder(folder_, GetText(FolderTitle));
    if (folder.isEmpty() || !IsLoaded(self.data()))
        return;
    IniWrite(Section, FolderKey, folder);
    setFolder(folder);
}

void wBackup::lblWeekday_Click() {
    if (Refuses())
        return;
    QStringList days;
    for (int day = 0; day <= DaysOfWeek; ++day)
        days += DayText(day);
    const QPointer<wBackup> self(this);
    const auto chosen =
        AskValue(this, QStringLiteral("@|") + days.join(u'|'), DayText(Backup::Weekday()));
    if (!chosen || !IsLoaded(self.data()) || !days.contains(*chosen))
        return;
    Backup::setWeekday(int(days.indexOf(*chosen)));
    ShowWeekday();
}

/// A rehearsal has a copy of the site, and nothing of it is kept.
bool wBackup::Refuses() {
    if (Rehearsal::Runs())
        Message(GetText(NotInRehearsal), Messages::Information);
    return Rehearsal::Runs();
}

void wBackup::StartBackup() {
    if (Refuses())
        return;
    if (Busy()) {
        QApplication::beep();
        return;
    }
    delete BackupJob::Current();
    QObject* owner = Polling();
    Watch(new BackupJob(folder_, false, owner != nullptr ? owner : qApp));
}

void wBackup::Look() {
    WatchRunning();
    ShowUnpacking();
}

/// The backup of the week may begin at any time.
void wBackup::WatchRunning() {
    BackupJob* job = BackupJob::Current();
    if (!job_ && job != nullptr && job->Outcome() == BackupJob::State::Running)
        Watch(job);
}

void wBackup::Watch(BackupJob* job) {
    // What reads the medium gives way.
    list_.reset();
    job_ = job;
    connect(job, &BackupJob::Changed, this, &wBackup::ShowJob);
    ShowJob();
}

void wBackup::ShowJob() {
    Guard("wBackup.ShowJob", [&] {
        if (!job_)
            return;
        switch (job_->Outcome()) {
        case BackupJob::State::Running:
            Tell(GetText(Writing).replace(u'$', QString::number(job_->Percent())));
            ShowButtons();
            return;
        case BackupJob::State::Complete:
            Tell(GetText(Written).replace(u'$', QFileInfo(job_->Path()).fileName()));
            break;
        case BackupJob::State::Stopped:
            Tell(GetText(Stopped));
            break;
        case BackupJob::State::Failed:
            Tell(GetText(Failed).replace(u'$',
                                         job_->Error() == platform::errors::InvalidPropertyValue
                                             ? GetText(NotReadBack)
                                             : ErrorHandling::RunTimeText(job_->Error())));
        }
        job_.clear();
        ReadList();
    });
}

void wBackup::Unpack() {
    if (Refuses())
        return;
    const QString path = ui_->tblBackups->CurrentTag();
    if (path.isEmpty() || Busy()) {
        QApplication::beep();
        return;
    }
    RestoreRun::Drop();
    list_.reset();
    plan_ = std::make_shared<Restore::Plan>();
    unpacking_ = std::make_unique<platform::BackgroundTask>(
        [path, plan = plan_, places = Restore::Places::OfProgram()](
            BackupFile::Progress& progress) { *plan = Restore::Stage(path, places, progress); });
    ShowButtons();
    ShowUnpacking();
}

void wBackup::ShowUnpacking() {
    if (!unpacking_)
        return;
    if (!unpacking_->Done()) {
        Tell(GetText(Unpacking).replace(u'$', QString::number(unpacking_->Percent())));
        return;
    }
    Unpacked();
}

void wBackup::Unpacked() {
    const int error = unpacking_->Error();
    const bool stopped = unpacking_->WasStopped();
    unpacking_.reset();
    if (stopped) {
        Tell(QString());
    } else if (error == platform::errors::InvalidPropertyValue) {
        Tell(GetText(Refused));
    } else if (error != 0) {
        Tell(GetText(Unreadable).replace(u'$', ErrorHandling::RunTimeText(error)));
    } else {
        RestoreRun::Propose(*std::exchange(plan_, nullptr));
        if (const int refusal = RestoreRun::Refusal()) {
            RestoreRun::Drop();
            Tell(GetText(refusal));
        } else {
            OpenCompare();
            return;
        }
    }
    ReadList();
}

void wBackup::OpenCompare() {
    const QPointer<wBackup> self(this);
    if (OpenScreen(FormNames::wSiteCompare) && IsLoaded(self.data()))
        Unload();
}

void wBackup::CloseRequested() {
    Forms::Show(FormNames::wMain);
    Unload();
}

/// The automatic one belongs to nobody's screen and goes on. What was unpacked goes with whoever
/// knows of it last.
void wBackup::Form_Unload() {
    tmrLook_.stop();
    tmrStick_.stop();
    if (job_ && !job_->Automatic())
        job_->Stop();
    unpacking_.reset();
    plan_.reset();
    list_.reset();
}
