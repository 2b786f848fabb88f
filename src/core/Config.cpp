#include "core/Config.h"

#include "core/Bytes.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "platform/FileWriting.h"
#include "platform/Folders.h"
#include "platform/RecordDatabase.h"
#include "platform/RunTimeError.h"

#include <QFile>
#include <QHash>
#include <QStringList>
#include <cmath>

namespace Config {

using ErrorHandling::Guard;

namespace {

/// First language field of T_Language: the id and two fields for the translator stand before it.
constexpr int FirstLanguage = 3;
const QString Connect = QStringLiteral(";pwd=9C42");

QHash<int, QStringList> WordsOf(const QHash<qint64, platform::Record>& rows) {
    QHash<int, QStringList> words;
    words.reserve(rows.size());
    for (auto row = rows.cbegin(); row != rows.cend(); ++row) {
        QStringList& fields = words[int(row.key())];
        for (const QVariant& field : row.value())
            fields += field.toString();
    }
    return words;
}

struct Base {
    explicit Base(const QString& path)
        : database(path, Connect)
        , languageTable(database.OpenTable(QStringLiteral("T_Language")))
        , configTable(database.OpenTable(QStringLiteral("T_Config")))
        , words(WordsOf(languageTable.ReadAll()))
        , defaults(configTable.ReadAll()) {}

    platform::RecordDatabase database;
    platform::RecordTable languageTable;
    platform::RecordTable configTable;
    /// Opened with the first sound: a base without sounds still has its words.
    std::optional<platform::RecordTable> soundTable;
    /// The fields of each row as texts: a null is an empty one.
    QHash<int, QStringList> words;
    QHash<qint64, platform::Record> defaults;
};

std::unique_ptr<Base> base;

QVariant Field(const platform::RecordTable& table, const platform::Record& record,
               const QString& name) {
    const int index = table.FieldIndex(name);
    if (index < 0 || index >= record.size())
        throw platform::RunTimeError(platform::errors::NoSuchField);
    return record[index];
}

} // namespace

bool OpenConfigBase() {
    base.reset();
    Guard("OpenConfigBase", [] {
        base = std::make_unique<Base>(
            platform::ProgramFile(platform::ExecutableName() + QStringLiteral(".cfg")));
        Global::Get().language = Bytes::ShortVal(
            IniRead(QStringLiteral("General"), QStringLiteral("Language"), QStringLiteral("0")));
        if (!GetLanguage(Global::Get().language).isEmpty())
            return;
        Global::Get().language = 0;
        throw platform::RunTimeError(platform::errors::NoSuchField);
    });
    return base != nullptr;
}

void CloseConfigBase() {
    base.reset();
}

QString GetText(int key, bool keepBars) {
    QString text;
    Guard("Config.GetText", [&] {
        const auto found =
            base ? base->words.constFind(key) : QHash<int, QStringList>::const_iterator();
        if (!base || found == base->words.constEnd()) {
            text = u'#' + QString::number(key) + u'#';
            return;
        }
        const int language = Global::Get().language;
        int field = language + FirstLanguage;
        if (field > base->languageTable.FieldCount() || language < 0)
            field = FirstLanguage;
        if (field >= found->size())
            throw platform::RunTimeError(platform::errors::NoSuchField);
        text = found->at(field);
        if (!keepBars && text.contains(u'|'))
            text.replace(u'|', QStringLiteral("\r\n"));
    });
    return text;
}

QString GetText(const QString& key, bool keepBars) {
    bool isNumber = false;
    const double number = key.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        return {};
    // Ids are whole: nothing else can be found.
    const bool known = number == std::floor(number) && std::abs(number) <= 2147483647.0 && base &&
                       base->words.contains(int(number));
    return known ? GetText(int(number), keepBars) : u'#' + key + u'#';
}

QStringList GetTexts(int key) {
    QStringList texts = base ? base->words.value(key).mid(FirstLanguage) : QStringList();
    const int language = Global::Get().language;
    if (language > 0 && language < texts.size())
        texts.move(language, 0);
    return texts;
}

QString GetConfig(int id) {
    QString value;
    Guard("Config.GetConfig", [&] {
        if (!base)
            return;
        const auto found = base->defaults.constFind(id);
        if (found != base->defaults.constEnd())
            value = Field(base->configTable, *found, QStringLiteral("Value")).toString();
    });
    return value;
}

QString GetLanguage(int index) {
    if (!base || index < 0 || index + FirstLanguage >= base->languageTable.FieldCount())
        return {};
    return base->languageTable.FieldName(index + FirstLanguage);
}

namespace {

const platform::RecordTable& SoundTable() {
    if (!base->soundTable)
        base->soundTable = base->database.OpenTable(QStringLiteral("T_Sounds"));
    return *base->soundTable;
}

} // namespace

std::optional<QByteArray> Sound(int number) {
    std::optional<QByteArray> content;
    Guard("Config.Sound", [&] {
        if (!base)
            return;
        const platform::RecordTable& table = SoundTable();
        const platform::Record record = table.Seek(number);
        if (record.isEmpty())
            return;
        const int size = Field(table, record, QStringLiteral("Size")).toInt();
        content = Field(table, record, QStringLiteral("Content")).toByteArray().left(qMax(0, size));
    });
    return content;
}

QString SoundExtension(int number) {
    QString extension = QStringLiteral("wav");
    Guard("Config.SoundExtension", [&] {
        const int field = base ? SoundTable().FieldIndex(QStringLiteral("Extension")) : -1;
        const QString given =
            field < 0 ? QString() : SoundTable().Seek(number).value(field).toString();
        if (!given.isEmpty())
            extension = given;
    });
    return extension;
}

int HighestSound() {
    int highest = 0;
    Guard("Config.HighestSound", [&] {
        if (base)
            highest = base->database.Query(QStringLiteral("SELECT Max(ID) as MaxID from T_Sounds"))
                          .value(0)
                          .toInt();
    });
    return highest;
}

namespace {

/// Gives 0 or the error number.
int ExportSound(int place, int number) {
    const QString path = Global::InApplicationFolder(QStringLiteral("AlarmSound%1.wav").arg(place));
    if (QFile::exists(path))
        return 0;
    const std::optional<QByteArray> content = Sound(number);
    if (!content)
        return 0;
    // Whole or not at all: half a sound would stay for ever, as a file that exists isn't written
    // again.
    try {
        platform::ReplaceFile(path, *content);
    } catch (const platform::RunTimeError& error) {
        return error.Number();
    }
    return 0;
}

} // namespace

void ExportSounds(const std::function<int(int)>& soundNumber) {
    Guard("Config.ExportSounds", [&] {
        constexpr int LastPlace = 99;
        int failure = 0;
        for (int place = 0; place <= LastPlace; ++place) {
            if (const int error = ExportSound(place, soundNumber(place)))
                failure = error;
        }
        if (failure != 0)
            throw platform::RunTimeError(failure);
    });
}

qint32 BinToDec(const QString& text, bool is16Bit) {
    const int digits = is16Bit ? 16 : 32;
    const QString padded = (QString(32, u'0') + text).right(digits);
    qint32 sum = 0;
    for (int i = 1; i < digits; ++i)
        sum = sum * 2 + (padded[i] == u'0' ? 0 : 1);
    return padded[0] == u'0' ? sum : -sum;
}

} // namespace Config
