#include "events/PrinterDefinition.h"

#include "platform/Folders.h"

#include <QDir>
#include <QFile>
#include <algorithm>

namespace {

const QString Extension = QStringLiteral(".prt");
const QString Styles = QStringLiteral("Styles");

} // namespace

PrinterCode PrinterCode::Of(const QString& text) {
    const auto end = std::find_if(text.cbegin(), text.cend(),
                                  [](QChar character) { return !character.isDigit(); });
    bool isNumber = false;
    PrinterCode code;
    code.color = text.left(end - text.cbegin()).toInt(&isNumber);
    if (!isNumber)
        code.color = -1;
    for (const QChar letter : AllStyles) {
        if (text.contains(letter))
            code.styles += letter;
    }
    return code;
}

QString PrinterCode::Text() const {
    return (color >= 0 ? QString::number(color) : QString()) + styles;
}

PrinterDefinition::PrinterDefinition(const QString& path)
    : file_(path) {}

QString PrinterDefinition::PathOf(const QString& printerName) {
    return platform::ProgramFile(printerName + Extension);
}

bool PrinterDefinition::Exists(const QString& printerName) {
    return QFile::exists(PathOf(printerName));
}

QStringList PrinterDefinition::Names() {
    QStringList names;
    // Names of files differ by case here: "X.PRT" would be listed and not found.
    for (const QString& folder : platform::ProgramFolders())
        names += QDir(folder).entryList({u'*' + Extension}, QDir::Files | QDir::CaseSensitive);
    names.removeDuplicates();
    for (QString& name : names)
        name.chop(Extension.size());
    names.sort();
    return names;
}

QString PrinterDefinition::Init() const {
    return file_.Read(QStringLiteral("Reset"), QStringLiteral("Init"), QString());
}

QString PrinterDefinition::Color(int number) const {
    return file_.Read(QStringLiteral("Colors"), QString::number(number), QString());
}

QString PrinterDefinition::Style(QChar letter) const {
    return file_.Read(Styles, letter, QString());
}

QString PrinterDefinition::SequenceOf(const QString& code) const {
    return Sequence(code, Styles);
}

QString PrinterDefinition::EditedSequenceOf(const QString& code) const {
    return Sequence(code, QStringLiteral("Style"));
}

QString PrinterDefinition::Sequence(const QString& code, const QString& styleSection) const {
    const PrinterCode parts = PrinterCode::Of(code);
    QString sequence = parts.color >= 0 ? Color(parts.color) : QString();
    for (const QChar letter : parts.styles)
        sequence += u' ' + file_.Read(styleSection, letter, QString());
    return sequence.trimmed();
}
