#include "model/ChannelSheet.h"

#include "core/Bytes.h"
#include "model/ConfigClass.h"
#include "platform/CodePage.h"

#include <QRegularExpression>
#include <QStringConverter>
#include <QStringList>
#include <array>
#include <limits>

namespace ChannelSheet {

namespace {

enum class Kind { YesOrNo, Number, Text };

/// A setting of a channel: one row of this table for each. Numbers that lie outside of their bounds
/// are taken only if they stand there already, as a site of old may hold them.
struct Setting {
    const char* header;
    Kind kind;
    int low;
    int high;
    int (*number)(const ChannelClass& channel);
    void (*setNumber)(ChannelClass& channel, int value);
    QString (*text)(const ChannelClass& channel);
    void (*setText)(ChannelClass& channel, const QString& value);
};

template <auto Get, auto Set> constexpr Setting YesOrNo(const char* header) {
    return {header,
            Kind::YesOrNo,
            std::numeric_limits<int>::min(),
            std::numeric_limits<int>::max(),
            [](const ChannelClass& channel) { return (channel.*Get)() ? 1 : 0; },
            [](ChannelClass& channel, int value) { (channel.*Set)(value != 0); },
            nullptr,
            nullptr};
}

template <auto Get, auto Set> constexpr Setting Number(const char* header, int low, int high) {
    return {
        header,
        Kind::Number,
        low,
        high,
        [](const ChannelClass& channel) { return int((channel.*Get)()); },
        [](ChannelClass& channel, int value) { (channel.*Set)(decltype((channel.*Get)())(value)); },
        nullptr,
        nullptr};
}

template <auto Get, auto Set> constexpr Setting Text(const char* header) {
    return {header,
            Kind::Text,
            0,
            0,
            nullptr,
            nullptr,
            [](const ChannelClass& channel) { return (channel.*Get)(); },
            [](ChannelClass& channel, const QString& value) { (channel.*Set)(value); }};
}

using C = ChannelClass;
constexpr std::array<Setting, 12> Settings{
    YesOrNo<&C::ScrAlm, &C::setScrAlm>("Screen"),
    YesOrNo<&C::PrtAlm, &C::setPrtAlm>("Print"),
    Number<&C::TypeImp, &C::setTypeImp>("TypePrt", 0, 3),
    YesOrNo<&C::Klaxon, &C::setKlaxon>("Klaxon"),
    Number<&C::AlmPrio, &C::setAlmPrio>("Prio", 1, 99),
    YesOrNo<&C::Histo, &C::setHisto>("Histo"),
    Number<&C::BibNum, &C::setBibNum>("Bib", 0, ConfigClass::BiblioCount),
    Number<&C::HelpNum, &C::setHelpNum>("Help", 0, ConfigClass::ConsigneCount),
    YesOrNo<&C::React, &C::setReact>("React"),
    Number<&C::ReactTpo, &C::setReactTpo>("Tempo", 0, 8),
    Text<&C::ScreenText, &C::setScreenText>("TxtScr"),
    Text<&C::PrintText, &C::setPrintText>("TxtImp"),
};

const QString PanelHeader = QStringLiteral("Pnl");
const QString ChannelHeader = QStringLiteral("Chnl");
/// Columns ahead of the settings.
constexpr int KeyColumns = 2;

/// A number as a text file has it: a place for the sign, and a blank behind.
QString Printed(int number) {
    return (number < 0 ? QString() : QStringLiteral(" ")) + QString::number(number) + u' ';
}

QString LineOf(int panel, int number, const ChannelClass& channel) {
    QString line = Printed(panel) + u'\t' + Printed(number) + u'\t';
    for (const Setting& setting : Settings)
        line += (setting.kind == Kind::Text ? setting.text(channel)
                                            : Printed(setting.number(channel))) +
                u'\t';
    return line;
}

/// The field as it was before a spreadsheet put quotes around it. On a line that still has its
/// numbers as they were written, quotes are the text's own unless they were doubled inside.
QString Unquoted(const QString& field, bool asWritten) {
    if (field.size() < 2 || !field.startsWith(u'"') || !field.endsWith(u'"'))
        return field;
    QString inside = field.mid(1, field.size() - 2);
    QString rest = inside;
    rest.remove(QStringLiteral("\"\""));
    const bool doubled = rest.size() < inside.size();
    if (rest.contains(u'"') || (asWritten && !doubled))
        return field;
    return inside.replace(QStringLiteral("\"\""), QStringLiteral("\""));
}

QStringList FieldsOf(const QString& line) {
    static const QRegularExpression written(QStringLiteral("^ \\d+ $"));
    QStringList fields = line.split(u'\t');
    const bool asWritten = written.match(fields.first()).hasMatch();
    for (QString& field : fields)
        field = Unquoted(field, asWritten);
    return fields;
}

QString Decoded(const QByteArray& bytes, bool& wasUnicode) {
    const auto marked = QStringConverter::encodingForData(bytes);
    QStringDecoder decoder(marked.value_or(QStringConverter::Utf8));
    const QString text = decoder(bytes);
    const bool isAscii =
        std::all_of(bytes.cbegin(), bytes.cend(), [](char byte) { return quint8(byte) < 0x80; });
    wasUnicode = (marked.has_value() || !isAscii) && !decoder.hasError();
    return wasUnicode ? text : platform::FromCodePage(bytes);
}

bool ReadNumber(const QString& field, int& number) {
    bool isNumber = false;
    const double value = field.trimmed().toDouble(&isNumber);
    number = isNumber && qAbs(value) <= std::numeric_limits<qint16>::max() ? qRound(value) : 0;
    return isNumber && number == value;
}

bool IsTaken(const Setting& setting, const QString& field, const ChannelClass& channel) {
    if (setting.kind == Kind::Text)
        return platform::FitsCodePage(field);
    int number = 0;
    return ReadNumber(field, number) &&
           ((number >= setting.low && number <= setting.high) || number == setting.number(channel));
}

/// Header of the first column of a line that can't be taken; empty when all are there.
QString Take(ConfigClass& site, QStringList fields) {
    int panel = 0;
    int number = 0;
    if (!ReadNumber(fields[0], panel) || panel < 1 || panel > ConfigClass::PanelCount)
        return PanelHeader;
    if (fields.size() < KeyColumns || !ReadNumber(fields[1], number) || number < 1 ||
        number > PanelClass::MaxChannel)
        return ChannelHeader;
    ChannelClass& channel = site.Panel(panel).Channel(number);
    for (size_t i = 0; i < Settings.size(); ++i) {
        const Setting& setting = Settings[i];
        const qsizetype place = qsizetype(i) + KeyColumns;
        // Empty columns at the end of a line get lost on the way.
        if (place >= fields.size() && setting.kind == Kind::Text)
            fields += QString();
        if (place >= fields.size() || !IsTaken(setting, fields[place], channel))
            return QString::fromLatin1(setting.header);
    }
    for (size_t i = 0; i < Settings.size(); ++i) {
        const QString& field = fields[qsizetype(i) + KeyColumns];
        int value = 0;
        if (Settings[i].kind == Kind::Text)
            Settings[i].setText(channel, field);
        else if (ReadNumber(field, value))
            Settings[i].setNumber(channel, value);
    }
    return {};
}

} // namespace

QByteArray Export(const ConfigClass& site) {
    const QString lineEnd = QStringLiteral("\r\n");
    QStringList headers{PanelHeader, ChannelHeader};
    for (const Setting& setting : Settings)
        headers += QString::fromLatin1(setting.header);
    QString text = headers.join(u'\t') + lineEnd;
    for (int panel = 1; panel <= ConfigClass::PanelCount; ++panel) {
        for (int number = 1; number <= site.Panel(panel).ChannelCount(); ++number)
            text += LineOf(panel, number, site.Panel(panel).Channel(number)) + lineEnd;
    }
    return platform::ToCodePage(text);
}

Outcome Import(ConfigClass& site, const QByteArray& bytes) {
    Outcome outcome;
    const QString text = Decoded(bytes, outcome.wasUnicode);
    int line = 0;
    for (QString content : text.split(u'\n')) {
        ++line;
        if (content.endsWith(u'\r'))
            content.chop(1);
        const QStringList fields = FieldsOf(content);
        if (Bytes::Val(fields.first()) == 0)
            continue;
        outcome.badColumn = Take(site, fields);
        if (!outcome.badColumn.isEmpty()) {
            outcome.badLine = line;
            break;
        }
        ++outcome.channels;
    }
    return outcome;
}

} // namespace ChannelSheet
