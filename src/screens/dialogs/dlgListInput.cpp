#include "screens/dialogs/dlgListInput.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "platform/RunTimeError.h"
#include "screens/touch/Interrupted.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/TouchList.h"
#include "ui_dlgListInput.h"

#include <QKeyEvent>
#include <limits>

using ErrorHandling::Guard;

namespace {

/// What was chosen in a dialog that an event took away, for the same question.
Interrupted interrupted;

const QString Images = QStringLiteral("imgControl");

constexpr int TextMargin = 6;

/// Parameters of the panel editor whose value is the number of a line in one of its lists.
constexpr int LibraryParameter = 8;
constexpr int InstructionParameter = 9;

/// A bound as a 16-bit number.
int Bound(const QString& text) {
    const double value = Bytes::Val(text);
    if (value < std::numeric_limits<qint16>::min() || value > std::numeric_limits<qint16>::max())
        throw platform::RunTimeError(platform::errors::Overflow);
    return qRound(value);
}

} // namespace

dlgListInput::dlgListInput()
    : ScreenForm(FormNames::dlgListInput, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgListInput>())
    , repeat_(this) {
    ui_->setupUi(this);
    Prepare();
    MakeTouchList(*ui_->lstValue, IsScaled() ? CurrentScreenFactors().vertical : 1);
    ui_->txtValue->setTextMargins(TextMargin, 0, TextMargin, 0);
    connect(ui_->lstValue, &QListWidget::currentItemChanged, this,
            [this](const QListWidgetItem* item) {
                if (item != nullptr)
                    setValue(item->text());
            });
    connect(ui_->txtValue, &QLineEdit::textChanged, this,
            [this] { Guard("dlgListInput.txtValue_Change", [this] { Preview(); }); });
    OnClick(Images, [this](int index) { Control_Click(index); });
    for (const int index : {Up, Down})
        repeat_.Watch(Control(Images, index), [this, index] { Control_Click(index); });
}

dlgListInput::~dlgListInput() = default;

QString dlgListInput::Value() const {
    return ui_->txtValue->text();
}

void dlgListInput::setValue(const QString& value) {
    ui_->txtValue->setText(value);
    ui_->txtValue->setCursorPosition(0);
}

void dlgListInput::setValuesList(const QString& descriptor) {
    Guard("dlgListInput.ValuesList", [&] {
        ui_->lstValue->clear();
        const QStringList parts = descriptor.split(u'|');
        if (parts[0] == QLatin1String("$")) {
            AddItem(GetText(10001));
            AddItem(GetText(10002));
        } else if (parts[0] == QLatin1String("*")) {
            if (parts.size() < 3)
                throw platform::RunTimeError(platform::errors::Subscript);
            AddNumbers(parts[1], parts[2]);
        } else if (parts[0] == QLatin1String("@")) {
            for (int i = 1; i < parts.size(); ++i)
                AddItem(parts[i]);
        }
    });
}

void dlgListInput::AddNumbers(const QString& lower, const QString& upper) {
    const int last = Bound(upper);
    for (int number = Bound(lower); number <= last; ++number)
        AddItem(QString::number(number));
}

void dlgListInput::AddItem(const QString& text) {
    auto* item = new QListWidgetItem(text, ui_->lstValue);
    if (text == Value())
        ui_->lstValue->setCurrentItem(item);
}

void dlgListInput::Choose(const QString& value) {
    const auto items = ui_->lstValue->findItems(value, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (!items.isEmpty())
        ui_->lstValue->setCurrentItem(items.last());
}

void dlgListInput::Form_Unload() {
    if (isVisible() && takenAway_)
        takenAway_(Value());
}

void dlgListInput::Control_Click(int index) {
    QListWidget* list = ui_->lstValue;
    const int row = list->currentRow();
    switch (index) {
    case Up:
        if (row >= 1)
            list->setCurrentRow(row - 1);
        break;
    case Down:
        if (row < list->count() - 1)
            list->setCurrentRow(row + 1);
        break;
    case Confirm:
        ok_ = true;
        Hide();
        break;
    default:
        ok_ = false;
        UndoPreview();
        Hide();
    }
}

void dlgListInput::Form_Activate() {
    if (QListWidgetItem* item = ui_->lstValue->currentItem())
        ui_->lstValue->scrollToItem(item, QAbstractItemView::PositionAtCenter);
    setFocus();
}

void dlgListInput::keyPressEvent(QKeyEvent* event) {
    int pressed = -1;
    switch (event->key()) {
    case Qt::Key_Up:
        pressed = Up;
        break;
    case Qt::Key_Down:
        pressed = Down;
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        pressed = Confirm;
        break;
    case Qt::Key_Escape:
        pressed = Cancel;
        break;
    default:
        ScreenForm::keyPressEvent(event);
        return;
    }
    Guard("dlgListInput.Form_KeyDown", [&] { Control_Click(pressed); });
}

PreviewLists* dlgListInput::PreviewTarget(int& parameter) const {
    auto* lists = dynamic_cast<PreviewLists*>(parent_.data());
    if (lists == nullptr)
        return nullptr;
    parameter = lists->PreviewParameter();
    const bool hasList = parameter == InstructionParameter || parameter == LibraryParameter;
    return hasList && Bytes::Val(Value()) <= lists->PreviewCount(parameter) ? lists : nullptr;
}

void dlgListInput::Preview() {
    int parameter = 0;
    if (PreviewLists* lists = PreviewTarget(parameter))
        lists->setPreviewIndex(parameter, Bytes::ShortVal(Value()) - 1);
}

void dlgListInput::UndoPreview() {
    int parameter = 0;
    if (PreviewLists* lists = PreviewTarget(parameter))
        lists->setPreviewIndex(parameter, Bytes::ShortVal(lists->PreviewValue(parameter)) - 1);
}

std::optional<QString> AskValue(ScreenForm* parent, const QString& descriptor,
                                const QString& present) {
    const QString asked = parent == nullptr ? QString() : parent->Name();
    const QStringList question{asked, descriptor, present};
    const auto prepare = [&](dlgListInput& dialog) {
        dialog.setParentForm(parent);
        dialog.setValue(present);
        dialog.setValuesList(descriptor);
        if (const auto chosen = interrupted.Take(question))
            dialog.Choose(*chosen);
        dialog.WhenTakenAway(
            [question](const QString& value) { interrupted.Keep(question, value); });
    };
    return RunDialog(new dlgListInput, prepare,
                     [](const dlgListInput& dialog) {
                         return dialog.Ok() ? std::make_optional(dialog.Value()) : std::nullopt;
                     })
        .value_or(std::nullopt);
}
