// Words, defaults and sounds out of a small base made here, the settings file and the trace, all
// in a folder of their own.

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "platform/Folders.h"
#include "support/PrintText.h"

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
        platform::OverrideApplication(folder.path(), Text("korvanelle"));
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
        const QString path = Path(Text("korvanelle.cfg"));
        ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &base), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(base, Tables, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(base);
        sqlite3_close(base);
        ASSERT_TRUE(Config::OpenConfigBase());
    }
};

TEST_F(ConfigBase, WordsInTheLanguageInUse) {
    EXPECT_EQ(GetText(10100), Text("Mirror"));
    Global::Get().language = 1;
    EXPECT_EQ(GetText(Text("10100")), Text("Miroir"));
    Global::Get().language = 3;
    EXPECT_EQ(GetText(10100), QString()) << "a word that isn't translated";
    for (const int fallback : {-1, 5, 7, 32767}) {
        Global::Get().language = qint16(fallback);
        EXPECT_EQ(GetText(10100), Text("Mirror")) << fallback;
    }
    IniWrite(Text("General"), Text("Language"), Text("2"));
    ASSERT_TRUE(Config::OpenConfigBase());
    EXPECT_EQ(GetText(10100), Text("Spiegel"));
    EXPECT_TRUE(boxes.isEmpty());
    // Just behind the last language there is no fallback: the field is asked for and isn't there.
    Global::Get().language = 4;
    EXPECT_EQ(GetText(10100), QString());
    EXPECT_EQ(GetText(4711), Text("#4711#"));
    EXPECT_EQ(boxes, QStringList{ErrorHandling::ErrorText(Text("Config.GetText"), 3265)});
}

TEST_F(ConfigBase, KeysAndBars) {
    EXPECT_EQ(GetText(20009), Text("One\r\nTwo\r\n"));
    EXPECT_EQ(GetText(Text("20009"), true), Text("One|Two|"));
    using Case = std::pair<const char*, const char*>;
    for (const auto& [key, text] :
         {Case{"", ""}, Case{"Mirror", ""}, Case{"nan", ""}, Case{"010100", "Mirror"},
          Case{"0077", "#0077#"}, Case{"-1", "#-1#"}, Case{"99999999999", "#99999999999#"}})
        EXPECT_EQ(GetText(Text(key)), Text(text)) << key;
}

TEST_F(ConfigBase, DefaultsMarksAndLanguageNames) {
    EXPECT_EQ(GetConfig(100110), Text("15"));
    EXPECT_EQ(GetConfig(100301) + GetConfig(999), QString());
    Global::ReadMarks();
    EXPECT_EQ(Global::Get().panelMark + Global::Get().channelMark, Text("PC"));
    EXPECT_EQ(Global::Get().text10100 + Global::Get().text50012, Text("Mirror#50012#"));

    QStringList names;
    for (int i = 0; !GetLanguage(i).isEmpty(); ++i)
        names.append(GetLanguage(i));
    EXPECT_EQ(names, TextList({"English", "Fran\u00E7ais", "Deutsch", "Nederlands"}));
    EXPECT_EQ(GetLanguage(-1) + GetLanguage(100), QString());
}

TEST_F(ConfigBase, SoundsAreExportedOnceToTheirPlaces) {
    Write(Text("AlarmSound2.wav"), "mine");
    Config::ExportSounds([](int place) { return place == 1 || place == 2 ? 3 : place; });
    for (const auto& [place, bytes] : {std::pair{1, "RIFF"}, {2, "mine"}, {3, "RIFF"}, {4, "\1\2"}})
        EXPECT_EQ(Bytes(Text("AlarmSound%1.wav").arg(place)), bytes) << place;
    EXPECT_FALSE(QFile::exists(Path(Text("AlarmSound5.wav"))));
    EXPECT_EQ(Config::HighestSound(), 4);
    EXPECT_EQ(Config::SoundExtension(3), Text("wav")) << "where the base doesn't say";
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(ApplicationFolder, MissingOrForeignBaseIsReported) {
    EXPECT_FALSE(Config::OpenConfigBase());
    Write(Text("korvanelle.cfg"), QByteArray(8192, 'x'));
    EXPECT_FALSE(Config::OpenConfigBase());
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_TRUE(boxes[0].contains(Text("3024")));
    EXPECT_TRUE(boxes[1].contains(Text("3031")));
    EXPECT_EQ(GetText(10100), Text("#10100#"));
    EXPECT_EQ(GetConfig(100110) + GetLanguage(0), QString());
    EXPECT_EQ(Config::Sound(1), std::nullopt);
}

TEST_F(ApplicationFolder, PortsAndTruth) {
    EXPECT_EQ(SLVfonctions::DevicePath(Text("COM3")), Text("/dev/ttyS2"));
    EXPECT_EQ(SLVfonctions::DevicePath(Text("LPT1")), Text("/dev/lp0"));
    SLVfonctions::setDevicePath(Text("COM3"), Text("/dev/ttyUSB0"));
    EXPECT_EQ(SLVfonctions::DevicePath(Text("COM3")), Text("/dev/ttyUSB0"));
    EXPECT_EQ(Bytes(Text("korvanelle.ini")), "[Ports]\r\nCOM3=/dev/ttyUSB0\r\n");

    const QString ports = Text("Ports");
    const SLVfonctions::PortSetting board{Text("/dev/ttyS1"), true};
    for (const char* value : {"/dev/ttyS1,rs485", "/dev/ttyS1 , RS485"}) {
        IniWrite(ports, Text("COM2"), Text(value));
        EXPECT_EQ(SLVfonctions::PortOf(Text("COM2")), board) << value;
    }
    SLVfonctions::setDevicePath(Text("COM2"), Text("/dev/of,485"));
    EXPECT_EQ(IniRead(ports, Text("COM2"), {}), Text("/dev/of,485,rs485"));
    SLVfonctions::setPort(Text("COM2"), {Text("/dev/of,485"), false});
    EXPECT_EQ(SLVfonctions::DevicePath(Text("COM2")), Text("/dev/of,485"));

    for (const char* text : {"1", "-1", "True", "true"})
        EXPECT_TRUE(SLVfonctions::IsTrue(Text(text))) << text;
    for (const char* text : {"", "0", "False", "no"})
        EXPECT_FALSE(SLVfonctions::IsTrue(Text(text))) << text;
}

TEST_F(ApplicationFolder, TraceOfEachDay) {
    platform::TestClock clock;
    clock.Set(2024, 3, 15, 23, 59, 58);
    Trace::OpenToday();
    Faults::Forget();
    Trace::Write(Text("first \u00E9"));
    EXPECT_EQ(Bytes(Text("Trace/20240315.log")), "first \xE9\r\n") << "committed at once";
    Trace::OpenToday();
    Trace::Write(Text("second"));
    clock.Advance(2000);
    Trace::OpenToday();
    Trace::Write(Text("third"));
    EXPECT_EQ(Bytes(Text("Trace/20240315.log")), "first \xE9\r\nsecond\r\n");
    EXPECT_EQ(Bytes(Text("Trace/20240316.log")), "third\r\n");
}

} // namespace
