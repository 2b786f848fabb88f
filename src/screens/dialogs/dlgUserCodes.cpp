#include "screens/dialogs/dlgUserCodes.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "model/Access.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/touch/CodePageLine.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/Theme.h"
#include "ui_dlgUserCodes.h"

#include <QApplication>
#include <QPushButton>

namespace {

enum Boxes { NameBox = 0, CodeBox = 1 };
enum Labels { NameLabel = 0, CodeLabel = 1, LevelLabel = 2, HintLabel = 3 };
enum Images { CancelImage = 0, ConfirmImage = 1, LevelDown = 2, LevelUp = 3 };

const QString Key = QStringLiteral("cmdChar");
const QString Text = QStringLiteral("txtPwd");
const QString Caption = QStringLiteral("lblLabels");
const QString Image = QStringLiteral("imgControl");

constexpr int Backspace = 8;
/// No user of a site has the service level.
constexpr int HighestLevel = Levels::Technician;
constexpr int PromptTitle = 612011;
constexpr int MsInSecond = 1000;
/// Of the form before it closes by itself, in seconds.
constexpr double LongestWait = 86400;

/// Keys of the form, in rows of ten.
constexpr QRect FirstKey(24, 236, 60, 52);
constexpr int KeyPitchX = 66;
constexpr int KeyPitchY = 60;
constexpr int KeysInRow = 10;
constexpr int KeyPixels = 22;
const QString KeyCharacters = QStringLiteral("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-\b");

/// The bare prompt: its height, its first key and the distance from key to key.
constexpr int PromptHeight = 280;
constexpr QRect PromptKey(12, 118, 54, 48);
constexpr QSize PromptKeyPitch(60, 53);
constexpr int PromptKeysInRow = 13;
constexpr int NeededLevel = 714100;
constexpr int UnknownCode = 714101;
constexpr int AsBeforeTheAlarm = 300901;

/// The box that the keys write to is yellow, the others white.
QString StyleOf(bool active) {
    // The mask is a star without delay: no character of a code is ever readable.
    return QStringLiteral("QLineEdit { lineedit-password-character: 42; "
                          "lineedit-password-mask-delay: 0; background: %1; color: black; }")
        .arg(QColor(active ? Qt::yellow : Qt::white).name());
}

} // namespace

dlgUserCodes::dlgUserCodes()
    : ScreenForm(FormNames::dlgUserCodes, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgUserCodes>()) {
    ui_->setupUi(this);
    MakeKeys();
    Prepare();
    OnKey(Qt::Key_Return, [this] { Confirm(); });
    OnKey(Qt::Key_Escape, [this] { Close(false); });
    guarded_ = IsGuarded();
    tmrAutoClose_ = new QTimer(this);
    tmrAutoClose_->setObjectName(QStringLiteral("tmrAutoClose"));
    tmrAutoClose_->setSingleShot(true);
    tmrAutoClose_->setInterval(
        int(Bytes::Limit(Bytes::Val(GetConfig(100111)), 0.0, LongestWait) * MsInSecond));
    connect(tmrAutoClose_, &QTimer::timeout, this, [this] { Close(false); });
    OnClick(Key, [this](int index) { cmdChar_Click(index); });
    OnClick(Image, [this](int index) { imgControl_Click(index); });
    for (const int index : Indices(Text)) {
        Box(index)->installEventFilter(this);
        Box(index)->setValidator(new CodePageLine(this));
    }
    ShowBoxes();
}

dlgUserCodes::~dlgUserCodes() = default;

/// The control's index is the code of its character. No key takes the focus from the boxes.
void dlgUserCodes::MakeKeys() {
    const QString characters = KeyCharacters;
    for (int i = 0; i < characters.size(); ++i) {
        const int code = characters[i].unicode();
        auto* key = new QPushButton(this);
        key->setObjectName(Key + u'_' + QString::number(code));
        key->setFocusPolicy(Qt::NoFocus);
        key->setFont(Theme::Text(KeyPixels));
        key->setText(code == Backspace ? QString(QChar(0x2190)) : QString(characters[i]));
        key->setGeometry(FirstKey.translated(i % KeysInRow * KeyPitchX, i / KeysInRow * KeyPitchY));
    }
}

void dlgUserCodes::AskCodeOnly(ScreenForm* caller, int level, Taker taker) {
    caller_ = caller;
    neededLevel_ = level;
    taker_ = std::move(taker);
    for (const int index : {NameLabel, LevelLabel})
        Control(Caption, index)->hide();
    for (const int index : {LevelDown, LevelUp})
        Control(Image, index)->hide();
    ui_->lblPwdLevel->hide();
    Box(NameBox)->hide();
    Control(Caption, HintLabel)->show();
    ui_->lblTold->show();
    Box(CodeBox)->setEchoMode(QLineEdit::Password);
    SetCaption(ui_->lblTitle, GetText(PromptTitle));
    ui_->lblTitle->setProperty("Tag", QString::number(PromptTitle));
    Compact();
    Tell(QString(), false);
    if (tmrAutoClose_->interval() > 0)
        tmrAutoClose_->start();
}

/// What is left goes into as few rows as there may be: the list of the console stays in sight.
void dlgUserCodes::Compact() {
    const ScreenFactors by = IsScaled() ? CurrentScreenFactors() : ScreenFactors{};
    const auto place = [&by](QWidget* control, const QRect& area) {
        control->setGeometry(qRound(area.x() * by.horizontal), qRound(area.y() * by.vertical),
                             qRound(area.width() * by.horizontal),
                             qRound(area.height() * by.vertical));
    };
    place(ui_->lblTitle, {12, 6, 250, 30});
    place(ui_->lblTold, {270, 6, 518, 30});
    place(Control(Caption, CodeLabel), {12, 40, 110, 50});
    place(Box(CodeBox), {126, 40, 326, 50});
    place(Control(Image, CancelImage), {464, 40, 158, 50});
    place(Control(Image, ConfirmImage), {630, 40, 158, 50});
    place(Control(Caption, HintLabel), {126, 92, 662, 22});
    const QString characters = KeyCharacters;
    for (int i = 0; i < characters.size(); ++i)
        place(Control(Key, characters[i].unicode()),
              PromptKey.translated(i % PromptKeysInRow * PromptKeyPitch.width(),
                                   i / PromptKeysInRow * PromptKeyPitch.height()));
    setFormSize(qRound(Theme::DesignWidth * by.horizontal), qRound(PromptHeight * by.vertical));
}

QRect dlgUserCodes::PlaceIn(const QRect& area) const {
    QRect place = ScreenForm::PlaceIn(area);
    if (taker_)
        place.moveBottom(area.bottom());
    return place;
}

/// The level that is needed, and ahead of it what became of the last code.
void dlgUserCodes::Tell(const QString& text, bool failed) {
    QStringList parts{text};
    if (neededLevel_ > 0)
        parts += GetText(NeededLevel).replace(u'$', QString::number(neededLevel_));
    parts.removeAll(QString());
    SetCaption(ui_->lblTold, parts.join(QStringLiteral(" - ")));
    ui_->lblTold->setStyleSheet(failed ? QStringLiteral("color: #FFA64D;") : QString());
}

QLineEdit* dlgUserCodes::Box(int index) const {
    return Control<QLineEdit>(Text, index);
}

QString dlgUserCodes::UserName() const {
    return Box(NameBox)->text();
}

void dlgUserCodes::setUserName(const QString& name) {
    Box(NameBox)->setText(name);
}

QString dlgUserCodes::UserPwd() const {
    return Box(CodeBox)->text();
}

void dlgUserCodes::setUserPwd(const QString& code) {
    Box(CodeBox)->setText(code);
}

int dlgUserCodes::UserLevel() const {
    return Bytes::LongVal(ui_->lblPwdLevel->text());
}

void dlgUserCodes::setUserLevel(int level) {
    ui_->lblPwdLevel->setText(QString::number(level));
}

void dlgUserCodes::ShowKept() {
    SetCaption(ui_->lblTold, GetText(AsBeforeTheAlarm));
    ui_->lblTold->show();
}

/// Whoever opens the form can type at once.
void dlgUserCodes::Form_Activate() {
    if (active_ >= 0)
        return;
    const int first = Box(NameBox)->isHidden() ? CodeBox : NameBox;
    Box(first)->setFocus();
    MakeActive(first);
}

void dlgUserCodes::Form_Unload() {
    tmrAutoClose_->stop();
    ok_ = false;
    for (const int index : Indices(Text))
        Box(index)->clear();
}

bool dlgUserCodes::eventFilter(QObject* watched, QEvent* event) {
    // A touch counts also where no window manager hands out the focus.
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::MouseButtonPress) {
        for (const int index : Indices(Text)) {
            if (watched == Box(index))
                MakeActive(index);
        }
    }
    return ScreenForm::eventFilter(watched, event);
}

void dlgUserCodes::MakeActive(int index) {
    if (active_ == index)
        return;
    active_ = index;
    ShowBoxes();
}

void dlgUserCodes::ShowBoxes() {
    for (const int index : Indices(Text))
        Box(index)->setStyleSheet(StyleOf(index == active_));
}

void dlgUserCodes::cmdChar_Click(int index) {
    if (active_ < 0) {
        QApplication::beep();
        return;
    }
    QLineEdit* box = Box(active_);
    const QString text = box->text();
    const bool full = index != Backspace && text.size() >= box->maxLength();
    if (full || (index == Backspace && text.isEmpty())) {
        QApplication::beep();
        return;
    }
    box->setText(index == Backspace ? text.chopped(1) : text + QChar(char16_t(index)));
}

/// On a guarded site nobody makes a user of a level above the own one.
void dlgUserCodes::imgControl_Click(int index) {
    const int level = UserLevel();
    if (index == CancelImage || index == ConfirmImage)
        index == ConfirmImage ? Confirm() : Close(false);
    else if (index == LevelDown && level > 0)
        setUserLevel(level - 1);
    else if (index == LevelUp && level < HighestLevel &&
             (!guarded_ || level < Global::Get().userLevel))
        setUserLevel(level + 1);
}

/// A code that isn't enough leaves the prompt, with its full time, for another one.
void dlgUserCodes::Confirm() {
    if (!taker_) {
        Close(true);
        return;
    }
    const QPointer<dlgUserCodes> self(this);
    const Verdict verdict = taker_(UserPwd());
    // The event of the code may have taken the prompt away.
    if (!IsLoaded(self.data()))
        return;
    if (verdict == Verdict::Taken) {
        Close(true);
        return;
    }
    Box(CodeBox)->clear();
    Tell(verdict == Verdict::Unknown ? GetText(UnknownCode) : QString(), true);
    if (tmrAutoClose_->interval() > 0)
        tmrAutoClose_->start();
}

void dlgUserCodes::Close(bool ok) {
    tmrAutoClose_->stop();
    ok_ = ok;
    Hide();
}
