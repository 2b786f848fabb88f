#include "BaseFile.h"

#include <QFile>
#include <filesystem>
#include <sqlite3.h>

namespace mkbase {

namespace {

// The key and the file format that the program opens the base with: SQLCipher's format 3, each
// parameter by itself, as the defaults differ from version to version of the library. A version
// that knows only this format ignores the two algorithm names.
constexpr const char* Format = "PRAGMA key = '9C42';"
                               "PRAGMA cipher_page_size = 1024;"
                               "PRAGMA kdf_iter = 64000;"
                               "PRAGMA cipher_hmac_algorithm = HMAC_SHA1;"
                               "PRAGMA cipher_kdf_algorithm = PBKDF2_HMAC_SHA1;"
                               "PRAGMA journal_mode = MEMORY;";

QString Quoted(QString name) {
    return u'"' + name.replace(u'"', QLatin1String("\"\"")) + u'"';
}

class Database {
public:
    explicit Database(const QString& path)
        : path_(path) {
        Check(sqlite3_open(path.toUtf8().constData(), &handle_));
    }
    ~Database() { sqlite3_close(handle_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void Execute(const QString& sql) {
        Check(sqlite3_exec(handle_, sql.toUtf8().constData(), nullptr, nullptr, nullptr));
    }

    void Check(int result) const {
        if (result != SQLITE_OK && result != SQLITE_DONE) {
            throw BuildError(
                QStringLiteral("%1: %2").arg(path_, QString::fromUtf8(sqlite3_errmsg(handle_))));
        }
    }

    sqlite3* Handle() const { return handle_; }

private:
    QString path_;
    sqlite3* handle_ = nullptr;
};

/// An insertion into one table, run once for each row.
class Insertion {
public:
    Insertion(Database& database, const QString& table, qsizetype columns)
        : database_(database) {
        const QStringList marks(columns, QStringLiteral("?"));
        const QString sql =
            QStringLiteral("INSERT INTO %1 VALUES (%2)").arg(table, marks.join(u','));
        database.Check(sqlite3_prepare_v2(database.Handle(), sql.toUtf8().constData(), -1,
                                          &statement_, nullptr));
    }
    ~Insertion() { sqlite3_finalize(statement_); }
    Insertion(const Insertion&) = delete;
    Insertion& operator=(const Insertion&) = delete;

    void Number(int place, qint64 value) {
        database_.Check(sqlite3_bind_int64(statement_, place, value));
    }
    void Text(int place, const QString& value) {
        const QByteArray bytes = value.toUtf8();
        database_.Check(sqlite3_bind_text(statement_, place, bytes.constData(), int(bytes.size()),
                                          SQLITE_TRANSIENT));
    }
    void Bytes(int place, const QByteArray& value) {
        database_.Check(sqlite3_bind_blob(statement_, place, value.constData(), int(value.size()),
                                          SQLITE_TRANSIENT));
    }
    void Run() {
        database_.Check(sqlite3_step(statement_));
        sqlite3_reset(statement_);
    }

private:
    Database& database_;
    sqlite3_stmt* statement_ = nullptr;
};

void WriteTexts(Database& database, const Table& texts) {
    QString columns = QStringLiteral("ID INTEGER PRIMARY KEY");
    for (const QString& name : texts.header.mid(1)) {
        columns += QStringLiteral(", %1 TEXT").arg(Quoted(name));
    }
    database.Execute(QStringLiteral("CREATE TABLE T_Language (%1)").arg(columns));
    Insertion insertion(database, QStringLiteral("T_Language"), texts.header.size());
    for (const TableRow& row : texts.rows) {
        insertion.Number(1, row.id);
        for (int i = 1; i < row.fields.size(); ++i) {
            insertion.Text(i + 1, row.fields[i]);
        }
        insertion.Run();
    }
}

void WriteConfig(Database& database, const Table& config) {
    database.Execute(QStringLiteral("CREATE TABLE T_Config (ID INTEGER PRIMARY KEY, Value TEXT)"));
    Insertion insertion(database, QStringLiteral("T_Config"), 2);
    for (const TableRow& row : config.rows) {
        insertion.Number(1, row.id);
        insertion.Text(2, row.fields[1]);
        insertion.Run();
    }
}

void WriteSounds(Database& database, const QList<Sound>& sounds) {
    database.Execute(QStringLiteral("CREATE TABLE T_Sounds (ID INTEGER PRIMARY KEY, Size INTEGER, "
                                    "Content BLOB, Extension TEXT)"));
    Insertion insertion(database, QStringLiteral("T_Sounds"), 4);
    for (const Sound& sound : sounds) {
        insertion.Number(1, sound.id);
        insertion.Number(2, sound.content.size());
        insertion.Bytes(3, sound.content);
        insertion.Text(4, QStringLiteral("wav"));
        insertion.Run();
    }
}

} // namespace

void WriteBase(const Sources& sources, const QString& path) {
    const QString workPath = path + QStringLiteral(".new");
    QFile::remove(workPath);
    try {
        Database database(workPath);
        database.Execute(QString::fromLatin1(Format));
        database.Execute(QStringLiteral("BEGIN"));
        WriteTexts(database, sources.texts);
        WriteConfig(database, sources.config);
        WriteSounds(database, sources.sounds);
        database.Execute(QStringLiteral("COMMIT"));
    } catch (const BuildError&) {
        QFile::remove(workPath);
        throw;
    }
    std::error_code error;
    std::filesystem::rename(workPath.toStdString(), path.toStdString(), error);
    if (error) {
        QFile::remove(workPath);
        throw BuildError(
            QStringLiteral("%1: %2").arg(path, QString::fromStdString(error.message())));
    }
}

} // namespace mkbase
