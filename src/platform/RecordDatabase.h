#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace platform {

/// One row of a table, fields in the table's order: qlonglong, double, QString or QByteArray, and
/// an invalid variant for an empty field.
using Record = QList<QVariant>;

/// A table of the database with a numeric primary key in its first field.
class RecordTable {
public:
    int FieldCount() const { return int(fieldNames_.size()); }
    /// Empty outside 0 to FieldCount() - 1.
    QString FieldName(int index) const { return fieldNames_.value(index); }
    int FieldIndex(const QString& name) const { return int(fieldNames_.indexOf(name)); }

    /// The row whose key equals `key`, or an empty record. Throws RunTimeError `DeviceIo` when the
    /// base can't be read.
    Record Seek(qint64 key) const;
    /// All rows by key, read in one pass. Throws like Seek.
    QHash<qint64, Record> ReadAll() const;

private:
    friend class RecordDatabase;
    RecordTable(const QStringList& fieldNames, std::shared_ptr<sqlite3_stmt> all,
                std::shared_ptr<sqlite3_stmt> seek)
        : fieldNames_(fieldNames)
        , all_(std::move(all))
        , seek_(std::move(seek)) {}

    QStringList fieldNames_;
    std::shared_ptr<sqlite3_stmt> all_;
    std::shared_ptr<sqlite3_stmt> seek_;
};

/// A password-protected base of records, opened read-only. The file format is SQLCipher's of
/// version 3; its parameters are set one by one, so that a library of any later version opens it.
class RecordDatabase {
public:
    /// Throws RunTimeError `DatabaseOpen` when the file is missing or is no base,
    /// `DatabasePassword` when its first read fails under this password. `connect` is ";pwd=" and
    /// the password.
    RecordDatabase(const QString& path, const QString& connect);
    ~RecordDatabase();
    RecordDatabase(const RecordDatabase&) = delete;
    RecordDatabase& operator=(const RecordDatabase&) = delete;

    /// Throws RunTimeError `NoSuchField` when there is no such table.
    RecordTable OpenTable(const QString& name) const;
    /// The first row of what a query gives; an empty record for none. Throws RunTimeError
    /// `NoSuchField` for a query on what the base doesn't have, `DeviceIo` when it can't be read.
    Record Query(const QString& sql) const;

private:
    sqlite3* handle_ = nullptr;
};

} // namespace platform
