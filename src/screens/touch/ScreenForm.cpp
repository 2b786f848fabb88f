#include "screens/touch/ScreenForm.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Operator.h"
#include "core/Rehearsal.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/RehearsalStrip.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/Theme.h"
#include "screens/touch/TouchImage.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QWindow>
#include <algorithm>

namespace {

/// A platform without windows of its own can't and says so each time.
void RaiseWindow(QWidget& window) {
    if (QGuiApplication::platformName() != QLatin1String("offscreen"))
        window.raise();
}

QString ControlName(const QString& array, int index) {
    return array + u'_' + QString::number(index);
}

QString OnScreen(QString text) {
    return text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

constexpr const char* TagProperty = "Tag";

} // namespace

ScreenForm::ScreenForm(const QString& name, Kind kind)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint)
    , name_(name)
    , kind_(kind) {
    setObjectName(name);
    setWindowTitle(name);
    // The program lives without a screen as well: the engine ends it, not the last window.
    setAttribute(Qt::WA_QuitOnClose, false);
    if (kind == Kind::Dialog)
        setWindowFlag(Qt::WindowStaysOnTopHint);
    Forms::Added(this);
}

ScreenForm::~ScreenForm() {
    if (!unloaded_)
        Forms::Removed(this);
    if (modalLoop_ != nullptr)
        modalLoop_->quit();
}

void ScreenForm::Show() {
    if (unloaded_)
        return;
    Place();
    show();
    BringToFront();
}

void ScreenForm::Hide() {
    hide();
}

void ScreenForm::BringToFront() {
    if (unloaded_ || !isVisible())
        return;
    RaiseWindow(*this);
    if (!Floats())
        activateWindow();
    RaiseDialogs();
    Activate();
}

void ScreenForm::Unload() {
    if (unloaded_)
        return;
    unloaded_ = true;
    ErrorHandling::Guard((name_ + QStringLiteral(".Form_Unload")).toLatin1().constData(),
                         [this] { Form_Unload(); });
    Forms::Removed(this);
    hide();
    deleteLater();
}

void ScreenForm::ShowModal(Qt::WindowModality modality) {
    if (unloaded_ || modalLoop_ != nullptr)
        return;
    // The form may be gone when the loop ends.
    const QPointer<ScreenForm> self(this);
    QEventLoop loop;
    modalLoop_ = &loop;
    setWindowModality(modality);
    Show();
    if (isVisible()) {
        const Operator::Away away;
        loop.exec();
    }
    if (!self)
        return;
    modalLoop_ = nullptr;
    hide();
    setWindowModality(Qt::NonModal);
    LiftFloats();
}

bool ScreenForm::IsLoaded(const ScreenForm* form) {
    return form != nullptr && Forms::Find(form->Name()) == form;
}

QWidget* ScreenForm::FindControl(const QString& array, int index) const {
    return findChild<QWidget*>(ControlName(array, index));
}

QList<int> ScreenForm::Indices(const QString& array) const {
    QList<int> indices;
    const QString head = array + u'_';
    for (const QWidget* control : findChildren<QWidget*>()) {
        bool isNumber = false;
        const int index = control->objectName().mid(head.size()).toInt(&isNumber);
        if (isNumber && control->objectName().startsWith(head))
            indices.append(index);
    }
    std::sort(indices.begin(), indices.end());
    return indices;
}

void ScreenForm::Prepare() {
    for (QWidget* control : findChildren<QWidget*>()) {
        control->setFont(Theme::DesignFont(control->font()));
        if (qobject_cast<TouchImage*>(control) != nullptr)
            control->setCursor(Theme::TouchPointer());
        // Texts of the site may look like markup.
        if (auto* label = qobject_cast<QLabel*>(control))
            label->setTextFormat(Qt::PlainText);
    }
    setFixedSize(size());
    if (kind_ == Kind::Screen) {
        auto* background = new QLabel(this);
        background->setObjectName(QStringLiteral("imgBackPicture"));
        background->setPixmap(Theme::Background());
        background->setScaledContents(true);
        background->setGeometry(rect());
        background->lower();
    }
    Nationality();
    scaled_ = ResizeForm(*this);
    if (Rehearsal::Runs())
        PutStrip();
}

/// Below all that the form has: nothing of it moves.
void ScreenForm::PutStrip() {
    strip_ = new RehearsalStrip(this);
    connect(strip_, &RehearsalStrip::Touched, this, [this] {
        const Operator::Acting acting;
        ErrorHandling::Guard((name_ + QStringLiteral(".lblRehearsal_Click")).toLatin1().constData(),
                             [] {
                                 if (NbInstances(FormNames::wRehearsal) == 0)
                                     OpenDialog(FormNames::wRehearsal);
                             });
    });
    setFormSize(width(), height());
}

void ScreenForm::setFormSize(int width, int height) {
    setFixedSize(width, height + (strip_ == nullptr ? 0 : RehearsalStripHeight()));
    if (strip_ != nullptr)
        strip_->setGeometry(0, height, width, RehearsalStripHeight());
}

int ScreenForm::FormHeight() const {
    return height() - (strip_ == nullptr ? 0 : RehearsalStripHeight());
}

void ScreenForm::Nationality() {
    for (QWidget* control : findChildren<QWidget*>()) {
        const QString tag = control->property(TagProperty).toString();
        if (!tag.isEmpty())
            SetCaption(control, GetText(tag));
    }
}

void ScreenForm::SetCaption(QWidget* control, const QString& text) {
    if (auto* label = qobject_cast<QLabel*>(control))
        label->setText(OnScreen(text));
    else if (auto* button = qobject_cast<QAbstractButton*>(control))
        button->setText(OnScreen(text));
    else if (auto* box = qobject_cast<QGroupBox*>(control))
        box->setTitle(OnScreen(text));
}

void ScreenForm::SetCaption(const QString& array, int index, const QString& text) {
    auto* label = Control<QWidget>(array, index);
    SetCaption(label, text);
    if (QLabel* shadow = shadows_.value(qobject_cast<QLabel*>(label)))
        SetCaption(shadow, text);
}

void ScreenForm::OnClick(const QString& array, const std::function<void(int)>& handler) {
    for (const int index : Indices(array))
        Connect(Control(array, index), array, [handler, index] { handler(index); });
}

void ScreenForm::OnClick(QWidget* control, std::function<void()> handler) {
    Connect(control, control->objectName(), std::move(handler));
}

void ScreenForm::OnKey(Qt::Key key, const std::function<void()>& handler) {
    keys_.insert(key, handler);
}

void ScreenForm::Connect(QWidget* control, const QString& object, std::function<void()> handler) {
    const QByteArray source = (name_ + u'.' + object + QStringLiteral("_Click")).toLatin1();
    const auto click = [source, handler = std::move(handler)] {
        const Operator::Acting acting;
        ErrorHandling::Guard(source.constData(), handler);
    };
    control->setCursor(Theme::TouchPointer());
    if (auto* button = qobject_cast<QAbstractButton*>(control)) {
        connect(button, &QAbstractButton::clicked, this, click);
    } else {
        labelClicks_.insert(control, click);
        control->installEventFilter(this);
    }
}

void ScreenForm::OmbrerTexte(const QString& array, int dx, int dy) {
    const QList<int> indices = Indices(array);
    int next = indices.isEmpty() ? 0 : indices.last() + 1;
    for (const int index : indices) {
        auto* label = Control<QLabel>(array, index);
        auto* shadow = new QLabel(label->parentWidget());
        shadow->setObjectName(ControlName(array, next++));
        shadow->setProperty("shadow", true);
        shadow->setProperty(TagProperty, label->property(TagProperty));
        shadow->setFont(label->font());
        shadow->setAlignment(label->alignment());
        shadow->setWordWrap(label->wordWrap());
        shadow->setText(label->text());
        shadow->setGeometry(label->geometry().translated(dx, dy));
        QPalette black = label->palette();
        black.setColor(QPalette::WindowText, Qt::black);
        shadow->setPalette(black);
        shadow->setAttribute(Qt::WA_TransparentForMouseEvents);
        shadow->stackUnder(label);
        shadow->setVisible(!label->isHidden());
        shadows_.insert(label, shadow);
    }
}

/// Keys count as touches: somebody is there.
bool ScreenForm::event(QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QWidget::event(event);
    const Operator::Acting acting;
    return QWidget::event(event);
}

void ScreenForm::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (const auto handler = keys_.value(key == Qt::Key_Enter ? int(Qt::Key_Return) : key))
        ErrorHandling::Guard((name_ + QStringLiteral(".Form_KeyDown")).toLatin1().constData(),
                             handler);
    else
        QWidget::keyPressEvent(event);
}

void ScreenForm::closeEvent(QCloseEvent* event) {
    // The end of the application closes its windows too, and that must go through.
    if (!event->spontaneous())
        return;
    event->ignore();
    const Operator::Acting acting;
    ErrorHandling::Guard((name_ + QStringLiteral(".Form_QueryUnload")).toLatin1().constData(),
                         [this] { CloseRequested(); });
}

void ScreenForm::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isVisible() && isActiveWindow())
        Activate();
}

void ScreenForm::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (modalLoop_ != nullptr && !event->spontaneous())
        modalLoop_->quit();
}

void ScreenForm::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::Ground);
    if (kind_ == Kind::Screen)
        return;
    painter.setPen(QPen(Theme::Edge, 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

bool ScreenForm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        const auto* control = qobject_cast<QWidget*>(watched);
        const auto click = labelClicks_.value(watched);
        if (click && control != nullptr && control->isEnabled() &&
            mouse->button() == Qt::LeftButton &&
            control->rect().contains(mouse->position().toPoint())) {
            click();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ScreenForm::Activate() {
    if (!unloaded_)
        ErrorHandling::Guard((name_ + QStringLiteral(".Form_Activate")).toLatin1().constData(),
                             [this] { Form_Activate(); });
}

/// Screens that aren't fitted to the display cover its upper left part alone. What is larger than
/// the display keeps its upper left corner on it.
void ScreenForm::Place() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr)
        return;
    const QRect display = screen->geometry();
    QRect area = display;
    if (Global::Get().noResize)
        area.setSize({Theme::DesignWidth, Theme::DesignHeight});
    if (Rehearsal::Runs())
        area.setHeight(qMin(area.height(), display.height() - RehearsalStripHeight()));
    QRect place = PlaceIn(area);
    place.moveRight(qMin(place.right(), display.right()));
    place.moveBottom(qMin(place.bottom(), display.bottom()));
    place.moveLeft(qMax(place.left(), display.left()));
    place.moveTop(qMax(place.top(), display.top()));
    move(place.topLeft());
}

QRect ScreenForm::PlaceIn(const QRect& area) const {
    QRect place(area.topLeft(), size());
    if (kind_ == Kind::Dialog)
        place.moveCenter(area.center());
    return place;
}

/// The dialog that waits for an answer, null for none.
QWidget* ScreenForm::Waiting() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* form = qobject_cast<ScreenForm*>(window);
        if (form != nullptr && form->modalLoop_ != nullptr && form->isVisible())
            return form;
    }
    return nullptr;
}

void ScreenForm::RaiseDialogs() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        const auto* form = qobject_cast<ScreenForm*>(window);
        if (form != nullptr && form->kind_ == Kind::Dialog && form->isVisible())
            RaiseWindow(*window);
    }
    // The keyboard stays with the dialog that waits for an answer.
    if (QWidget* waiting = Waiting()) {
        RaiseWindow(*waiting);
        waiting->activateWindow();
    }
    LiftFloats();
}

/// A window takes touches beside a modal one only as its child, and must be shown as such.
void ScreenForm::LiftFloats() {
    const QWidget* modal = QApplication::activeModalWidget();
    QWindow* owner = modal == nullptr ? nullptr : modal->windowHandle();
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* form = qobject_cast<ScreenForm*>(window);
        if (form == nullptr || !form->Floats() || !form->isVisible())
            continue;
        if (form->windowHandle()->transientParent() != owner) {
            form->hide();
            form->windowHandle()->setTransientParent(owner);
            form->show();
        }
        RaiseWindow(*form);
    }
}
