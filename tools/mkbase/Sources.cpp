#include "Sources.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QStringDecoder>

namespace mkbase {

namespace {

// The characters of Windows-1252 at 80 to 9F; the rest of the page is Latin-1.
const QString UpperControls = QStringLiteral("€‚ƒ„…†‡ˆ‰Š‹ŒŽ‘’“”•–—˜™š›œžŸ");

[[noreturn]] void Fail(const QString& file, int line, const QString& fault) {
    throw BuildError(QStringLiteral("%1:%2: %3").arg(file).arg(line).arg(fault));
}

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw BuildError(QStringLiteral("%1: %2").arg(path, file.errorString()));
    }
    return file.readAll();
}

bool InCodePage(QChar character) {
    const char16_t code = character.unicode();
    return (code >= 0x20 && code < 0x7F) || (code >= 0xA0 && code <= 0xFF) ||
           UpperControls.contains(character);
}

void CheckCharacters(const QString& file, int line, const QString& text) {
    for (const QChar character : text) {
        if (character != u'\t' && !InCodePage(character)) {
            Fail(file, line,
                 QStringLiteral("character U+%1 is not in Windows-1252")
                     .arg(int(character.unicode()), 4, 16, QLatin1Char('0')));
        }
    }
}

QStringList ReadLines(const QString& folder, const QString& fileName) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(ReadFile(folder + u'/' + fileName));
    if (decoder.hasError()) {
        throw BuildError(QStringLiteral("%1: not valid UTF-8").arg(fileName));
    }
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return text.split(u'\n');
}

TableRow ReadRow(const Table& table, const QString& text, int line) {
    TableRow row{line, 0, text.split(u'\t')};
    if (row.fields.size() != table.header.size()) {
        Fail(table.fileName, line,
             QStringLiteral("%1 columns instead of %2")
                 .arg(row.fields.size())
                 .arg(table.header.size()));
    }
    bool numeric = false;
    row.id = row.fields[0].toLongLong(&numeric);
    if (!numeric || row.id < 0) {
        Fail(table.fileName, line, QStringLiteral("id \"%1\" is not a number").arg(row.fields[0]));
    }
    return row;
}

// `leading` are the column names that the header must begin with; `columns` the least number.
Table ReadTable(const QString& folder, const QString& fileName, const QStringList& leading,
                qsizetype columns) {
    Table table{fileName, {}, {}};
    const QStringList lines = ReadLines(folder, fileName);
    table.header = lines.first().split(u'\t');
    if (table.header.mid(0, leading.size()) != leading || table.header.size() < columns ||
        table.header.contains(QString())) {
        Fail(fileName, 1, QStringLiteral("the header must begin %1").arg(leading.join(u' ')));
    }
    QSet<qint64> ids;
    for (int i = 0; i < lines.size(); ++i) {
        CheckCharacters(fileName, i + 1, lines[i]);
        if (i == 0 || lines[i].isEmpty()) {
            continue;
        }
        const TableRow row = ReadRow(table, lines[i], i + 1);
        if (ids.contains(row.id)) {
            Fail(fileName, i + 1, QStringLiteral("id %1 stands twice").arg(row.id));
        }
        ids.insert(row.id);
        table.rows.append(row);
    }
    return table;
}

// "$" is filled in by the program and "|" parts a text, so all languages need the same number.
void CheckWords(const Table& texts) {
    QSet<QString> languages;
    for (const QString& name : texts.header.mid(FirstLanguage)) {
        if (languages.contains(name)) {
            Fail(texts.fileName, 1, QStringLiteral("language %1 stands twice").arg(name));
        }
        languages.insert(name);
    }
    for (const TableRow& row : texts.rows) {
        const QString& model = row.fields[FirstLanguage];
        for (qsizetype i = FirstLanguage; i < row.fields.size(); ++i) {
            const QString& words = row.fields[i];
            if (words.trimmed().isEmpty()) {
                Fail(texts.fileName, row.line,
                     QStringLiteral("text %1 has no words in %2").arg(row.id).arg(texts.header[i]));
            }
            for (const QChar mark : {u'$', u'|'}) {
                if (words.count(mark) != model.count(mark)) {
                    Fail(texts.fileName, row.line,
                         QStringLiteral("text %1 has another number of \"%2\" in %3 than in %4")
                             .arg(row.id)
                             .arg(mark)
                             .arg(texts.header[i], texts.header[FirstLanguage]));
                }
            }
        }
    }
}

QList<Sound> ReadSounds(const QString& folder) {
    QList<Sound> sounds;
    QSet<qint64> ids;
    const QDir dir(folder);
    for (const QString& name : dir.entryList({QStringLiteral("*.wav")}, QDir::Files, QDir::Name)) {
        bool numeric = false;
        const qint64 id = name.chopped(4).toLongLong(&numeric);
        const QByteArray content = ReadFile(dir.filePath(name));
        if (!numeric || id < 0 || ids.contains(id)) {
            throw BuildError(QStringLiteral("%1: not named after one sound number").arg(name));
        }
        if (!content.startsWith("RIFF") || content.mid(8, 4) != "WAVE") {
            throw BuildError(QStringLiteral("%1: not a .wav file").arg(name));
        }
        ids.insert(id);
        sounds.append({id, content});
    }
    if (sounds.isEmpty()) {
        throw BuildError(QStringLiteral("%1: no sounds").arg(folder));
    }
    return sounds;
}

} // namespace

Sources ReadSources(const QString& folder) {
    const QString id = QStringLiteral("ID");
    const QString remark = QStringLiteral("Remark");
    Sources sources;
    sources.texts = ReadTable(folder, QStringLiteral("texts.tsv"),
                              {id, QStringLiteral("Used"), remark}, FirstLanguage + 1);
    CheckWords(sources.texts);
    sources.config =
        ReadTable(folder, QStringLiteral("config.tsv"), {id, QStringLiteral("Value"), remark}, 3);
    sources.sounds = ReadSounds(folder + QStringLiteral("/sounds"));
    return sources;
}

} // namespace mkbase
