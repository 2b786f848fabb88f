#include "screens/dlgUserCodes.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/Global.h"
#include "screens/AskPassword.h"
#include "screens/Theme.h"
#include "ui_dlgUserCodes.h"

#include <QApplication>
#include <QKeyEvent>
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
constexpr int HighestLevel = 3;
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

/// The box that the keys write to is yellow, the others white.
QString StyleOf(bool active) {
    // The mask is a star without delay: no character of a code is ever readable.
    return QStringLiteral("QLineEdit { lineedit-password-character: 42; "
                          "lineedit-password-mask-delay: 0; background: %1; color: black; }")
        .arg(QColor(active ? Qt::yellow : Qt::white).name());
}

} // namespace

dlgUserCodes::dlgUserCodes()
    : ScreenForm(QStringLiteral("dlgUserCodes"), Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgUserCodes>()) {
    ui_->setupUi(this);
    MakeKeys();
    Prepare();
    guarded_ = IsGuarded();
    tmrAutoClose_ = new QTimer(this);
    tmrAutoClose_->setObjectName(QStringLiteral("tmrAutoClose"));
    tmrAutoClose_->setSingleShot(true);
    tmrAutoClose_->setInterval(
        int(Bytes::Limit(Bytes::Val(GetConfig(100111)), 0.0, LongestWait) * MsInSecond));
    connect(tmrAutoClose_, &QTimer::timeout, this, [this] { Close(false); });
    OnClick(Key, [this](int index) { cmdChar_Click(index); });
    OnClick(Image, [this](int index) { imgControl_Click(index); });
    for (const int index : Indices(Text))
        Box(index)->installEventFilter(this);
    ShowBoxes();
}

dlgUserCodes::~dlgUserCodes() = default;

/// The control's index is the code of its character. No key takes the focus from the boxes.
void dlgUserCodes::MakeKeys() {
    const QString characters = QStringLiteral("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-\b");
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

void dlgUserCodes::AskCodeOnly() {
    for (const int index : {NameLabel, LevelLabel})
        Control(Caption, index)->hide();
    for (const int index : {LevelDown, LevelUp})
        Control(Image, index)->hide();
    ui_->lblPwdLevel->hide();
    Box(NameBox)->hide();
    Control(Caption, HintLabel)->show();
    Box(CodeBox)->setEchoMode(QLineEdit::Password);
    SetCaption(ui_->lblTitle, GetText(PromptTitle));
    ui_->lblTitle->setProperty("Tag", QString::number(PromptTitle));
    Compact();
    if (tmrAutoClose_->interval() > 0)
        tmrAutoClose_->start();
}

/// Without name and level the code moves up to their place, and the rest follows.
void dlgUserCodes::Compact() {
    const int rise = Box(CodeBox)->y() - Box(NameBox)->y();
    const int rows = rise + Control(Image, LevelUp)->y() - Box(CodeBox)->y();
    for (QWidget* control : {static_cast<QWidget*>(Box(CodeBox)), Control(Caption, CodeLabel)})
        control->move(control->x(), control->y() - rise);
    for (const int index : Indices(Key))
        Control(Key, index)->move(Control(Key, index)->x(), Control(Key, index)->y() - rows);
    for (QWidget* control :
         {Control(Image, CancelImage), Control(Image, ConfirmImage), Control(Caption, HintLabel)})
        control->move(control->x(), control->y() - rows);
    setFixedSize(width(), height() - rows);
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
        Close(index == ConfirmImage);
    else if (index == LevelDown && level > 0)
        setUserLevel(level - 1);
    else if (index == LevelUp && level < HighestLevel &&
             (!guarded_ || level < Global::Get().userLevel))
        setUserLevel(level + 1);
}

void dlgUserCodes::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        Close(true);
    else if (event->key() == Qt::Key_Escape)
        Close(false);
}

void dlgUserCodes::Close(bool ok) {
    tmrAutoClose_->stop();
    ok_ = ok;
    Hide();
}
