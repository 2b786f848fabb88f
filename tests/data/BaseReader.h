#pragma once

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <sqlite3.h>

/// The built configuration base.
inline const QString BasePath = QStringLiteral(KORVANELLE_BUILD_DIR "/korvanelle.cfg");
/// The folder of the plain files that it is made of.
inline const QString DataFolder = QStringLiteral(KORVANELLE_SOURCE_DIR "/data");

/// A base opened read-only with a key, by the library's own calls, so that the file is judged
/// apart from the program's record layer.
class BaseReader {
public:
    explicit BaseReader(const QString& path = BasePath, const char* key = "9C42") {
        sqlite3_open_v2(path.toUtf8().constData(), &handle_, SQLITE_OPEN_READONLY, nullptr);
        const QString format = QStringLiteral("PRAGMA key = '%1';"
                                              "PRAGMA cipher_page_size = 1024;"
                                              "PRAGMA kdf_iter = 64000;"
                                              "PRAGMA cipher_hmac_algorithm = HMAC_SHA1;"
                                              "PRAGMA cipher_kdf_algorithm = PBKDF2_HMAC_SHA1;")
                                   .arg(key);
        sqlite3_exec(handle_, format.toUtf8().constData(), nullptr, nullptr, nullptr);
    }
    ~BaseReader() { sqlite3_close(handle_); }
    BaseReader(const BaseReader&) = delete;
    BaseReader& operator=(const BaseReader&) = delete;

    /// All rows of a query, or none with Error() set.
    QList<QVariantList> Query(const QString& sql) {
        QList<QVariantList> rows;
        sqlite3_stmt* statement = nullptr;
        error_ = sqlite3_prepare_v2(handle_, sql.toUtf8().constData(), -1, &statement, nullptr);
        while (error_ == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW) {
            QVariantList row;
            for (int i = 0; i < sqlite3_column_count(statement); ++i) {
                const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, i));
                const QByteArray value(bytes, sqlite3_column_bytes(statement, i));
                const bool isText = sqlite3_column_type(statement, i) != SQLITE_BLOB;
                row += isText ? QVariant(QString::fromUtf8(value)) : QVariant(value);
            }
            rows.append(row);
        }
        sqlite3_finalize(statement);
        return rows;
    }
    /// Result code of the last query, 0 when it went well.
    int Error() const { return error_; }

private:
    sqlite3* handle_ = nullptr;
    int error_ = 0;
};

/// The words by text id, one for each language, and the languages' names.
struct LanguageTexts {
    QStringList languages;
    QMap<int, QStringList> words;
};

/// The texts of the built base, read once for the whole program.
inline const LanguageTexts& BaseTexts() {
    static const LanguageTexts texts = [] {
        LanguageTexts read;
        BaseReader base;
        for (const QVariantList& field : base.Query("PRAGMA table_info(T_Language)").mid(3))
            read.languages += field[1].toString();
        for (const QVariantList& row : base.Query("SELECT * FROM T_Language")) {
            for (const QVariant& words : row.mid(3))
                read.words[row[0].toInt()] += words.toString();
        }
        return read;
    }();
    return texts;
}
