#include "screens/dialogs/dlgKeyboard.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Operator.h"
#include "platform/CodePage.h"
#include "screens/touch/CodePageLine.h"
#include "screens/touch/Interrupted.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/ResizeForm.h"
#include "ui_dlgKeyboard.h"

#include <QKeyEvent>
#include <QPushButton>
#include <QStringList>
#include <QTextBlock>
#include <limits>

using ErrorHandling::Guard;

namespace {

/// What was typed in a keyboard that an event took away, for the same question.
Interrupted interrupted;

const QString Keys = QStringLiteral("cmdKey");
const QString Ranges = QStringLiteral("cmdRange");
const QString EditKeys = QStringLiteral("cmdCtrl");
const QString Images = QStringLiteral("imgControl");

/// The empty caption is the space bar.
const QString EditCaptions = QStringLiteral("HOME,<--,-->,END,<==X,DEL,CLR,");
enum EditKey { Home, Left, Right, End, Backspace, Delete, Clear, Space };

constexpr int AsTypedBefore = 714105;

constexpr int KeyCount = 32;
constexpr int EditKeyCount = 8;
constexpr int RangeCount = 7;
constexpr int FirstBase = 64;
constexpr int TextMargin = 6;

/// Units of the grid: a key takes all of its unit but a gap on the left and above.
constexpr double Columns = 10.1;
constexpr double Rows = 5.1;
constexpr double Gap = 0.1;
constexpr double KeySize = 0.9;
constexpr double RangeWidth = 1.8;
constexpr int KeyColumns = 8;
constexpr int FirstKeyColumn = 2;

const QString LineBreak = QStringLiteral("\r\n");

QString Character(int code) {
    return platform::FromCodePage(QByteArray(1, char(code)));
}

/// The area of a key in a grid whose unit is `unit`.
QRect Cell(double column, double row, double width, const QSizeF& unit) {
    return {qRound((column + Gap) * unit.width()), qRound((row + Gap) * unit.height()),
            qRound(width * unit.width()), qRound(KeySize * unit.height())};
}

/// A text and the place in it. A line break is two characters and one step: the caret never
/// comes to rest inside it.
struct Line {
    QString text;
    int caret = 0;

    bool Is(int at, char16_t character) const {
        return at >= 0 && at < text.size() && text[at] == QChar(character);
    }
    void MoveLeft() {
        if (caret > 0 && Is(--caret, u'\n') && caret > 0)
            --caret;
    }
    void MoveRight() {
        if (caret < text.size() && Is(caret++, u'\r') && caret < text.size())
            ++caret;
    }
    void DeleteBefore() {
        const auto deleteOne = [this] {
            if (caret > 0)
                text.remove(--caret, 1);
        };
        deleteOne();
        if (Is(caret - 1, u'\r'))
            deleteOne();
    }
    void DeleteAfter() { text.remove(caret, Is(caret, u'\r') && Is(caret + 1, u'\n') ? 2 : 1); }
};

/// Position in a document, in which a line break is one character, and in the text.
int TextPosition(const QTextDocument& document, int position) {
    return position + document.findBlock(position).blockNumber();
}
int DocumentPosition(const QString& text, int position) {
    return position - int(text.left(position).count(u'\n'));
}

/// The head of a text, without half a line break at its end.
QString Head(const QString& text, int length) {
    QString head = text.left(length);
    if (head.size() < text.size() && head.endsWith(u'\r') && text[head.size()] == u'\n')
        head.chop(1);
    return head;
}

} // namespace

dlgKeyboard::dlgKeyboard()
    : ScreenForm(FormNames::dlgKeyboard, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgKeyboard>()) {
    ui_->setupUi(this);
    MakeKeys();
    Prepare();
    LayoutKeys();
    ui_->txtValue_0->setTextMargins(TextMargin, 0, TextMargin, 0);
    ui_->txtValue_0->setValidator(new CodePageLine(this));
    setMaxLength(0);
    rangeBase_ = FirstBase;
    KeyRename();
    for (QWidget* watched : {static_cast<QWidget*>(ui_->txtValue_0),
                             static_cast<QWidget*>(ui_->txtValue_1), ui_->picKeyboard})
        watched->installEventFilter(this);
    connect(ui_->txtValue_1, &QPlainTextEdit::textChanged, this,
            [this] { Guard("dlgKeyboard.txtValue_Change", [this] { LimitText(); }); });
    OnClick(Keys, [this](int index) { Key_Click(index); });
    OnClick(Ranges, [this](int index) { Range_Click(index); });
    OnClick(EditKeys, [this](int index) { Ctrl_Click(index); });
    OnClick(Images, [this](int index) { Control_Click(index); });
    OnClick(ui_->imgCRLF, [this] { Insert(LineBreak); });
}

dlgKeyboard::~dlgKeyboard() = default;

/// The other keys look like the first of their kind.
void dlgKeyboard::MakeKeys() {
    const auto makeMore = [this](const QString& array, int count) {
        const auto* first = Control<QPushButton>(array, 0);
        for (int i = 1; i < count; ++i) {
            auto* key = new QPushButton(ui_->picKeyboard);
            key->setObjectName(array + u'_' + QString::number(i));
            key->setFont(first->font());
            key->setFocusPolicy(first->focusPolicy());
            key->setVisible(true);
        }
    };
    makeMore(Keys, KeyCount);
    makeMore(EditKeys, EditKeyCount);
}

void dlgKeyboard::KeyRename() {
    for (int i = 0; i < KeyCount; ++i) {
        const QString character = Character(rangeBase_ + i);
        // The page has a few codes without a character: nothing to see and nothing to type.
        const bool isFree = character[0].category() == QChar::Other_Control;
        auto* key = Control<QPushButton>(Keys, i);
        key->setEnabled(!isFree);
        // A single mark would make the next character an access key.
        key->setText(isFree                            ? QString()
                     : character == QLatin1String("&") ? QStringLiteral("&&")
                                                       : character);
    }
    const QStringList captions = EditCaptions.split(u',');
    for (int i = 0; i < EditKeyCount; ++i)
        Control<QPushButton>(EditKeys, i)->setText(captions[i]);
}

void dlgKeyboard::LayoutKeys() {
    const QSizeF inner = ui_->picKeyboard->size();
    const double column = inner.width() / Columns;
    const QSizeF range(column, inner.height() / (RangeCount + Gap));
    for (int i = 0; i < RangeCount; ++i)
        Control(Ranges, i)->setGeometry(Cell(0, i, RangeWidth, range));
    const QSizeF key(column, inner.height() / Rows);
    const auto place = [&](const QString& array, int index, int row) {
        const int at = (index % KeyColumns) + FirstKeyColumn;
        Control(array, index)->setGeometry(Cell(at, row, KeySize, key));
    };
    for (int i = 0; i < KeyCount; ++i)
        place(Keys, i, i / KeyColumns);
    for (int i = 0; i < EditKeyCount; ++i)
        place(EditKeys, i, KeyCount / KeyColumns);
}

void dlgKeyboard::resizeEvent(QResizeEvent* event) {
    ScreenForm::resizeEvent(event);
    QWidget* keyboard = ui_->picKeyboard;
    const int margin = keyboard->x();
    keyboard->setGeometry(margin, keyboard->y(), width() - 2 * margin,
                          FormHeight() - keyboard->y() - margin);
}

void dlgKeyboard::setTitle(const QString& title) {
    SetCaption(ui_->lblTitle, title);
}

QWidget* dlgKeyboard::Box() const {
    return multiLine_ ? static_cast<QWidget*>(ui_->txtValue_1) : ui_->txtValue_0;
}

QString dlgKeyboard::Text() const {
    return multiLine_ ? ui_->txtValue_1->toPlainText().replace(u'\n', LineBreak)
                      : ui_->txtValue_0->text();
}

void dlgKeyboard::setText(const QString& text) {
    Write(text, int(text.size()));
}

void dlgKeyboard::setMaxLength(int length) {
    maxLength_ = length > 0 ? length : std::numeric_limits<qint16>::max();
    ui_->txtValue_0->setMaxLength(maxLength_);
    LimitText();
}

void dlgKeyboard::setMultiLine(bool on) {
    if (multiLine_ == on)
        return;
    const QString text = Text();
    multiLine_ = on;
    // The higher box takes the place of both.
    ui_->txtValue_1->setGeometry(ui_->txtValue_0->geometry().united(ui_->txtValue_1->geometry()));
    ui_->txtValue_0->setVisible(!on);
    ui_->txtValue_1->setVisible(on);
    ui_->imgCRLF->setVisible(on);
    setText(text);
}

int dlgKeyboard::Caret() const {
    if (multiLine_) {
        const QPlainTextEdit* box = ui_->txtValue_1;
        return TextPosition(*box->document(), box->textCursor().selectionStart());
    }
    const QLineEdit* box = ui_->txtValue_0;
    return box->hasSelectedText() ? box->selectionStart() : box->cursorPosition();
}

void dlgKeyboard::Write(const QString& text, int caret) {
    if (!multiLine_) {
        ui_->txtValue_0->setText(text);
        ui_->txtValue_0->setCursorPosition(caret);
        return;
    }
    QPlainTextEdit* box = ui_->txtValue_1;
    if (Text() != text)
        box->setPlainText(Head(text, maxLength_));
    QTextCursor cursor = box->textCursor();
    cursor.setPosition(qMin(DocumentPosition(text, caret), box->document()->characterCount() - 1));
    box->setTextCursor(cursor);
    box->ensureCursorVisible();
}

/// A text typed or pasted from a real keyboard may be too long, or have letters that no file keeps:
/// what doesn't fit goes.
void dlgKeyboard::LimitText() {
    if (!multiLine_)
        return;
    QString text = Text();
    int caret = Caret();
    CodePageLine().validate(text, caret);
    text = Head(text, maxLength_);
    if (text != Text())
        Write(text, caret);
}

/// A full box takes nothing more, as when a real keyboard types.
void dlgKeyboard::Insert(const QString& characters) {
    Line line{Text(), Caret()};
    if (line.text.size() + characters.size() <= maxLength_) {
        line.text.insert(line.caret, characters);
        Write(line.text, line.caret + int(characters.size()));
    }
    Box()->setFocus();
}

void dlgKeyboard::Key_Click(int index) {
    Insert(Character(rangeBase_ + index));
}

void dlgKeyboard::Range_Click(int index) {
    rangeBase_ = (index + 1) * KeyCount;
    KeyRename();
    Box()->setFocus();
}

void dlgKeyboard::Ctrl_Click(int index) {
    if (index == Space) {
        Insert(QStringLiteral(" "));
        return;
    }
    Line line{Text(), Caret()};
    switch (index) {
    case Home:
        line.caret = 0;
        break;
    case Left:
        line.MoveLeft();
        break;
    case Right:
        line.MoveRight();
        break;
    case End:
        line.caret = int(line.text.size());
        break;
    case Backspace:
        line.DeleteBefore();
        break;
    case Delete:
        line.DeleteAfter();
        break;
    default:
        line = Line();
    }
    Write(line.text, line.caret);
    Box()->setFocus();
}

void dlgKeyboard::Control_Click(int index) {
    ok_ = index == Confirm;
    Hide();
}

void dlgKeyboard::Form_Activate() {
    Box()->setFocus();
}

void dlgKeyboard::Form_Unload() {
    if (isVisible() && takenAway_)
        takenAway_(Text());
}

bool dlgKeyboard::HandleKey(const QKeyEvent& event) {
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (!enter && event.key() != Qt::Key_Escape)
        return false;
    // The release and the repeats of a key that is held belong to the same press.
    const Operator::Acting acting;
    if (event.type() == QEvent::KeyPress && !event.isAutoRepeat())
        Guard("dlgKeyboard.txtValue_KeyPress", [&] { Control_Click(enter ? Confirm : Cancel); });
    return true;
}

void dlgKeyboard::keyPressEvent(QKeyEvent* event) {
    if (!HandleKey(*event))
        ScreenForm::keyPressEvent(event);
}

bool dlgKeyboard::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && watched == ui_->picKeyboard)
        LayoutKeys();
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (isKey && watched == Box() && HandleKey(*static_cast<QKeyEvent*>(event)))
        return true;
    return ScreenForm::eventFilter(watched, event);
}

std::optional<QString> AskText(const QString& title, const QString& present, int maxLength,
                               bool multiLine) {
    const QStringList question{title, present, QString::number(maxLength)};
    const auto prepare = [&](dlgKeyboard& keyboard) {
        keyboard.setMultiLine(multiLine);
        keyboard.setMaxLength(maxLength);
        const std::optional<QString> typed = interrupted.Take(question);
        keyboard.setTitle(typed ? title + QStringLiteral(" - ") + GetText(AsTypedBefore) : title);
        keyboard.setText(typed.value_or(present));
        keyboard.WhenTakenAway(
            [question](const QString& text) { interrupted.Keep(question, text); });
    };
    return RunDialog(new dlgKeyboard, prepare,
                     [](const dlgKeyboard& keyboard) {
                         return keyboard.Ok() ? std::make_optional(keyboard.Text()) : std::nullopt;
                     })
        .value_or(std::nullopt);
}
