#include "events/PrinterDefinition.h"

#include "platform/Folders.h"

#include <QDir>
#include <algorithm>

namespace {

const QString Extension = QStringLiteral(".prt");
const QString Styles = QStringLiteral("Styles");

} // namespace

PrinterDefinition::PrinterDefinition(const QString& path)
    : file_(path) {}

QString PrinterDefinition::PathOf(const QString& printerName) {
    return platform::ApplicationFolder() + u'/' + printerName + Extension;
}

QStringList PrinterDefinition::Names() {
    const QDir folder(platform::ApplicationFolder());
    // Names of files differ by case here: "X.PRT" would be listed and not found.
    QStringList names =
        folder.entryList({u'*' + Extension}, QDir::Files | QDir::CaseSensitive, QDir::Name);
    for (QString& name : names)
        name.chop(Extension.size());
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

QString PrinterDefinition::Sequence(const QString& code, const QString& stylesSection) const {
    const auto end = std::find_if(code.cbegin(), code.cend(),
                                  [](QChar character) { return !character.isDigit(); });
    bool isNumber = false;
    const int color = code.left(end - code.cbegin()).toInt(&isNumber);
    QString sequence = isNumber ? Color(color) : QString();
    for (const QChar letter : QStringLiteral("BIU")) {
        if (code.contains(letter))
            sequence += u' ' + file_.Read(stylesSection, letter, QString());
    }
    return sequence.trimmed();
}
