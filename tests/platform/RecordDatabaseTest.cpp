#include "platform/RecordDatabase.h"

#include "platform/TestFiles.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>
#include <sqlite3.h>

using namespace platform;

namespace {

const QString Connect = Text(";pwd=9C42");

// A base such as the panel is delivered with. An empty password makes a plain one.
void MakeBase(const QString& path, const QByteArray& password) {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &handle), SQLITE_OK);
    if (!password.isEmpty())
        sqlite3_key(handle, password.constData(), int(password.size()));
    const char* sql = "PRAGMA cipher_page_size = 1024; PRAGMA kdf_iter = 64000;"
                      "PRAGMA cipher_hmac_algorithm = HMAC_SHA1;"
                      "PRAGMA cipher_kdf_algorithm = PBKDF2_HMAC_SHA1;"
                      "CREATE TABLE \"T_Words\" (\"Id\" INTEGER PRIMARY KEY, \"Fran\xC3\xA7"
                      "ais\" TEXT, \"Content\" BLOB, \"Rate\" REAL);"
                      "INSERT INTO T_Words VALUES (7, 'd\xC3\xA9"
                      "faut|2', x'00FF00', 1.5);"
                      "INSERT INTO T_Words VALUES (5000000000, NULL, zeroblob(5000), NULL);"
                      "INSERT INTO T_Words VALUES (-1, '', x'', 2);";
    EXPECT_EQ(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(handle);
}

class RecordDatabaseTest : public ::testing::Test {
protected:
    void SetUp() override { MakeBase(path_, "9C42"); }
    int ErrorOfOpening(const QString& path, const QString& connect) {
        return ErrorOf([&] { const RecordDatabase base(path, connect); });
    }
    QTemporaryDir folder_;
    QString path_ = folder_.filePath(Text("panel.cfg"));
};

} // namespace

TEST_F(RecordDatabaseTest, FindsRowsByKey) {
    const RecordDatabase base(path_, Connect);
    const RecordTable table = base.OpenTable(Text("T_Words"));
    ASSERT_EQ(table.FieldCount(), 4);
    EXPECT_EQ(table.FieldIndex(Text("Français")), 1);
    EXPECT_EQ(table.FieldName(3), Text("Rate"));
    EXPECT_TRUE(table.FieldName(4).isEmpty());

    const Record row = table.Seek(7);
    EXPECT_EQ(row, (Record{qlonglong(7), Text("défaut|2"), QByteArray("\0\xFF\0", 3), 1.5}));
    EXPECT_TRUE(table.Seek(8).isEmpty());
    EXPECT_FALSE(table.Seek(5000000000).at(1).isValid());
    EXPECT_TRUE(table.Seek(-1).at(1).isValid());

    const auto all = table.ReadAll();
    EXPECT_EQ(all.size(), 3);
    EXPECT_EQ(all[7], row);
    EXPECT_EQ(all[5000000000][2].toByteArray().size(), 5000);
    EXPECT_EQ(table.ReadAll().size(), 3);
}

TEST_F(RecordDatabaseTest, TellsAMissingBaseFromARefusedPassword) {
    EXPECT_EQ(ErrorOfOpening(path_, Text(";pwd=9c42")), errors::DatabasePassword);
    EXPECT_EQ(ErrorOfOpening(path_, QString()), errors::DatabasePassword);
    const QString other = folder_.filePath(Text("other.cfg"));
    EXPECT_EQ(ErrorOfOpening(other, Connect), errors::DatabaseOpen);
    EXPECT_FALSE(QFile::exists(other));
    EXPECT_EQ(ErrorOfOpening(folder_.path(), Connect), errors::DatabaseOpen);
    for (const QByteArray& bytes : {QByteArray(), QByteArray("no base"), QByteArray(1000, 'x')}) {
        PutBytes(other, bytes);
        EXPECT_EQ(ErrorOfOpening(other, Connect), errors::DatabaseOpen);
    }
    QFile::remove(other);
    MakeBase(other, QByteArray());
    EXPECT_EQ(ErrorOfOpening(other, Connect), errors::DatabaseOpen);
}

TEST_F(RecordDatabaseTest, ReportsMissingTablesAndDamage) {
    {
        const RecordDatabase base(path_, Connect);
        EXPECT_EQ(ErrorOf([&] { base.OpenTable(Text("T_None")); }), errors::NoSuchField);
        EXPECT_EQ(ErrorOf([&] { base.OpenTable(Text("x\" ; --")); }), errors::NoSuchField);
    }
    QByteArray bytes = BytesOf(path_);
    ASSERT_GT(bytes.size(), 5 * 1024);
    for (qsizetype at = 1500; at < bytes.size(); at += 1024)
        bytes[at] = char(bytes[at] ^ 1);
    PutBytes(path_, bytes);
    const RecordDatabase base(path_, Connect);
    const RecordTable table = base.OpenTable(Text("T_Words"));
    EXPECT_EQ(ErrorOf([&] { table.Seek(7); }), errors::DeviceIo);
    EXPECT_EQ(ErrorOf([&] { table.ReadAll(); }), errors::DeviceIo);
}

TEST_F(RecordDatabaseTest, TablesMayOutliveTheirBaseAndReadAReadOnlyFile) {
    ASSERT_TRUE(QFile::setPermissions(path_, QFile::ReadOwner));
    auto base = std::make_unique<RecordDatabase>(path_, Connect);
    const RecordTable table = base->OpenTable(Text("t_words"));
    base.reset();
    EXPECT_EQ(table.Seek(7).value(0), QVariant(qlonglong(7)));
}
