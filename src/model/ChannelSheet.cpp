#include "model/ChannelSheet.h"

#include "core/Bytes.h"
#include "model/ConfigClass.h"
#include "model/SheetLines.h"
#include "platform/CodePage.h"
#include "platform/FileReading.h"
#include "platform/FileWriting.h"
#include "platform/RunTimeError.h"

#include <array>
#include <limits>
#include <type_traits>

using platform::RunTimeError;
namespace errors = platform::errors;

namespace {

/// One setting of a channel: a number within bounds, or a text.
struct SheetColumn {
    const char* heading;
    int low;
    int high;
    int (*number)(const ChannelClass& channel);
    void (*setNumber)(ChannelClass& channel, int value);
    QString (*text)(const ChannelClass& channel);
    void (*setText)(ChannelClass& channel, const QString& value);

    bool IsText() const { return text != nullptr; }
};

template <auto Get, auto Set> constexpr SheetColumn Number(const char* heading, int low, int high) {
    using Value = std::invoke_result_t<decltype(Get), const ChannelClass&>;
    return {heading,
            low,
            high,
            [](const ChannelClass& channel) { return int((channel.*Get)()); },
            [](ChannelClass& channel, int value) { (channel.*Set)(Value(value)); },
            nullptr,
            nullptr};
}

/// 1 or 0; any number but 0 is true.
template <auto Get, auto Set> constexpr SheetColumn Flag(const char* heading) {
    SheetColumn column =
        Number<Get, Set>(heading, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    column.setNumber = [](ChannelClass& channel, int value) { (channel.*Set)(value != 0); };
    return column;
}

template <auto Get, auto Set> constexpr SheetColumn Text(const char* heading) {
    return {heading,
            0,
            0,
            nullptr,
            nullptr,
            [](const ChannelClass& channel) { return (channel.*Get)(); },
            [](ChannelClass& channel, const QString& value) { (channel.*Set)(value); }};
}

/// The panel and the channel stand in front.
constexpr const char* PanelHeading = "Pnl";
constexpr const char* ChannelHeading = "Chnl";
constexpr int AddressColumns = 2;
constexpr const char* FirstText = "TxtScr";
/// The delays of the reactivation; 0 is a channel that was never given one.
constexpr int LastDelay = 8;
constexpr int LastPrinting = 3;
const QString LineEnd = QStringLiteral("\r\n");

using C = ChannelClass;
constexpr std::array Columns = {
    Flag<&C::ScrAlm, &C::setScrAlm>("Screen"),
    Flag<&C::PrtAlm, &C::setPrtAlm>("Print"),
    Number<&C::TypeImp, &C::setTypeImp>("TypePrt", 0, LastPrinting),
    Flag<&C::Klaxon, &C::setKlaxon>("Klaxon"),
    Number<&C::AlmPrio, &C::setAlmPrio>("Prio", 1, ConfigClass::MaxPriority),
    Flag<&C::Histo, &C::setHisto>("Histo"),
    Number<&C::BibNum, &C::setBibNum>("Bib", 0, ConfigClass::BiblioCount),
    Number<&C::HelpNum, &C::setHelpNum>("Help", 0, ConfigClass::ConsigneCount),
    Flag<&C::React, &C::setReact>("React"),
    Number<&C::ReactTpo, &C::setReactTpo>("Tempo", 0, LastDelay),
    Text<&C::ScreenText, &C::setScreenText>(FirstText),
    Text<&C::PrintText, &C::setPrintText>("TxtImp"),
};
constexpr int ColumnCount = AddressColumns + int(Columns.size());

/// A number as the print statement of a text file writes it.
QString PrintForm(int number) {
    return (number < 0 ? QString::number(number) : u' ' + QString::number(number)) + u' ';
}

/// A whole number, which a spreadsheet may give decimals.
bool ReadNumber(const QString& field, int& number) {
    bool isNumber = false;
    const double value = field.trimmed().toDouble(&isNumber);
    isNumber = isNumber && value >= std::numeric_limits<int>::min() &&
               value <= std::numeric_limits<int>::max();
    number = isNumber ? int(value) : 0;
    return isNumber && number == value;
}

QString Headings() {
    QStringList headings{QLatin1String(PanelHeading), QLatin1String(ChannelHeading)};
    for (const SheetColumn& column : Columns)
        headings += QLatin1String(column.heading);
    return headings.join(u'\t');
}

QStringList FieldsOf(int panel, int number, const ChannelClass& channel) {
    QStringList fields{PrintForm(panel), PrintForm(number)};
    for (const SheetColumn& column : Columns)
        fields += column.IsText() ? column.text(channel) : PrintForm(column.number(channel));
    return fields;
}

} // namespace

ChannelSheetExport::ChannelSheetExport(const ConfigClass& site) {
    QList<QStringList> lines;
    QString sheet = Headings() + LineEnd;
    for (int panel = 1; panel <= ConfigClass::PanelCount; ++panel) {
        for (int number = 1; number <= site.Panel(panel).ChannelCount(); ++number) {
            lines += FieldsOf(panel, number, site.Panel(panel).Channel(number));
            sheet += lines.last().join(u'\t') + u'\t' + LineEnd;
        }
    }
    bytes_ = platform::ToCodePage(sheet);
    lines_ = int(lines.size());
    SheetLines back(bytes_, ColumnCount);
    for (const QStringList& line : lines) {
        if (!back.Next() || back.Fields() != line) {
            lostPanel_ = Bytes::ShortVal(line[0]);
            lostChannel_ = Bytes::ShortVal(line[1]);
            return;
        }
    }
}

void ChannelSheetExport::Write(const QString& path) const {
    platform::ReplaceFile(path, bytes_);
}

void ChannelSheetImport::Read(const QString& path) {
    Take(platform::ReadFile(path));
}

void ChannelSheetImport::Take(const QByteArray& bytes) {
    SheetLines lines(bytes, ColumnCount);
    unicode_ = lines.IsUnicode();
    while (lines.Next()) {
        line_ = lines.Number();
        if (lines.IsAsWritten() && lines.Fields().size() > ColumnCount)
            Refuse(QLatin1String(FirstText), errors::Subscript);
        TakeLine(lines.Fields());
        ++lines_;
    }
}

/// Looks at the whole line ahead of the first setting: a bad line changes nothing.
void ChannelSheetImport::TakeLine(const QStringList& fields) {
    const int panel = Address(fields, 0, ConfigClass::PanelCount);
    const int number = Address(fields, 1, PanelClass::MaxChannel);
    ChannelClass& channel = site_.Panel(panel).Channel(number);
    std::array<int, Columns.size()> numbers{};
    bool differs = false;
    for (size_t i = 0; i < Columns.size(); ++i) {
        const SheetColumn& column = Columns[i];
        const QString heading = QLatin1String(column.heading);
        const qsizetype place = AddressColumns + qsizetype(i);
        if (column.IsText()) {
            // Tabs at a line's end get lost easily, and with them the empty texts before them.
            const QString text = fields.value(place);
            if (!platform::FitsCodePage(text))
                Refuse(heading, errors::InvalidPropertyValue);
            differs = differs || text != column.text(channel);
            continue;
        }
        if (place >= fields.size())
            Refuse(heading, errors::Subscript);
        if (!ReadNumber(fields[place], numbers[i]))
            Refuse(heading, errors::TypeMismatch);
        const int present = column.number(channel);
        // What a site file has brought in goes out and comes back, wherever it lies.
        if ((numbers[i] < column.low || numbers[i] > column.high) && numbers[i] != present)
            Refuse(heading, errors::InvalidPropertyValue);
        differs = differs || numbers[i] != present;
    }
    for (size_t i = 0; i < Columns.size(); ++i) {
        if (Columns[i].IsText())
            Columns[i].setText(channel, fields.value(AddressColumns + qsizetype(i)));
        else
            Columns[i].setNumber(channel, numbers[i]);
    }
    if (differs)
        changed_ += panel * (PanelClass::MaxChannel + 1) + number;
}

int ChannelSheetImport::Address(const QStringList& fields, int column, int count) {
    const QString heading = QLatin1String(column == 0 ? PanelHeading : ChannelHeading);
    if (column >= fields.size())
        Refuse(heading, errors::Subscript);
    int number = 0;
    if (!ReadNumber(fields[column], number))
        Refuse(heading, errors::TypeMismatch);
    if (number < 1 || number > count)
        Refuse(heading, errors::Subscript);
    return number;
}

void ChannelSheetImport::Refuse(const QString& column, int error) {
    badLine_ = line_;
    badColumn_ = column;
    throw RunTimeError(error);
}
