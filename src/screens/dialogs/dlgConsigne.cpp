#include "screens/dialogs/dlgConsigne.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "screens/dialogs/InstructionStrip.h"
#include "screens/touch/ModalDialog.h"
#include "ui_dlgConsigne.h"

namespace {

const QString Scrollers = QStringLiteral("imgControl");
enum Scroll { PageUp = 4, LineUp, LineDown, PageDown };

constexpr int NoInstruction = 710021;
constexpr QChar NoBreakSpace(0xA0);
constexpr QChar BreakHere(0x200B);
/// A word that may be wider than a line, characters.
constexpr int LongWord = 30;
/// Lines by which the line buttons move the text.
constexpr int Step = 2;

/// Gives words without an end a place where a line may break.
QString Breakable(const QString& text) {
    QString result;
    int letters = 0;
    for (const QChar c : text) {
        letters = c.isSpace() ? 0 : letters + 1;
        if (letters > LongWord) {
            result += BreakHere;
            letters = 1;
        }
        result += c;
    }
    return result;
}

QString OneKindOfBreaks(QString text) {
    return text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
}

} // namespace

dlgConsigne::dlgConsigne()
    : ScreenForm(FormNames::dlgConsigne, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgConsigne>()) {
    ui_->setupUi(this);
    Prepare();
    narrow_ = ui_->frmFrames_0->width();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape})
        OnKey(key, [this] { Hide(); });
    OnClick(ui_->imgClose, [this] { Hide(); });
    OnClick(Scrollers, [this](int index) { imgControl_Click(index); });
    Layout();
}

dlgConsigne::~dlgConsigne() = default;

void dlgConsigne::Present(const QString& alarm, const QString& consigne) {
    InstructionStrip::Withdraw();
    RunDialog(
        new dlgConsigne,
        [&](dlgConsigne& dialog) {
            dialog.setAlarm(alarm);
            dialog.setConsigne(consigne);
        },
        [](const dlgConsigne&) { return true; });
}

void dlgConsigne::PresentNumber(const QString& alarm, int number) {
    if (number == 0) {
        Message(GetText(NoInstruction), Messages::Critical);
        return;
    }
    const QString text = Global::Configuration().ConsigneText(number).trimmed();
    Present(alarm, text.isEmpty() ? GetText(NoInstruction) : text);
}

void dlgConsigne::setAlarm(const QString& text) {
    alarm_ = text;
    ui_->lblAlarm->setText(OneKindOfBreaks(text).replace(u' ', NoBreakSpace));
}

void dlgConsigne::setConsigne(const QString& text) {
    consigne_ = text;
    ui_->lblConsigne->setText(Breakable(OneKindOfBreaks(text)));
    Layout();
}

/// Taken away while it is read: whoever reads it has closed it first otherwise.
void dlgConsigne::Form_Unload() {
    if (isVisible())
        InstructionStrip::Offer(alarm_, consigne_);
}

/// The text takes the height that it needs. The buttons show when that is more than there is; where
/// they don't, the text has their place as well.
void dlgConsigne::Layout() {
    const QRect buttons = Control(Scrollers, PageUp)->geometry();
    const auto fit = [&](bool scrolls) {
        QWidget& frame = *ui_->frmFrames_0;
        QWidget& page = *ui_->frmConsigne;
        const int inset = page.x() - frame.x();
        const int right = scrolls ? frame.x() + narrow_ : buttons.x() + buttons.width();
        frame.resize(right - frame.x(), frame.height());
        page.resize(frame.width() - 2 * inset, page.height());
        const int height = qMax(ui_->lblConsigne->heightForWidth(page.width()), page.height());
        ui_->lblConsigne->setGeometry(0, 0, page.width(), height);
        return height <= page.height();
    };
    const bool scrolls = !fit(false);
    if (scrolls)
        fit(true);
    for (const int index : Indices(Scrollers))
        Control(Scrollers, index)->setVisible(scrolls);
}

void dlgConsigne::ScrollBy(int pixels) {
    QLabel& text = *ui_->lblConsigne;
    text.move(0, Bytes::Limit(text.y() - pixels, ui_->frmConsigne->height() - text.height(), 0));
}

void dlgConsigne::imgControl_Click(int index) {
    const int line = ui_->lblConsigne->fontMetrics().lineSpacing();
    const int page = ui_->frmConsigne->height() - line;
    switch (index) {
    case PageUp:
        return ScrollBy(-page);
    case LineUp:
        return ScrollBy(-Step * line);
    case LineDown:
        return ScrollBy(Step * line);
    case PageDown:
        return ScrollBy(page);
    default:
        return;
    }
}
