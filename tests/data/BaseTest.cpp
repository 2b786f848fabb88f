// The built file as a whole: its protection, its tables and the factory defaults.

#include "BaseReader.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

QString FieldNames(const QString& table) {
    const platform::RecordTable opened = BaseTable(table);
    QStringList names;
    for (int field = 0; field < opened.FieldCount(); ++field)
        names += opened.FieldName(field);
    return names.join(u' ');
}

TEST(ConfigBase, NothingOfItIsInClear) {
    QFile file(BasePath);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    for (const char* inClear : {"SQLite format 3", "T_Config", "Acknowledge"})
        EXPECT_FALSE(bytes.contains(inClear)) << inClear;
}

TEST(ConfigBase, TablesHaveTheFieldsTheProgramReads) {
    EXPECT_EQ(FieldNames("T_Language"), "ID Used Remark English Français Deutsch Español");
    EXPECT_EQ(FieldNames("T_Config"), "ID Value");
    EXPECT_EQ(FieldNames("T_Sounds"), "ID Size Content Extension");
    EXPECT_GT(BaseTexts().words.size(), 100);
}

TEST(ConfigBase, FactoryDefaultsAreUsable) {
    QHash<int, QString> defaults;
    for (const auto& [id, row] : BaseTable("T_Config").ReadAll().asKeyValueRange())
        defaults[int(id)] = row[1].toString();
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
