#include "screens/dialogs/dlgMessage.h"

#include "core/Boxes.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/Theme.h"
#include "ui_dlgMessage.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QWindow>
#include <array>
#include <cmath>

using ErrorHandling::Guard;

namespace {

const QString Button = QStringLiteral("cmdButton");
const QString Icon = QStringLiteral("imgIcons");

struct ButtonKind {
    int result;
    int text;
};
constexpr ButtonKind OkButton{Messages::Ok, 10004};
constexpr ButtonKind CancelButton{Messages::Cancel, 10005};
constexpr ButtonKind AbortButton{Messages::Abort, 10006};
constexpr ButtonKind RetryButton{Messages::Retry, 10007};
constexpr ButtonKind IgnoreButton{Messages::Ignore, 10003};
constexpr ButtonKind YesButton{Messages::Yes, 10002};
constexpr ButtonKind NoButton{Messages::No, 10001};

struct ButtonSet {
    int count;
    std::array<ButtonKind, 3> buttons;
    int cancel;
};
constexpr std::array Sets{
    ButtonSet{1, {OkButton}, -1},
    ButtonSet{2, {OkButton, CancelButton}, 1},
    ButtonSet{3, {AbortButton, RetryButton, IgnoreButton}, 0},
    ButtonSet{3, {YesButton, NoButton, CancelButton}, 2},
    ButtonSet{2, {YesButton, NoButton}, 1},
};

/// Left edges from the middle of the form, in widths of a button, by the number of buttons.
constexpr std::array<std::array<double, 3>, 3> LeftEdges{{
    {-0.5, 0, 0},
    {-1.25, 0.25, 0},
    {-1.75, -0.5, 0.75},
}};

constexpr std::array Pictures{"", "critical", "question", "exclamation", "information"};

/// Of the design, pixels: the most that a box takes that nobody called, and where the list of the
/// console ends.
constexpr int UnreadHeight = 270;
constexpr int ListEnd = 446;

constexpr int SetMask = 7;
constexpr int PictureShift = 16;
constexpr int PictureMask = 7;
constexpr int DefaultShift = 256;
constexpr int DefaultMask = 3;

/// A box ahead of the configuration base has no words yet.
QString Caption(int text) {
    const QString word = GetText(text);
    return u'&' + (word.startsWith(u'#') ? QStringLiteral("OK") : word);
}

} // namespace

dlgMessage::dlgMessage()
    : ScreenForm(FormNames::dlgMessage, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgMessage>())
    , result_(std::make_shared<int>(Messages::Closed)) {
    ui_->setupUi(this);
    setWindowTitle(Global::Title);
    ui_->lblTitle->setText(Global::Title);
    ui_->txtMsg->setFrameShape(QFrame::NoFrame);
    ui_->txtMsg->setStyleSheet(QStringLiteral("background: transparent; border: none;"));
    ui_->txtMsg->setTextInteractionFlags(Qt::NoTextInteraction);
    ui_->txtMsg->viewport()->setAutoFillBackground(false);
    ui_->txtMsg->document()->setDocumentMargin(0);
    Prepare();
    for (const int i : Indices(Icon)) {
        auto* icon = Control<QLabel>(Icon, i);
        icon->setPixmap(Theme::Picture(QString::fromLatin1(Pictures[size_t(i)]), icon->height()));
        icon->hide();
    }
    for (const int i : Indices(Button))
        Control<QPushButton>(Button, i)->setAutoDefault(false);
    OnClick(Button, [this](int index) { Press(index); });
    borderHeight_ = frameGeometry().height() - height();
    lineHeight_ = ui_->txtMsg->fontMetrics().lineSpacing();
    ShowSet(0);
}

dlgMessage::~dlgMessage() = default;

int dlgMessage::Present(const QString& text, int buttons, bool noWait) {
    auto* dialog = new dlgMessage;
    dialog->setMessage(text);
    dialog->setButtons(buttons);
    dialog->setDoUnload(noWait);
    if (noWait) {
        dialog->Show();
        return 0;
    }
    const std::shared_ptr<int> result = dialog->result_;
    const QPointer<dlgMessage> self(dialog);
    dialog->ShowModal();
    if (self)
        self->Unload();
    return *result;
}

void dlgMessage::PresentUnread(const QString& text, int buttons) {
    static QPointer<dlgMessage> standing;
    if (standing && standing->Visible()) {
        standing->setMessage(text);
        standing->BringToFront();
        return;
    }
    standing = new dlgMessage;
    standing->unread_ = true;
    standing->setAttribute(Qt::WA_ShowWithoutActivating);
    standing->setMessage(text);
    standing->setButtons(buttons);
    standing->setDoUnload(true);
    standing->Show();
}

/// What a notice goes with keeps the event loop still: it must be on the screen before.
static void WaitUntilSeen(const QPointer<dlgMessage>& notice) {
    constexpr int LongestMs = 500;
    constexpr int StepMs = 10;
    const QDeadlineTimer deadline(LongestMs);
    const auto isSeen = [&notice] {
        return !notice || notice->windowHandle() == nullptr || notice->windowHandle()->isExposed();
    };
    while (!isSeen() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, StepMs);
    if (notice)
        notice->repaint();
}

Messages::ShownNotice dlgMessage::PresentNotice(const QString& text) {
    const QPointer<dlgMessage> notice(new dlgMessage);
    notice->setMessage(text);
    notice->setButtons(Messages::Warning);
    notice->setDoUnload(true);
    notice->HideButtons();
    notice->Show();
    WaitUntilSeen(notice);
    return {[notice] {
                if (notice)
                    notice->Unload();
            },
            [notice](const QString& changed) {
                if (!notice)
                    return;
                notice->setMessage(changed);
                notice->repaint();
            }};
}

void dlgMessage::setButtons(int style) {
    Guard("dlgMessage.Buttons", [&] {
        ShowSet(style & SetMask);
        ShowPicture((style / PictureShift) & PictureMask);
        const int chosen = (style / DefaultShift) & DefaultMask;
        if (chosen > 0) {
            Control<QPushButton>(Button, chosen)->setFocus();
            default_ = chosen;
        }
    });
}

void dlgMessage::ShowSet(int set) {
    default_ = 0;
    if (set >= int(Sets.size()))
        return;
    const ButtonSet& shown = Sets[size_t(set)];
    cancel_ = shown.cancel;
    for (int i = 0; i < ButtonCount; ++i) {
        auto* button = Control<QPushButton>(Button, i);
        button->setVisible(i < shown.count);
        if (i >= shown.count)
            continue;
        button->setProperty("Tag", QString::number(shown.buttons[size_t(i)].result));
        button->setText(Caption(shown.buttons[size_t(i)].text));
    }
    PlaceButtons(shown.count);
}

void dlgMessage::PlaceButtons(int count) {
    const double middle = width() / 2.0;
    for (int i = 0; i < count; ++i) {
        auto* button = Control<QPushButton>(Button, i);
        const double left = middle + LeftEdges[size_t(count - 1)][size_t(i)] * button->width();
        button->move(qRound(left), button->y());
    }
}

void dlgMessage::ShowPicture(int picture) {
    for (const int i : Indices(Icon))
        Control<QLabel>(Icon, i)->setVisible(i == picture && i > 0);
}

void dlgMessage::HideButtons() {
    for (const int i : Indices(Button))
        Control<QPushButton>(Button, i)->hide();
    cancel_ = -1;
}

void dlgMessage::setMessage(const QString& text) {
    Guard("dlgMessage.Message", [&] {
        QString lines = text;
        lines.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
        ui_->txtMsg->setPlainText(lines);
        Layout();
        if (isVisible())
            Place();
    });
}

/// One that nobody called leaves the greater part of the console's list in sight.
int dlgMessage::MostHeight() const {
    if (unread_)
        return qRound(UnreadHeight * (IsScaled() ? CurrentScreenFactors().vertical : 1));
    const QScreen* display = QGuiApplication::primaryScreen();
    return (display ? display->geometry().height() : Theme::DesignHeight) - RehearsalStripHeight();
}

/// One that nobody called lies where the console has its oldest alarms, above its buttons, or above
/// the prompt in which a code is being entered.
QRect dlgMessage::PlaceIn(const QRect& area) const {
    QRect place = ScreenForm::PlaceIn(area);
    if (!unread_)
        return place;
    const auto* prompt = dynamic_cast<const QWidget*>(Forms::Find(FormNames::dlgUserCodes));
    const int foot = area.top() + area.height() * ListEnd / Theme::DesignHeight;
    place.moveBottom(prompt != nullptr && prompt->isVisible() ? qMin(foot, prompt->y() - 1) : foot);
    return place;
}

/// The box grows with its text. A text higher than the display is scrolled.
void dlgMessage::Layout() {
    QTextEdit* box = ui_->txtMsg;
    const int top = ui_->imgIcons_0->y();
    const int picture = ui_->imgIcons_0->height();
    const int button = ui_->cmdButton_0->height();
    const int rest = top + button + borderHeight_ + 2 * lineHeight_;
    box->document()->setTextWidth(box->width());
    const int wanted = int(std::ceil(box->document()->size().height()));
    const int text = qMin(wanted, MostHeight() - rest);
    const int area = qMax(text, picture);
    box->setVerticalScrollBarPolicy(text < wanted ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    // A text in full sight lets a touch through to the box.
    box->setAttribute(Qt::WA_TransparentForMouseEvents, text >= wanted);
    box->setGeometry(box->x(), top + (area - text) / 2, box->width(), text);
    setFormSize(width(), area + rest);
    for (const int i : Indices(Button)) {
        auto* control = Control<QPushButton>(Button, i);
        control->move(control->x(), top + area + lineHeight_);
    }
    for (const int i : Indices(Icon)) {
        auto* icon = Control<QLabel>(Icon, i);
        icon->move(icon->x(), top + (area - picture) / 2);
    }
}

void dlgMessage::Form_Activate() {
    auto* button = Control<QPushButton>(Button, default_);
    if (!button->isHidden())
        button->setFocus();
}

void dlgMessage::CloseRequested() {
    if (doUnload_)
        Unload();
    else
        Hide();
}

void dlgMessage::Press(int index) {
    *result_ = int(Bytes::Val(Control<QPushButton>(Button, index)->property("Tag").toString()));
    if (unread_)
        Boxes::Read();
    if (doUnload_)
        Unload();
    else
        Hide();
}

/// A touch anywhere reads what nobody has called.
void dlgMessage::mouseReleaseEvent(QMouseEvent* event) {
    if (!unread_ || event->button() != Qt::LeftButton || !rect().contains(event->pos()))
        return;
    const Operator::Acting acting;
    Guard("dlgMessage.Form_Click", [this] { Press(0); });
}

void dlgMessage::keyPressEvent(QKeyEvent* event) {
    int pressed = -1;
    if (event->key() == Qt::Key_Escape) {
        pressed = cancel_;
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        pressed = default_;
        for (const int i : Indices(Button)) {
            if (Control<QPushButton>(Button, i)->hasFocus())
                pressed = i;
        }
    }
    if (pressed < 0 || Control<QPushButton>(Button, pressed)->isHidden())
        return;
    Control<QPushButton>(Button, pressed)->click();
}
