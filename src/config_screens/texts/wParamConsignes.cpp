#include "config_screens/texts/wParamConsignes.h"

#include "core/Config.h"
#include "core/SLVfonctions.h"
#include "model/ConfigClass.h"
#include "model/SheetLines.h"
#include "platform/CodePage.h"
#include "platform/RunTimeError.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/SwipeScroll.h"
#include "screens/touch/TouchList.h"
#include "ui_wParamConsignes.h"

#include <QFile>
#include <QPointer>
#include <QTextDocument>

namespace {

constexpr int BigStep = 8;
constexpr int TextFiles = 50004;
constexpr int TextMargin = 8;
/// Of a character in UTF-8.
constexpr int MostBytes = 4;
const QString Files = QStringLiteral("Files");
const QString ImportKey = QStringLiteral("Import");

const TextTable& Table() {
    static const TextTable table{FormNames::wParamConsignes,
                                 QStringLiteral("lstConsigne"),
                                 ConfigClass::ConsigneCount,
                                 ConfigClass::ConsigneWidth,
                                 BigStep,
                                 true,
                                 &ConfigClass::Consigne,
                                 &ConfigClass::setConsigne,
                                 &FormateConsigne};
    return table;
}

/// The first bytes of a file. Throws RunTimeError `FileNotFound`, `PathAccess` or `DeviceIo`.
QByteArray HeadOf(const QString& path, int length) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw platform::RunTimeError(file.exists() ? platform::errors::PathAccess
                                                   : platform::errors::FileNotFound);
    QByteArray head = file.read(length);
    if (file.error() != QFileDevice::NoError)
        throw platform::RunTimeError(platform::errors::DeviceIo);
    return head;
}

} // namespace

QString FormateConsigne(int number, const QString& text) {
    return FormatEntry(number, text, QStringLiteral(" "));
}

wParamConsignes::wParamConsignes()
    : TextEditor(Table())
    , ui_(std::make_unique<Ui::wParamConsignes>()) {
    ui_->setupUi(this);
    ui_->txtConsigne->setReadOnly(true);
    ui_->txtConsigne->setFocusPolicy(Qt::NoFocus);
    ui_->txtConsigne->setTextInteractionFlags(Qt::NoTextInteraction);
    ui_->txtConsigne->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui_->txtConsigne->document()->setDocumentMargin(TextMargin);
    ui_->txtConsigne->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    new SwipeScroll(*ui_->txtConsigne);
    Begin();
    GiveTouchScrollBar(*ui_->txtConsigne, IsScaled() ? CurrentScreenFactors().vertical : 1, {});
}

wParamConsignes::~wParamConsignes() = default;

void wParamConsignes::ShowEntry(const QString& text) {
    ui_->txtConsigne->setPlainText(text);
}

void wParamConsignes::imgControl_Click(int index) {
    if (index == FromFile)
        Import();
    else
        TextEditor::imgControl_Click(index);
}

/// What stands in the file beyond the length of a text is left out without a word. A letter that
/// the site's file can't hold shows as it will come back from there.
void wParamConsignes::Import() {
    const QPointer<wParamConsignes> self(this);
    const QString path =
        FilePicker::Open(IniRead(Files, ImportKey, QString()), QString(), GetText(TextFiles, true));
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    const QByteArray head = HeadOf(path, MostBytes * ConfigClass::ConsigneWidth);
    const std::optional<QString> text = UnicodeText(head);
    setEntry(platform::FromCodePage(text ? platform::ToCodePage(*text) : head));
    IniWrite(Files, ImportKey, FilePicker::Folder(path));
}
