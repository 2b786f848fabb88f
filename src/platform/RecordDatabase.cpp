#include "platform/RecordDatabase.h"

#include "platform/RunTimeError.h"

#include <QFile>
#include <QFileInfo>
#include <sqlite3.h>

namespace platform {

namespace {

constexpr int PageSize = 1024;
const QByteArray PlainHeader = QByteArrayLiteral("SQLite format 3");

// The cipher of the format's version 3. A library of that version doesn't know the last two
// settings and has the same values built in.
constexpr auto CipherSettings = "PRAGMA cipher_page_size = 1024;"
                                "PRAGMA kdf_iter = 64000;"
                                "PRAGMA cipher_hmac_algorithm = HMAC_SHA1;"
                                "PRAGMA cipher_kdf_algorithm = PBKDF2_HMAC_SHA1;";

// An encrypted base is whole pages of what looks like noise. Anything else would only show as a
// refused password, or, when empty, as a base without tables.
bool MayBeEncryptedBase(const QString& path) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    return file.size() > 0 && file.size() % PageSize == 0 &&
           file.read(PlainHeader.size()) != PlainHeader;
}

QByteArray PasswordOf(const QString& connect) {
    static const QLatin1String mark("pwd=");
    const auto parts = connect.split(QLatin1Char(';'));
    for (const QString& part : parts) {
        if (part.startsWith(mark, Qt::CaseInsensitive))
            return part.mid(mark.size()).toUtf8();
    }
    return {};
}

QString Quoted(QString name) {
    name.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + name + QLatin1Char('"');
}

using Statement = std::shared_ptr<sqlite3_stmt>;

Statement Prepare(sqlite3* handle, const QString& sql) {
    sqlite3_stmt* raw = nullptr;
    const QByteArray text = sql.toUtf8();
    const int result =
        sqlite3_prepare_v2(handle, text.constData(), int(text.size()), &raw, nullptr);
    return {result == SQLITE_OK ? raw : nullptr, sqlite3_finalize};
}

QVariant FieldOf(sqlite3_stmt* row, int column) {
    switch (sqlite3_column_type(row, column)) {
    case SQLITE_INTEGER:
        return qlonglong(sqlite3_column_int64(row, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(row, column);
    case SQLITE_TEXT: {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
        return QString::fromUtf8(text, sqlite3_column_bytes(row, column));
    }
    case SQLITE_BLOB: {
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
        return QByteArray(bytes, sqlite3_column_bytes(row, column));
    }
    default:
        return {};
    }
}

Record RecordOf(sqlite3_stmt* row) {
    Record record;
    const int count = sqlite3_column_count(row);
    record.reserve(count);
    for (int column = 0; column < count; ++column)
        record.append(FieldOf(row, column));
    return record;
}

} // namespace

Record RecordTable::Seek(qint64 key) const {
    sqlite3_stmt* seek = seek_.get();
    sqlite3_bind_int64(seek, 1, key);
    const int result = sqlite3_step(seek);
    Record record;
    if (result == SQLITE_ROW)
        record = RecordOf(seek);
    sqlite3_reset(seek);
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        throw RunTimeError(errors::DeviceIo);
    return record;
}

QHash<qint64, Record> RecordTable::ReadAll() const {
    QHash<qint64, Record> records;
    sqlite3_stmt* all = all_.get();
    int result = SQLITE_DONE;
    while ((result = sqlite3_step(all)) == SQLITE_ROW)
        records.insert(sqlite3_column_int64(all, 0), RecordOf(all));
    sqlite3_reset(all);
    if (result != SQLITE_DONE)
        throw RunTimeError(errors::DeviceIo);
    return records;
}

RecordDatabase::RecordDatabase(const QString& path, const QString& connect) {
    if (!MayBeEncryptedBase(path))
        throw RunTimeError(errors::DatabaseOpen);
    int result = sqlite3_open_v2(path.toUtf8().constData(), &handle_,
                                 SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
    if (result != SQLITE_OK) {
        sqlite3_close_v2(handle_);
        throw RunTimeError(errors::DatabaseOpen);
    }
    const QByteArray password = PasswordOf(connect);
    sqlite3_key(handle_, password.constData(), int(password.size()));
    sqlite3_exec(handle_, CipherSettings, nullptr, nullptr, nullptr);
    // The key is derived and tried with the first page that is read.
    result = sqlite3_exec(handle_, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) {
        sqlite3_close_v2(handle_);
        throw RunTimeError(result == SQLITE_NOTADB ? errors::DatabasePassword
                                                   : errors::DatabaseOpen);
    }
}

RecordDatabase::~RecordDatabase() {
    // Tables that are still held keep the base open until they go.
    sqlite3_close_v2(handle_);
}

RecordTable RecordDatabase::OpenTable(const QString& name) const {
    const Statement all = Prepare(handle_, QLatin1String("SELECT * FROM ") + Quoted(name));
    if (!all)
        throw RunTimeError(errors::NoSuchField);
    QStringList fieldNames;
    for (int column = 0; column < sqlite3_column_count(all.get()); ++column)
        fieldNames.append(QString::fromUtf8(sqlite3_column_name(all.get(), column)));
    const Statement seek =
        Prepare(handle_, QLatin1String("SELECT * FROM ") + Quoted(name) + QLatin1String(" WHERE ") +
                             Quoted(fieldNames.first()) + QLatin1String(" = ?"));
    if (!seek)
        throw RunTimeError(errors::DeviceIo);
    return {fieldNames, all, seek};
}

Record RecordDatabase::Query(const QString& sql) const {
    const Statement query = Prepare(handle_, sql);
    if (!query)
        throw RunTimeError(errors::NoSuchField);
    const int result = sqlite3_step(query.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        throw RunTimeError(errors::DeviceIo);
    return result == SQLITE_ROW ? RecordOf(query.get()) : Record();
}

} // namespace platform
