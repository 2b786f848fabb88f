// Words, defaults and sounds out of a small base made here, the settings file and the trace, all
// in a folder of their own.

#include "core/Config.h"
#include "core/Faults.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "platform/Folders.h"
#include "platform/RunTimeError.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sqlite3.h>

namespace {

/// Three fields ahead of the languages, then four of them.
constexpr const char* Tables =
    "PRAGMA key = '9C42'; PRAGMA cipher_page_size = 1024; PRAGMA kdf_iter = 64000;"
    "PRAGMA cipher_hmac_algorithm = HMAC_SHA1; PRAGMA cipher_kdf_algorithm = PBKDF2_HMAC_SHA1;"
    "CREATE TABLE T_Language (Id INTEGER PRIMARY KEY, Screen TEXT, Control TEXT, English TEXT,"
    " \"Fran\u00E7ais\" TEXT, Deutsch TEXT, Nederlands TEXT);"
    "INSERT INTO T_Language VALUES (10100,'a','b','Mirror','Miroir','Spiegel',NULL);"
    "INSERT INTO T_Language VALUES (20009,'a','b','One|Two|','Un','Eins','Een');"
    "INSERT INTO T_Language VALUES (50011,'a','b','PC','MV','','');"
    "CREATE TABLE T_Config (Id INTEGER PRIMARY KEY, Note TEXT, Value TEXT);"
    "INSERT INTO T_Config VALUES (100110,'minutes',15);"
    "INSERT INTO T_Config VALUES (100201,'mask','11111');"
    "INSERT INTO T_Config VALUES (100301,'none',NULL);"
    "CREATE TABLE T_Sounds (Id INTEGER PRIMARY KEY, Size INTEGER, Content BLOB);"
    "INSERT INTO T_Sounds VALUES (3,4,x'524946460000');"
    "INSERT INTO T_Sounds VALUES (4,900,x'0102');";

class ApplicationFolder : public ::testing::Test {
protected:
    ApplicationFolder() {
        platform::OverrideApplication(folder.path(), QStringLiteral("korvanelle"));
        Messages::Install([this](const QString& text, int, bool) {
            boxes.append(text);
            return int(Messages::Ok);
        });
    }
    ~ApplicationFolder() override {
        Config::CloseConfigBase();
        Messages::Install({});
        Global::Get().language = 0;
        platform::OverrideApplication({}, {});
    }

    QString Path(const QString& name) const { return folder.filePath(name); }
    QByteArray Bytes(const QString& name) const {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void Write(const QString& name, const QByteArray& bytes) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    QTemporaryDir folder;
    QStringList boxes;
};

class ConfigBase : public ApplicationFolder {
protected:
    void SetUp() override {
        sqlite3* base = nullptr;
        const QString path = Path(QStringLiteral("korvanelle.cfg"));
        ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &base), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(base, Tables, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(base);
        sqlite3_close(base);
        ASSERT_TRUE(Config::OpenConfigBase());
    }
};

TEST_F(ConfigBase, WordsInTheLanguageInUse) {
    EXPECT_EQ(GetText(10100), QStringLiteral("Mirror"));
    Global::Get().language = 1;
    EXPECT_EQ(GetText(QStringLiteral("10100")), QStringLiteral("Miroir"));
    Global::Get().language = 3;
    EXPECT_EQ(GetText(10100), QString()) << "a word that isn't translated";
    for (const int fallback : {-1, 5, 7, 32767}) {
        Global::Get().language = qint16(fallback);
        EXPECT_EQ(GetText(10100), QStringLiteral("Mirror")) << fallback;
    }
    EXPECT_TRUE(boxes.isEmpty());
}

// Just behind the last language there is no fallback: the field is asked for and isn't there.
TEST_F(ConfigBase, LanguageJustBehindTheLastIsAnError) {
    Global::Get().language = 4;
    EXPECT_EQ(GetText(10100), QString());
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_TRUE(boxes[0].contains(QStringLiteral("3265")));
    EXPECT_TRUE(boxes[0].contains(QStringLiteral("Function : GetText")));
    EXPECT_EQ(GetText(4711), QStringLiteral("#4711#"));
    EXPECT_EQ(boxes.size(), 1);
}

TEST_F(ConfigBase, KeysAndBars) {
    EXPECT_EQ(GetText(20009), QStringLiteral("One\r\nTwo\r\n"));
    EXPECT_EQ(GetText(20009, true), QStringLiteral("One|Two|"));
    EXPECT_EQ(GetText(QStringLiteral("20009"), true), QStringLiteral("One|Two|"));
    EXPECT_EQ(GetText(QString()), QString());
    EXPECT_EQ(GetText(QStringLiteral("Mirror")), QString());
    EXPECT_EQ(GetText(QStringLiteral("010100")), QStringLiteral("Mirror"));
    EXPECT_EQ(GetText(QStringLiteral("nan")), QString());
    EXPECT_EQ(GetText(QStringLiteral("0077")), QStringLiteral("#0077#"));
    EXPECT_EQ(GetText(QStringLiteral("-1")), QStringLiteral("#-1#"));
    EXPECT_EQ(GetText(QStringLiteral("99999999999")), QStringLiteral("#99999999999#"));
}

TEST_F(ConfigBase, LanguageNamesEndBehindTheLast) {
    QStringList names;
    for (int i = 0; !GetLanguage(i).isEmpty(); ++i)
        names.append(GetLanguage(i));
    EXPECT_EQ(names, QStringList({QStringLiteral("English"), QStringLiteral("Fran\u00E7ais"),
                                  QStringLiteral("Deutsch"), QStringLiteral("Nederlands")}));
    EXPECT_EQ(GetLanguage(-1), QString());
    EXPECT_EQ(GetLanguage(100), QString());
}

TEST_F(ConfigBase, DefaultsAndMarks) {
    EXPECT_EQ(GetConfig(100110), QStringLiteral("15"));
    EXPECT_EQ(GetConfig(100201), QStringLiteral("11111"));
    EXPECT_EQ(GetConfig(100301), QString());
    EXPECT_EQ(GetConfig(999), QString());
    Global::ReadMarks();
    EXPECT_EQ(Global::Get().panelMark, QStringLiteral("P"));
    EXPECT_EQ(Global::Get().channelMark, QStringLiteral("C"));
    EXPECT_EQ(Global::Get().text10100, QStringLiteral("Mirror"));
    EXPECT_EQ(Global::Get().text50012, QStringLiteral("#50012#"));
}

TEST_F(ConfigBase, SoundsAreExportedOnceToTheirPlaces) {
    Write(QStringLiteral("AlarmSound2.wav"), "mine");
    Config::ExportSounds([](int place) { return place == 1 || place == 2 ? 3 : place; });
    EXPECT_EQ(Bytes(QStringLiteral("AlarmSound1.wav")), "RIFF");
    EXPECT_EQ(Bytes(QStringLiteral("AlarmSound2.wav")), "mine");
    EXPECT_EQ(Bytes(QStringLiteral("AlarmSound3.wav")), "RIFF");
    EXPECT_EQ(Bytes(QStringLiteral("AlarmSound4.wav")), QByteArray("\1\2"));
    EXPECT_FALSE(QFile::exists(Path(QStringLiteral("AlarmSound5.wav"))));
    EXPECT_EQ(Config::HighestSound(), 4);
    EXPECT_EQ(Config::SoundExtension(3), QStringLiteral("wav")) << "where the base doesn't say";
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(ConfigBase, LanguageComesFromTheSettings) {
    IniWrite(QStringLiteral("General"), QStringLiteral("Language"), QStringLiteral("2"));
    ASSERT_TRUE(Config::OpenConfigBase());
    EXPECT_EQ(GetText(10100), QStringLiteral("Spiegel"));
}

TEST_F(ApplicationFolder, MissingOrForeignBaseIsReported) {
    EXPECT_FALSE(Config::OpenConfigBase());
    Write(QStringLiteral("korvanelle.cfg"), QByteArray(8192, 'x'));
    EXPECT_FALSE(Config::OpenConfigBase());
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_TRUE(boxes[0].contains(QStringLiteral("3024")));
    EXPECT_TRUE(boxes[1].contains(QStringLiteral("3031")));
    EXPECT_TRUE(boxes[1].contains(QStringLiteral("OpenConfigBase")));
    EXPECT_EQ(GetText(10100), QStringLiteral("#10100#"));
    EXPECT_EQ(GetConfig(100110), QString());
    EXPECT_EQ(GetLanguage(0), QString());
    EXPECT_EQ(Config::Sound(1), std::nullopt);
}

TEST_F(ApplicationFolder, SettingsLieBesideTheExecutable) {
    const QString section = QStringLiteral("PendingCommands");
    EXPECT_EQ(IniRead(section, QStringLiteral("1"), QStringLiteral("none")),
              QStringLiteral("none"));
    EXPECT_FALSE(QFile::exists(SLVfonctions::IniFileName()));
    IniWrite(section, QStringLiteral("1"), QStringLiteral("a=b"));
    IniWrite(section, QStringLiteral("2"), QStringLiteral("c"));
    EXPECT_EQ(SLVfonctions::IniFileName(), Path(QStringLiteral("korvanelle.ini")));
    EXPECT_TRUE(QFile::exists(Path(QStringLiteral("korvanelle.ini"))));
    EXPECT_EQ(IniRead(section, QStringLiteral("1"), QString()), QStringLiteral("a=b"));
    QStringList keys{QStringLiteral("old")};
    EXPECT_EQ(IniReadKeys(keys, section), 2);
    EXPECT_EQ(keys, QStringList({QStringLiteral("1"), QStringLiteral("2")}));
    IniDeleteKey(section, QStringLiteral("1"));
    EXPECT_EQ(IniReadKeys(keys, section), 1);
    IniDeleteSection(section);
    EXPECT_EQ(IniReadKeys(keys, section), 0);

    IniWrite(section, QStringLiteral("3"), QStringLiteral("d"));
    platform::OverrideApplication(folder.path(), QStringLiteral("other"));
    EXPECT_EQ(IniRead(section, QStringLiteral("3"), QStringLiteral("none")),
              QStringLiteral("none"));
}

TEST_F(ApplicationFolder, PortsAndTruth) {
    EXPECT_EQ(SLVfonctions::DevicePath(QStringLiteral("COM3")), QStringLiteral("/dev/ttyS2"));
    EXPECT_EQ(SLVfonctions::DevicePath(QStringLiteral("LPT1")), QStringLiteral("/dev/lp0"));
    SLVfonctions::setDevicePath(QStringLiteral("COM3"), QStringLiteral("/dev/ttyUSB0"));
    EXPECT_EQ(SLVfonctions::DevicePath(QStringLiteral("COM3")), QStringLiteral("/dev/ttyUSB0"));

    const QString ports = QStringLiteral("Ports");
    for (const char* value : {"/dev/ttyS1,rs485", "/dev/ttyS1 , RS485"}) {
        IniWrite(ports, QStringLiteral("COM2"), QString::fromLatin1(value));
        const SLVfonctions::PortSetting board{QStringLiteral("/dev/ttyS1"), true};
        EXPECT_EQ(SLVfonctions::PortOf(QStringLiteral("COM2")), board) << value;
    }
    SLVfonctions::setDevicePath(QStringLiteral("COM2"), QStringLiteral("/dev/of,485"));
    EXPECT_EQ(IniRead(ports, QStringLiteral("COM2"), {}), QStringLiteral("/dev/of,485,rs485"));
    SLVfonctions::setPort(QStringLiteral("COM2"), {QStringLiteral("/dev/of,485"), false});
    EXPECT_EQ(SLVfonctions::DevicePath(QStringLiteral("COM2")), QStringLiteral("/dev/of,485"));

    for (const char* text : {"1", "-1", "True", "true"})
        EXPECT_TRUE(SLVfonctions::IsTrue(QLatin1String(text))) << text;
    for (const char* text : {"", "0", "False", "no"})
        EXPECT_FALSE(SLVfonctions::IsTrue(QLatin1String(text))) << text;
}

TEST_F(ApplicationFolder, TraceOfEachDay) {
    platform::TestClock clock;
    clock.Set(2024, 3, 15, 23, 59, 58);
    Trace::OpenToday();
    Faults::Forget();
    Trace::Write(QStringLiteral("first \u00E9"));
    EXPECT_EQ(Bytes(QStringLiteral("Trace/20240315.log")), "first \xE9\r\n") << "committed at once";
    Trace::OpenToday();
    Trace::Write(QStringLiteral("second"));
    clock.Advance(2000);
    Trace::OpenToday();
    Trace::Write(QStringLiteral("third"));
    EXPECT_EQ(Bytes(QStringLiteral("Trace/20240315.log")), "first \xE9\r\nsecond\r\n");
    EXPECT_EQ(Bytes(QStringLiteral("Trace/20240316.log")), "third\r\n");
}

TEST_F(ApplicationFolder, SystemLineHasTheColumnsOfAnEvent) {
    DateTimes::ReadLocale(QLocale::c());
    const DateTime when = DateTimes::FromDate(QDate(2024, 3, 15), QTime(12, 0, 5));
    EXPECT_EQ(Trace::SystemLine(when, QStringLiteral("SYNCHR0"), QStringLiteral("REINIT")),
              QStringLiteral("2024-03-15 12:00:05 SYNCHR         ******** SYSTEM  COMM   REINIT ") +
                  Trace::Stars(26) + u' ' + Trace::Stars(39));
    DateTimes::ReadLocale(QLocale::system());
}

TEST_F(ApplicationFolder, TraceThatCannotBeOpenedIsAnError) {
    Write(QStringLiteral("Trace"), "a file where the folder should be");
    EXPECT_THROW(Trace::OpenToday(), platform::RunTimeError);
    EXPECT_THROW(Trace::Write(QStringLiteral("x")), platform::RunTimeError);
}

} // namespace
