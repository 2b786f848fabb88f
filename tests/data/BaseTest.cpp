// The built file as a whole: its protection, its tables and the factory defaults.

#include "BaseReader.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

QStringList FieldNames(BaseReader& base, const QString& table) {
    QStringList names;
    for (const QVariantList& row : base.Query(QStringLiteral("PRAGMA table_info(%1)").arg(table))) {
        names.append(row[1].toString());
    }
    return names;
}

TEST(ConfigBase, OpensWithItsKeyOnly) {
    const QString count = "SELECT count(*) FROM T_Language";
    BaseReader right;
    EXPECT_GT(right.Query(count).value(0).value(0).toInt(), 100);
    EXPECT_EQ(right.Error(), SQLITE_OK);
    for (const char* key : {"9C43", "9c42", ""}) {
        BaseReader wrong(BasePath, key);
        EXPECT_TRUE(wrong.Query(count).isEmpty()) << key;
        EXPECT_EQ(wrong.Error(), SQLITE_NOTADB) << key;
    }
    QFile file(BasePath);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    for (const char* inClear : {"SQLite format 3", "T_Config", "Acknowledge"})
        EXPECT_FALSE(bytes.contains(inClear)) << inClear;
}

TEST(ConfigBase, TablesHaveTheFieldsTheProgramReads) {
    BaseReader base;
    const QStringList language = FieldNames(base, "T_Language");
    EXPECT_EQ(language.join(u' '), "ID Used Remark English Français Deutsch Español");
    EXPECT_EQ(FieldNames(base, "T_Config").join(u' '), "ID Value");
    EXPECT_EQ(FieldNames(base, "T_Sounds").join(u' '), "ID Size Content Extension");
    // The help file is found by the first two letters of the language's name.
    QStringList starts;
    for (const QString& name : language.mid(3)) {
        starts.append(name.left(2).toLower());
    }
    EXPECT_EQ(starts.removeDuplicates(), 0);
}

TEST(ConfigBase, FactoryDefaultsAreUsable) {
    QHash<int, QString> defaults;
    BaseReader base;
    for (const QVariantList& row : base.Query("SELECT ID, Value FROM T_Config"))
        defaults[row[0].toInt()] = row[1].toString();
    EXPECT_EQ(defaults.value(100000, "absent"), QString()) << "the service code is not delivered";
    // What the touch keys and the fields of 16 characters allow.
    const QRegularExpression typed("^[0-9A-Z-]{1,16}$");
    for (const int id : {100001, 100002, 100011, 100012}) {
        EXPECT_TRUE(typed.match(defaults.value(id)).hasMatch()) << id;
    }
    EXPECT_NE(defaults.value(100011), defaults.value(100012));
    for (const int id : {100100, 100110, 100111}) {
        EXPECT_GT(defaults.value(id).toInt(), 0) << id;
    }
    EXPECT_LE(defaults.value(100110).toInt(), 60) << "highest choice of the inactivity time";
    const QRegularExpression mask("^000[01]{5}$");
    for (int id = 100201; id <= 100204; ++id) {
        EXPECT_TRUE(mask.match(defaults.value(id)).hasMatch()) << id;
    }
    const QRegularExpression port("^COM\\d+:(1200|2400|4800|9600|19200),[NEO],[78],[12]$");
    EXPECT_TRUE(port.match(defaults.value(100301)).hasMatch());
    EXPECT_EQ(defaults.value(100302, "absent"), QString()) << "no printer";
}

} // namespace
