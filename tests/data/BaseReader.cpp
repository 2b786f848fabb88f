#include "BaseReader.h"

#include <sqlite3.h>

namespace base_test {

QString BasePath() {
    return QStringLiteral(KORVANELLE_BUILD_DIR "/korvanelle.cfg");
}

QString DataFolder() {
    return QStringLiteral(KORVANELLE_SOURCE_DIR "/data");
}

BaseReader::BaseReader(const QString& path, const QString& key) {
    sqlite3_open_v2(path.toUtf8().constData(), &handle_, SQLITE_OPEN_READONLY, nullptr);
    const QString format = QStringLiteral("PRAGMA key = '%1';"
                                          "PRAGMA cipher_page_size = 1024;"
                                          "PRAGMA kdf_iter = 64000;"
                                          "PRAGMA cipher_hmac_algorithm = HMAC_SHA1;"
                                          "PRAGMA cipher_kdf_algorithm = PBKDF2_HMAC_SHA1;")
                               .arg(key);
    sqlite3_exec(handle_, format.toUtf8().constData(), nullptr, nullptr, nullptr);
}

BaseReader::~BaseReader() {
    sqlite3_close(handle_);
}

QList<QVariantList> BaseReader::Query(const QString& sql) {
    QList<QVariantList> rows;
    sqlite3_stmt* statement = nullptr;
    error_ = sqlite3_prepare_v2(handle_, sql.toUtf8().constData(), -1, &statement, nullptr);
    while (error_ == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW) {
        QVariantList row;
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, i));
            const QByteArray value(bytes, sqlite3_column_bytes(statement, i));
            switch (sqlite3_column_type(statement, i)) {
            case SQLITE_INTEGER:
                row.append(qint64(sqlite3_column_int64(statement, i)));
                break;
            case SQLITE_BLOB:
                row.append(value);
                break;
            default:
                row.append(QString::fromUtf8(value));
                break;
            }
        }
        rows.append(row);
    }
    sqlite3_finalize(statement);
    return rows;
}

const Texts& BaseTexts() {
    static const Texts texts = [] {
        Texts read;
        BaseReader base(BasePath());
        for (const QVariantList& field :
             base.Query(QStringLiteral("PRAGMA table_info(T_Language)"))) {
            read.languages.append(field[1].toString());
        }
        read.languages = read.languages.mid(3);
        for (const QVariantList& row : base.Query(QStringLiteral("SELECT * FROM T_Language"))) {
            for (const QVariant& words : row.mid(3)) {
                read.words[row[0].toInt()].append(words.toString());
            }
        }
        return read;
    }();
    return texts;
}

} // namespace base_test
