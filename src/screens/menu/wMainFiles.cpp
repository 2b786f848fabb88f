// What the main menu does with the site file, and the way out of the program.

#include "bus/OutOfServiceWatch.h"
#include "bus/ProgramEnd.h"
#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "core/Pointer.h"
#include "core/SLVfonctions.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "model/OutOfService.h"
#include "platform/Processes.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/menu/wMain.h"

#include <QMessageBox>

namespace {

enum Navigation { SaveAs = 8, OpenFile = 9, Leave = 10, NewSite = 11, Login = 13 };

constexpr int RehearsalMark = 718003;

const QString Files = QStringLiteral("Files");
const QString SiteExtension = QStringLiteral(".kv2");

QString LastUsed() {
    return IniRead(Files, QStringLiteral("LastUsed"), QString());
}

void setLastUsed(const QString& path) {
    IniWrite(Files, QStringLiteral("LastUsed"), path);
}

/// What the file dialogs show.
QString Filter() {
    return GetText(50001, true).replace(u'$', SiteExtension);
}

/// What is out of service comes back with its site, and a new one takes the place of the two.
void LeaveSite() {
    OutOfService::LeaveSite();
    TellOutOfService();
    Global::setConfiguration(std::make_unique<ConfigClass>());
}

bool HasAnswer(int answer) {
    // A box that was closed without a button is no answer.
    return answer != Messages::Cancel && answer != Messages::Closed;
}

bool MayUseFiles() {
    if (AccessOk(Levels::Configuration))
        return true;
    Message(GetText(20009), Messages::Critical);
    return false;
}

/// The command of the platform's on-screen keyboard. The program's own dialogs bring keys of
/// their own, so that a panel needn't have one.
QString ScreenKeyboard() {
    return IniRead(QStringLiteral("General"), QStringLiteral("ScreenKeyboard"), QString());
}

void EndScreenKeyboard() {
    const QString program = ScreenKeyboard().section(u' ', 0, 0);
    platform::KillProcess(program.section(u'/', -1));
}

} // namespace

void wMain::imgNavig_Click(int index) {
    switch (index) {
    case SaveAs:
        if (MayUseFiles())
            SaveUnderName(true);
        break;
    case OpenFile:
        if (MayUseFiles())
            OpenSite();
        break;
    case NewSite:
        if (MayUseFiles())
            MakeNewSite();
        break;
    case Leave:
        LeaveProgram();
        break;
    case Login:
        AskPassword(this);
        break;
    default:
        break;
    }
}

void wMain::StartScreenKeyboard() {
    platform::StartProcess(ScreenKeyboard());
}

wMain::Saved wMain::SaveUnderName(bool withKeyboard) {
    const QPointer<wMain> self(this);
    if (withKeyboard)
        StartScreenKeyboard();
    const QString path = FilePicker::SaveAs(FilePicker::Folder(LastUsed()),
                                            FilePicker::FileName(LastUsed()), Filter());
    EndScreenKeyboard();
    if (!IsLoaded(self.data()))
        return Saved::Failed;
    if (path.isEmpty())
        return Saved::NoName;
    return SaveSite(path) && IsLoaded(self.data()) ? Saved::Yes : Saved::Failed;
}

bool wMain::SaveSite(const QString& path) {
    const QPointer<wMain> self(this);
    ConfigClass& site = Global::Configuration();
    Pointer::Hourglass();
    const qint32 result = site.Save(path);
    Pointer::Default();
    if (result < 1) {
        setLastUsed(path);
        site.setModified(false);
        if (IsLoaded(self.data()))
            ShowFileName(FilePicker::BaseName(path));
    } else if (IsLoaded(self.data())) {
        TellFailure(result);
    }
    const bool kept = SaveCurrent();
    if (IsLoaded(self.data()))
        ShowModified();
    return result < 1 && kept;
}

bool wMain::SaveCurrent() {
    const QPointer<wMain> self(this);
    const qint32 result = SaveCurrentConfig();
    if (result < 1)
        return true;
    Global::Configuration().setModified(true);
    if (IsLoaded(self.data()))
        TellFailure(result);
    return false;
}

bool wMain::SaveChanges(bool withKeyboard) {
    if (!Global::Configuration().Modified())
        return true;
    const QPointer<wMain> self(this);
    const int answer = Message(GetText(50003), Messages::Warning | Messages::YesNoCancel);
    if (!IsLoaded(self.data()) || !HasAnswer(answer))
        return false;
    return answer != Messages::Yes || SaveUnderName(withKeyboard) == Saved::Yes;
}

void wMain::OpenSite() {
    const QPointer<wMain> self(this);
    if (!SaveChanges(false))
        return;
    const QString path = FilePicker::Open(FilePicker::Folder(LastUsed()),
                                          FilePicker::FileName(LastUsed()), Filter());
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    ReadSite(path);
    SaveCurrent();
    // What the new site has out of service is new to its history.
    OutOfService::Notice({});
    TellOutOfService();
    if (IsLoaded(self.data()))
        ShowModified();
}

/// The former site goes with its panels. No round of the bus is under way here: it lets no touch
/// in, and a box in the middle of it is modal.
void wMain::ReadSite(const QString& path) {
    LeaveSite();
    ConfigClass& site = Global::Configuration();
    Pointer::Hourglass();
    const qint32 result = site.Read(path);
    Pointer::Default();
    if (result >= 1) {
        // What was read up to the failure stays; the site has no file.
        setLastUsed(QString());
        ShowFileName(GetText(50010));
        TellFailure(result);
        return;
    }
    setLastUsed(path);
    ShowFileName(FilePicker::BaseName(path));
    site.setModified(false);
    if (wPolling* polling = Polling()) {
        polling->ConfigurationChanged();
        polling->ReinitComm();
        polling->SetupUserSleep();
        polling->SetupPrinter();
    }
}

void wMain::MakeNewSite() {
    const QPointer<wMain> self(this);
    if (Message(GetText(30013), Messages::OkCancel) != Messages::Ok || !IsLoaded(self.data()) ||
        !SaveChanges(true))
        return;
    const QString unnamed = GetText(50010);
    ShowFileName(unnamed);
    setLastUsed(unnamed);
    LeaveSite();
    if (wPolling* polling = Polling())
        polling->SetupPrinter();
    SaveCurrent();
    if (IsLoaded(self.data()))
        ShowModified();
}

void wMain::LeaveProgram() {
    if (Polling() != nullptr && Polling()->Run() && !AccessOk(Levels::Operator)) {
        Message(GetText(20009), Messages::Critical);
        return;
    }
    // Nothing of a rehearsal is kept.
    if (Rehearsal::Runs()) {
        EndRehearsal();
        return;
    }
    const QPointer<wMain> self(this);
    if (Global::Configuration().Modified())
        SaveCurrent();
    if (!IsLoaded(self.data()))
        return;
    const int answer = Global::Configuration().Modified()
                           ? Message(GetText(50003), Messages::Warning | Messages::YesNoCancel)
                           : Message(GetText(50002), Messages::Warning | Messages::OkCancel);
    if (!IsLoaded(self.data()) || !HasAnswer(answer))
        return;
    // Changes that get no name are kept all the same: the program starts with them again.
    if (answer == Messages::Yes && SaveUnderName(true) == Saved::Failed)
        return;
    IniWrite(Files, QStringLiteral("LastConfigModified"),
             QString::number(Global::Configuration().Modified() ? 1 : 0));
    EndProgram();
}

void wMain::TellFailure(qint32 text) {
    const QPointer<QMessageBox> box(new QMessageBox(
        QMessageBox::Critical, Global::Title,
        (Rehearsal::Runs() ? GetText(RehearsalMark) + QStringLiteral("\n\n") : QString()) +
            GetText(text)));
    box->setStyleSheet(
        QStringLiteral("QPushButton { min-width: 120px; min-height: 48px; font-size: 16px; }"));
    failure_ = box;
    {
        const Operator::Away away;
        box->exec();
    }
    delete box;
}
