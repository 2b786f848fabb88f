#include "config_screens/system/wSysConfSon.h"

#include "bus/wPolling.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "events/Klaxon.h"
#include "model/CurrentConfig.h"
#include "platform/FileWriting.h"
#include "platform/Folders.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/Stepper.h"
#include "screens/touch/ValueLabel.h"
#include "ui_wSysConfSon.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <optional>
#include <utility>

namespace {

const QString Images = QStringLiteral("imgControl");
const QString FilesSection = QStringLiteral("Files");
const QString GeneralSection = QStringLiteral("General");
const QString Folder = QStringLiteral("Histo");
const QString Unit = QStringLiteral("PeriodUnit");
const QString Time = QStringLiteral("PeriodTime");
const QString Limit = QStringLiteral("PeriodLimit");
const QString NoResize = QStringLiteral("NoResize");

constexpr int LongestTime = 730;
constexpr int LongestPath = 250;
const QString Times = QStringLiteral("*|1|%1").arg(LongestTime);
const QString Priorities = QStringLiteral("*|1|%1").arg(ConfigClass::MaxPriority);

enum Texts {
    Applied = 30009,
    NoSuchSound = 630029,
    FolderTitle = 630038,
    Months = 630256,
    Days = 630257,
    SoundPlays = 630267,
    AlarmSounds = 630268,
    SoundFilter = 630270,
    FilePlays = 630271
};

QString Truth(bool value) {
    return value ? QStringLiteral("1") : QStringLiteral("0");
}

bool TruthOf(const QString& section, const QString& key, const QString& fallback) {
    return SLVfonctions::IsTrue(IniRead(section, key, fallback));
}

} // namespace

struct wSysConfSon::Memory {
    int priority = 1; // to which the sound of the edit belongs
    KeptEdit<Edit> edit;
};

wSysConfSon::Memory& wSysConfSon::Kept() {
    static Memory memory;
    return memory;
}

wSysConfSon::Files wSysConfSon::OfSettings() {
    Files files;
    files.folder = IniRead(FilesSection, Folder, platform::ApplicationFolder());
    files.daily = Bytes::ShortVal(IniRead(FilesSection, Unit, QStringLiteral("0"))) >= 1;
    files.time = Bytes::ShortVal(IniRead(FilesSection, Time, QStringLiteral("0")));
    // The purge goes by the time alone: whatever `Limit` says, this is what is done.
    files.limit = files.time >= 1;
    files.noResize = TruthOf(GeneralSection, NoResize, QStringLiteral("1"));
    return files;
}

wSysConfSon::wSysConfSon()
    : ConfigForm(FormNames::wSysConfSon)
    , ui_(std::make_unique<Ui::wSysConfSon>())
    , repeat_(this)
    , highest_(Config::HighestSound())
    , files_(&wSysConfSon::OfSettings) {
    ui_->setupUi(this);
    Prepare();
    priority_ = new Stepper(repeat_, ui_->lblSoundPrio, {ui_->imgControl_8, ui_->imgControl_9});
    priority_->setBounds(1, ConfigClass::MaxPriority);
    connect(priority_, &Stepper::Changed, this, [this] { ShowSound(); });
    sound_ = new Stepper(repeat_, ui_->lblSoundNum, {ui_->imgControl_0, ui_->imgControl_1});
    // From "no sound" the arrows lead to the sounds and not back.
    connect(sound_, &Stepper::Changed, this, [this](int number) {
        if (number >= 1)
            sound_->setBounds(1, qMax(number, highest_));
    });
    OnClick(Images, [this](int index) { imgControl_Click(index); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->lblSoundPrio, [this] { lblSoundPrio_Click(); });
    OnClick(ui_->imgClose, [this] { LeaveToMenu(int(MenuTile::System)); });
    ConnectFiles();
    ShowPlaying(QString());
    RestoreKept();
}

wSysConfSon::~wSysConfSon() = default;

void wSysConfSon::ConnectFiles() {
    OnClick(ui_->cmdChooseHistoPath, [this] { cmdChooseHistoPath_Click(); });
    OnClick(ui_->txtHistoPath, [this] { txtHistoPath_Click(); });
    OnClick(ui_->cmdPeriod, [this] { cmdPeriod_Click(); });
    OnClick(ui_->txtPeriod, [this] { cmdPeriod_Click(); });
    OnClick(QStringLiteral("optPeriod"), [this](int index) {
        files_->daily = index == 1;
        ShowFiles();
    });
    // A time without end is 0: the purge knows nothing of the box.
    OnClick(ui_->chkPeriod, [this] {
        files_->limit = ui_->chkPeriod->isChecked();
        files_->time = files_->limit ? qMax(1, files_.Original().time) : 0;
        ShowFiles();
    });
    OnClick(ui_->chkNoResize, [this] {
        files_->noResize = ui_->chkNoResize->isChecked();
        ShowFiles();
    });
}

void wSysConfSon::RestoreKept() {
    Memory& memory = Kept();
    priority_->setValue(memory.priority);
    const auto kept = memory.edit.Take({files_.Original(), SiteSound()});
    if (kept)
        *files_ = kept->files;
    else
        priority_->setValue(1);
    ShowSound();
    if (kept)
        setSound(kept->sound);
    ShowFiles();
    ShowKept(kept.has_value());
}

void wSysConfSon::ShowFiles() {
    ui_->txtHistoPath->setCaption(files_->folder);
    ui_->chkPeriod->setChecked(files_->limit);
    ui_->optPeriod_0->setChecked(!files_->daily);
    ui_->optPeriod_1->setChecked(files_->daily);
    ui_->txtPeriod->setCaption(QString::number(files_->time));
    ui_->lblPeriod->setText(GetText(files_->daily ? Days : Months));
    for (QWidget* control :
         {static_cast<QWidget*>(ui_->txtPeriod), static_cast<QWidget*>(ui_->cmdPeriod),
          static_cast<QWidget*>(ui_->lblPeriod)})
        control->setEnabled(files_->limit);
    ui_->chkNoResize->setChecked(files_->noResize);
}

int wSysConfSon::SiteSound() const {
    return Global::Configuration().AlarmPrioSound(priority_->Value());
}

void wSysConfSon::ShowSound() {
    setSound(SiteSound());
}

void wSysConfSon::setSound(int number) {
    sound_->setBounds(number < 1 ? 0 : 1, qMax(number, highest_));
    sound_->setValue(number);
}

/// Shows what is played; an empty text for nothing.
void wSysConfSon::ShowPlaying(const QString& text) {
    ui_->lblPlaying->setText(text);
    ui_->imgControl_2->setEnabled(!text.isEmpty());
    ui_->imgControl_3->setEnabled(text.isEmpty());
}

void wSysConfSon::imgControl_Click(int index) {
    switch (index) {
    case SoundDown:
    case SoundUp:
        sound_->StepBy(index == SoundUp ? 1 : -1);
        break;
    case Stop:
        Alarme(StopAlarme);
        break;
    case Play:
        PlaySound();
        break;
    case UndoSound:
        ShowSound();
        break;
    case ApplySound:
        AssignSound();
        break;
    case UndoFiles:
        UndoFileEdit();
        break;
    case ApplyFiles:
        if (WriteFiles())
            Message(GetText(Applied), Messages::Information);
        break;
    case PriorityDown:
    case PriorityUp:
        priority_->StepBy(index == PriorityUp ? 1 : -1);
        break;
    default:
        BrowseSounds();
    }
}

/// The size of the screens isn't of the files.
void wSysConfSon::UndoFileEdit() {
    const bool noResize = files_->noResize;
    files_.Reload();
    files_->noResize = noResize;
    ShowFiles();
}

void wSysConfSon::imgNavig_Click(int index) {
    if (index == ToMenu)
        Leave();
    else if (index == Help)
        ShowHelp();
}

void wSysConfSon::lblSoundPrio_Click() {
    const QPointer<wSysConfSon> self(this);
    const auto value = AskValue(this, Priorities, ui_->lblSoundPrio->Caption());
    if (value && IsLoaded(self.data()))
        priority_->setValue(Bytes::ShortVal(*value));
}

void wSysConfSon::cmdPeriod_Click() {
    const QPointer<wSysConfSon> self(this);
    const auto value = AskValue(this, Times, ui_->txtPeriod->Caption());
    if (!value || !IsLoaded(self.data()))
        return;
    files_->time = Bytes::ShortVal(*value);
    ShowFiles();
}

void wSysConfSon::cmdChooseHistoPath_Click() {
    const QPointer<wSysConfSon> self(this);
    const QString folder = FilePicker::ChooseFolder(files_->folder, GetText(FolderTitle));
    if (folder.isEmpty() || !IsLoaded(self.data()))
        return;
    files_->folder = folder;
    ShowFiles();
}

void wSysConfSon::txtHistoPath_Click() {
    const QPointer<wSysConfSon> self(this);
    const auto folder = AskText(GetText(FolderTitle), files_->folder, LongestPath);
    if (!folder || !IsLoaded(self.data()))
        return;
    files_->folder = *folder;
    ShowFiles();
}

bool wSysConfSon::WriteFiles() {
    files_->folder = files_->folder.trimmed();
    bool written = true;
    for (const auto& [key, value] :
         {std::pair(Folder, files_->folder), std::pair(Unit, Truth(files_->daily)),
          std::pair(Time, QString::number(files_->time)), std::pair(Limit, Truth(files_->limit))})
        written = IniWrite(FilesSection, key, value) && written;
    if (Polling() != nullptr)
        Polling()->ConfigurationChanged();
    ShowFiles();
    return written;
}

void wSysConfSon::AssignSound() {
    if (sound_->Value() < 1) {
        QApplication::beep();
        return;
    }
    Global::Configuration().setAlarmPrioSound(priority_->Value(), qint16(sound_->Value()));
    if (SaveSite())
        Message(GetText(Applied), Messages::Information);
}

/// A file of the machine comes ahead of the sound of the base.
void wSysConfSon::PlaySound() {
    const int number = sound_->Value();
    QString path = Global::InApplicationFolder(QStringLiteral("AlarmSound%1.wav").arg(number));
    const std::optional<QByteArray> content = Config::Sound(number);
    if (!QFile::exists(path)) {
        if (!content) {
            Message(GetText(NoSuchSound), Messages::Critical);
            return;
        }
        path = Global::InApplicationFolder(QStringLiteral("SoundTest.") +
                                           Config::SoundExtension(number));
        platform::ReplaceFile(path, *content);
        trial_ = path;
    }
    Try(
        path, [content] { return content.value_or(QByteArray()); },
        GetText(SoundPlays).replace(u'$', QString::number(number)));
}

/// A sound that lies elsewhere can be listened to as well.
void wSysConfSon::BrowseSounds() {
    const QPointer<wSysConfSon> self(this);
    const QString path =
        FilePicker::Open(platform::ApplicationFolder(), QString(), GetText(SoundFilter, true));
    if (!path.isEmpty() && IsLoaded(self.data()))
        Try(path, {}, GetText(FilePlays).replace(u'$', FilePicker::FileName(path)));
}

void wSysConfSon::Try(const QString& path, const platform::SoundReserve& reserve,
                      const QString& text) {
    const QPointer<wSysConfSon> self(this);
    const bool plays = TrySound(path, reserve, [self] {
        if (self)
            self->ShowPlaying(QString());
    });
    if (plays)
        ShowPlaying(text);
    else
        Message(GetText(AlarmSounds), Messages::Warning);
}

/// "No sound" can't be assigned.
bool wSysConfSon::Differs() const {
    return files_.Differs() || (sound_->Value() >= 1 && sound_->Value() != SiteSound());
}

bool wSysConfSon::Take() {
    WriteFiles();
    IniWrite(GeneralSection, NoResize, Truth(files_->noResize));
    if (sound_->Value() >= 1)
        Global::Configuration().setAlarmPrioSound(priority_->Value(), qint16(sound_->Value()));
    SaveSite();
    return true;
}

void wSysConfSon::Keep() {
    Kept().priority = priority_->Value();
    Kept().edit.Keep({files_.Original(), SiteSound()}, {*files_, sound_->Value()});
}

/// Whichever way the screen goes, what it plays ends with it.
void wSysConfSon::Closing() {
    EndSoundTrial();
    QFile::remove(Global::InApplicationFolder(QStringLiteral("SoundTest.wav")));
    if (!trial_.isEmpty())
        QFile::remove(trial_);
}
