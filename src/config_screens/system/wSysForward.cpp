#include "config_screens/system/wSysForward.h"

#include "bus/wPolling.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/Message.h"
#include "core/Rehearsal.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/ValueLabel.h"
#include "ui_wSysForward.h"

#include <QApplication>
#include <QPointer>
#include <initializer_list>
#include <utility>

using platform::LogServerSetup;

namespace {

constexpr int LongestHost = 253;
constexpr int LongestPort = 5;
constexpr int HighestPort = 65535;

enum Texts {
    Incomplete = 20006,
    Applied = 30009,
    Server = 717004,
    Port = 717005,
    Encrypted = 717006,
    NotEncrypted = 717011,
    PemFilter = 717012,
    MachinesAuthorities = 717013,
    NoCertificate = 717014,
    TestLine = 717015,
    StateAndCount = 717016,
    LastError = 717017,
    FirstPhase = 717020,
    FirstError = 717030 // of no error, which has no words
};

void Enable(std::initializer_list<QWidget*> controls, bool on) {
    for (QWidget* control : controls)
        control->setEnabled(on);
}

/// The folder is what the picker shows.
QString NameOf(const QString& path, int wordForNone) {
    return path.isEmpty() ? GetText(wordForNone) : FilePicker::FileName(path);
}

} // namespace

struct wSysForward::Memory {
    KeptEdit<ForwardSettings> edit;
};

wSysForward::Memory& wSysForward::Kept() {
    static Memory memory;
    return memory;
}

wSysForward::wSysForward()
    : ConfigForm(FormNames::wSysForward)
    , ui_(std::make_unique<Ui::wSysForward>())
    , edit_(&ForwardSettings::Read) {
    ui_->setupUi(this);
    Prepare();
    ConnectChecks();
    OnClick(ui_->txtServer, [this] { txtServer_Click(); });
    OnClick(ui_->lblPort, [this] { lblPort_Click(); });
    ConnectFile(QStringLiteral("imgAuthority"), ui_->txtAuthority, &LogServerSetup::authority);
    ConnectFile(QStringLiteral("imgCertificate"), ui_->txtCertificate,
                &LogServerSetup::certificate);
    OnClick(ui_->imgTest, [this] { imgTest_Click(); });
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgClose, [this] { LeaveToMenu(int(MenuTile::System)); });
    if (Polling() != nullptr)
        connect(&Polling()->Forwarder(), &EventForwarder::Changed, this, &wSysForward::ShowState);
    if (auto kept = Kept().edit.Take(edit_.Original())) {
        *edit_ = std::move(*kept);
        ShowKept(true);
    }
    ShowEdit();
}

wSysForward::~wSysForward() = default;

void wSysForward::ConnectChecks() {
    OnClick(ui_->chkJournal, [this] {
        edit_->journal = ui_->chkJournal->isChecked();
        ShowEdit();
    });
    OnClick(ui_->chkSyslog, [this] {
        edit_->syslog = ui_->chkSyslog->isChecked();
        ShowEdit();
    });
    OnClick(ui_->chkTls, [this] {
        edit_->server.tls = ui_->chkTls->isChecked();
        ShowEdit();
    });
}

/// A file that is chosen by the label or the first image and taken away by the second.
void wSysForward::ConnectFile(const QString& images, ValueLabel* label,
                              QString LogServerSetup::*file) {
    OnClick(label, [this, file] { ChooseFile(file); });
    OnClick(images, [this, file](int index) {
        if (index == 0) {
            ChooseFile(file);
            return;
        }
        (edit_->server.*file).clear();
        ShowEdit();
    });
}

void wSysForward::ShowEdit() {
    const LogServerSetup& server = edit_->server;
    ui_->chkJournal->setChecked(edit_->journal);
    ui_->chkSyslog->setChecked(edit_->syslog);
    ui_->txtServer->setCaption(server.host);
    ui_->lblPort->setCaption(QString::number(server.port));
    ui_->chkTls->setChecked(server.tls);
    ui_->lblTls->setText(GetText(server.tls ? Encrypted : NotEncrypted));
    ui_->txtAuthority->setCaption(NameOf(server.authority, MachinesAuthorities));
    ui_->txtCertificate->setCaption(NameOf(server.certificate, NoCertificate));
    // What is only rehearsed reaches nobody outside.
    Enable({ui_->chkJournal, ui_->chkSyslog}, !Rehearsal::Runs());
    Enable({ui_->txtServer, ui_->lblPort, ui_->chkTls}, edit_->syslog);
    Enable({ui_->txtAuthority, ui_->imgAuthority_0, ui_->imgAuthority_1, ui_->txtCertificate,
            ui_->imgCertificate_0, ui_->imgCertificate_1},
           edit_->syslog && server.tls);
    Enable({ui_->imgControl_0, ui_->imgControl_1}, Differs());
    // What is tested is what is in use.
    ui_->imgTest->setEnabled(!Differs() && (edit_->journal || edit_->syslog) &&
                             Polling() != nullptr);
    ShowState();
}

void wSysForward::ShowState() {
    const EventForwarder::State state =
        Polling() != nullptr ? Polling()->Forwarder().Present() : EventForwarder::State();
    QString words = GetText(FirstPhase + int(state.phase));
    if (state.phase != EventForwarder::Phase::Off)
        words = GetText(StateAndCount)
                    .replace(QStringLiteral("$1"), words)
                    .replace(QStringLiteral("$2"), QString::number(state.waiting));
    ui_->lblState->setText(words);
    ui_->lblError->setText(
        state.error == platform::LogServerError::None
            ? QString()
            : GetText(LastError)
                  .replace(QStringLiteral("$1"), DateTimes::DateAndTime(state.errorTime))
                  .replace(QStringLiteral("$2"), GetText(FirstError + int(state.error))));
}

void wSysForward::imgControl_Click(int index) {
    if (index == Undo) {
        edit_.Reload();
        ShowEdit();
    } else if (Take()) {
        Message(GetText(Applied), Messages::Information);
    }
}

void wSysForward::imgNavig_Click(int index) {
    if (index == ToMenu)
        Leave();
    else if (index == Help)
        ShowHelp();
}

void wSysForward::txtServer_Click() {
    const QPointer<wSysForward> self(this);
    const auto host = AskText(GetText(Server), edit_->server.host, LongestHost);
    if (!host || !IsLoaded(self.data()))
        return;
    edit_->server.host = host->trimmed();
    ShowEdit();
}

void wSysForward::lblPort_Click() {
    const QPointer<wSysForward> self(this);
    const auto text = AskText(GetText(Port), QString::number(edit_->server.port), LongestPort);
    if (!text || !IsLoaded(self.data()))
        return;
    const qint32 port = Bytes::LongVal(*text);
    if (port < 1 || port > HighestPort) {
        QApplication::beep();
        return;
    }
    edit_->server.port = quint16(port);
    ShowEdit();
}

void wSysForward::ChooseFile(QString LogServerSetup::*file) {
    const QPointer<wSysForward> self(this);
    const QString& present = edit_->server.*file;
    const QString path = FilePicker::Open(FilePicker::Folder(present),
                                          FilePicker::FileName(present), GetText(PemFilter, true));
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    edit_->server.*file = path;
    ShowEdit();
}

void wSysForward::imgTest_Click() {
    Polling()->Forwarder().SendTest(GetText(TestLine));
    ShowState();
}

bool wSysForward::Take() {
    if (edit_->syslog && (edit_->server.host.isEmpty() || edit_->server.host.contains(u' '))) {
        Message(GetText(Incomplete), Messages::Critical);
        return false;
    }
    edit_->KeepFiles();
    const bool written = edit_->Write();
    if (Polling() != nullptr)
        Polling()->Forwarder().Start();
    ShowEdit();
    return written;
}

void wSysForward::Keep() {
    Kept().edit.Keep(edit_.Original(), *edit_);
}
