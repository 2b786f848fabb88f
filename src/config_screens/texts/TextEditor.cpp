#include "config_screens/texts/TextEditor.h"

#include "core/ErrorHandling.h"
#include "model/CurrentConfig.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/NumberedList.h"
#include "screens/touch/Position.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/ValueLabel.h"

#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QRegularExpression>
#include <map>

using ErrorHandling::Guard;

namespace {

const QString Images = QStringLiteral("imgControl");
/// Characters of a text that a line of the list takes.
constexpr int HeadLength = 64;

/// Edits that an alarm interrupted, by their form.
std::map<QString, KeptEdit<QStringList>> keptEdits;

/// A text without what fills it up to its length. Blanks ahead of it belong to it.
QString WithoutFill(QString text) {
    qsizetype length = text.size();
    while (length > 0 && (text[length - 1].isNull() || text[length - 1] == u' '))
        --length;
    text.truncate(length);
    return text;
}

QStringList TextsOf(const TextTable& table) {
    QStringList texts;
    for (int index = 1; index <= table.entries; ++index)
        texts += WithoutFill((Global::Configuration().*table.read)(index));
    return texts;
}

QString WithoutBlanks(const QString& text) {
    qsizetype start = 0;
    while (start < text.size() && text[start] == u' ')
        ++start;
    return WithoutFill(text.mid(start));
}

} // namespace

/// A break that isn't a whole pair, as files of other systems have it, makes no second line either.
QString FormatEntry(int number, const QString& text, const QString& lineBreak) {
    static const QRegularExpression breaks(QStringLiteral("\r\n|\r|\n"));
    const QString head = WithoutBlanks(text).left(HeadLength).replace(breaks, lineBreak);
    return QStringLiteral("%1 - %2").arg(number, 2, 10, QChar(u'0')).arg(head);
}

TextEditor::TextEditor(const TextTable& table)
    : ConfigForm(table.form)
    , table_(table)
    , texts_([&table] { return TextsOf(table); }) {}

void TextEditor::Begin() {
    Prepare();
    auto* list = findChild<QListWidget*>(table_.list);
    list_ = new NumberedList(list, findChild<ValueLabel*>(QStringLiteral("lblNumero")),
                             IsScaled() ? CurrentScreenFactors().vertical : 1, [this](int entry) {
                                 return table_.format(entry, texts_->at(entry - 1));
                             });
    // The head of a text tells entries apart.
    list->setTextElideMode(Qt::ElideRight);
    connect(list_, &NumberedList::Changed, this, [this] { Renew(); });
    OnClick(Images, [this](int index) { imgControl_Click(index); });
    auto* repeat = new HoldToRepeat(this);
    for (const int index : {OneUp, OneDown, StepUp, StepDown})
        repeat->Watch(Control(Images, index), [this, index] { imgControl_Click(index); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(findChild<QWidget*>(QStringLiteral("imgCancel")), [this] { InitListes(); });
    OnClick(findChild<QWidget*>(QStringLiteral("imgClose")),
            [this] { LeaveToMenu(int(MenuTile::Parameters)); });
    InitListes();
    if (auto kept = keptEdits[table_.form].Take(texts_.Original())) {
        *texts_ = std::move(*kept);
        ShowKept(true);
        FillList();
    }
}

QString& TextEditor::Entry() {
    return (*texts_)[list_->Number() - 1];
}

void TextEditor::setEntry(const QString& text) {
    Entry() = WithoutFill(text.left(table_.width));
    Renew();
}

void TextEditor::InitListes() {
    Guard((table_.form + QStringLiteral(".InitListes")).toLatin1().constData(), [this] {
        texts_.Reload();
        ShowKept(false);
        FillList();
    });
}

void TextEditor::FillList() {
    list_->Fill(table_.entries);
    Renew();
}

void TextEditor::Renew() {
    list_->Renew(list_->Number());
    const int position = list_->Number() - 1;
    EnableByPosition(Control(Images, OneUp), Control(Images, OneDown), position, table_.entries);
    EnableByPosition(Control(Images, StepUp), Control(Images, StepDown), position, table_.entries);
    ShowEntry(Entry());
}

void TextEditor::imgControl_Click(int index) {
    const int number = list_->Number();
    switch (index) {
    case OneUp:
        return list_->setNumber(number - 1);
    case OneDown:
        return list_->setNumber(number + 1);
    case StepUp:
        return list_->setNumber(number - table_.bigStep);
    case StepDown:
        return list_->setNumber(number + table_.bigStep);
    case Edit:
        return EditEntry();
    default:
        if (clipboard_.Act(EntryAction(index - Copy), Entry()))
            Renew();
    }
}

void TextEditor::EditEntry() {
    const QString title = findChild<QLabel*>(QStringLiteral("lblBibCons"))->text();
    const QPointer<TextEditor> self(this);
    const auto text = AskText(title + u' ' + QString::number(list_->Number()), Entry(),
                              table_.width, table_.multiLine);
    if (text && IsLoaded(self.data()))
        setEntry(*text);
}

void TextEditor::imgNavig_Click(int index) {
    switch (index) {
    case ToMenu:
        Leave();
        break;
    case Keyboard:
        EditEntry();
        break;
    case Help:
        ShowHelp();
        break;
    default:
        break;
    }
}

/// Entries with the same text keep the bytes that fill them up.
bool TextEditor::Take() {
    const QStringList before = texts_.Original();
    for (int index = 1; index <= table_.entries; ++index) {
        const QString& text = texts_->at(index - 1);
        if (text != before[index - 1])
            (Global::Configuration().*table_.write)(index, text);
    }
    SaveSite();
    return true;
}

void TextEditor::Keep() {
    keptEdits[table_.form].Keep(texts_.Original(), *texts_);
}
