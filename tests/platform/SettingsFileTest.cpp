#include "platform/SettingsFile.h"

#include "platform/TestFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

using namespace platform;

namespace {

class SettingsFileTest : public ::testing::Test {
protected:
    QTemporaryDir folder_;
    QString path_ = folder_.filePath(Text("panel.ini"));
};

const QString Section = Text("General");
const QString Key = Text("Key");

} // namespace

TEST_F(SettingsFileTest, ChangesOnlyTheLineThatChanges) {
    const QByteArray head = "\xEF\xBB\xBF; head \xE9\r\nstray=1\r\n[general]\n# note\r\n"
                            "no key here\r\nKEY =  ";
    const QByteArray middle = "\r\n\r\n; about the next\r\n[Next]\r\na=b=c\r\n";
    PutBytes(path_, head + "old\r\nkey=second" + middle + "last");
    {
        SettingsFile settings(path_);
        EXPECT_EQ(settings.Read(Section, Key, QString()), Text("old"));
        EXPECT_EQ(settings.Read(Text("NEXT"), Text("A"), QString()), Text("b=c"));
        EXPECT_EQ(settings.Read(Section, Text("stray"), Text("none")), Text("none"));
        EXPECT_EQ(settings.Keys(Section), TextList({"KEY"}));
        settings.Write(Section, Key, Text("new \u00FC"));
        settings.Write(Section, Text("More"), Text("1"));
        settings.Write(Text("Next"), Text("z"), Text("2"));
        settings.Write(Text("Third"), Text("k"), Text("3"));
    }
    EXPECT_EQ(BytesOf(path_), head + "new \xFC\r\nkey=second\r\nMore=1" + middle +
                                  "z=2\r\nlast\r\n\r\n[Third]\r\nk=3\r\n");
}

TEST_F(SettingsFileTest, DeletesKeysAndSectionsButNoForeignLine) {
    PutBytes(path_, "[A]\nx=1\n; mine\nX=2\n\n[B]\ny=1\n[a]\nz=3\n[]\nn=0");
    SettingsFile settings(path_);
    EXPECT_EQ(settings.Read(QString(), Text("n"), QString()), Text("0"));
    settings.DeleteKey(Text("A"), Text("x"));
    EXPECT_EQ(BytesOf(path_), "[A]\n; mine\n\n[B]\ny=1\n[a]\nz=3\n[]\nn=0");
    settings.DeleteSection(Text("A"));
    EXPECT_EQ(BytesOf(path_), "; mine\n[B]\ny=1\n[]\nn=0");
    EXPECT_TRUE(settings.Keys(Text("A")).isEmpty());
}

TEST_F(SettingsFileTest, ValueComesBackAsItWasWritten) {
    QStringList values = TextList({"", "  x ", "\t", "\"", "\"\"", "\"a\"", "a\"", "'a'", "=;#[x]",
                                   "a=b", "\u00A0", "\x0B\x01", "\u20AC"});
    values += {QString(3, QChar(0)), QString(1 << 20, QLatin1Char('v'))};
    for (const QString& value : std::as_const(values)) {
        {
            SettingsFile settings(path_);
            settings.Write(Section, Key, Text("before"));
            settings.Write(Section, Key, value);
            EXPECT_EQ(settings.Read(Section, Key, Text("gone")), value);
        }
        EXPECT_EQ(SettingsFile(path_).Read(Section, Key, Text("gone")), value);
    }
    SettingsFile settings(path_);
    settings.Write(Section, Key, Text("two\r\nlines\n"));
    EXPECT_EQ(SettingsFile(path_).Read(Section, Key, QString()), Text("two lines "));
    EXPECT_EQ(settings.Keys(Section).size(), 1);
}

TEST_F(SettingsFileTest, SurvivesAnyBytes) {
    std::mt19937 random(20240315);
    const QByteArray alphabet("\0\r\n\n[]]=;# \tab\"\xEF\xBB\xBF\xFF", 19);
    for (int round = 0; round < 400; ++round) {
        QByteArray bytes;
        for (auto left = random() % 120; left > 0; --left)
            bytes.append(alphabet[qsizetype(random() % size_t(alphabet.size()))]);
        PutBytes(path_, bytes);
        SettingsFile settings(path_);
        settings.Write(Text("Own section"), Key, Text(" v "));
        EXPECT_EQ(SettingsFile(path_).Read(Text("Own section"), Key, QString()), Text(" v "));
        EXPECT_TRUE(BytesOf(path_).startsWith(bytes)) << bytes.toHex().constData();
        settings.DeleteSection(Text("own section"));
        QByteArray rest = BytesOf(path_);
        EXPECT_TRUE(rest.startsWith(bytes)) << bytes.toHex().constData();
    }
}

TEST_F(SettingsFileTest, RefusesNamesThatNoLineCanHold) {
    SettingsFile settings(path_);
    for (const char* key : {"", "a=b", ";a", "#a", "[a", " a", "a\nb"})
        EXPECT_EQ(ErrorOf([&] { settings.Write(Section, Text(key), Text("1")); }),
                  errors::InvalidPropertyValue)
            << key;
    EXPECT_EQ(ErrorOf([&] { settings.Write(Text("a]"), Key, Text("1")); }),
              errors::InvalidPropertyValue);
    EXPECT_FALSE(QFile::exists(path_));
}

TEST_F(SettingsFileTest, WritesOnlyWhatChangedAndMakesAMissingFile) {
    SettingsFile settings(path_);
    settings.Write(Section, Key, Text("1"));
    const auto inode = [this] {
        struct stat state = {};
        stat(QFile::encodeName(path_).constData(), &state);
        return std::pair(state.st_ino, state.st_ctim.tv_nsec);
    };
    const auto before = inode();
    settings.Write(Section, Key, Text("1"));
    settings.DeleteKey(Section, Text("none"));
    EXPECT_EQ(inode(), before);
    ASSERT_TRUE(QFile::remove(path_));
    EXPECT_EQ(settings.Read(Section, Key, Text("default")), Text("default"));
    settings.Write(Section, Key, Text("1"));
    EXPECT_EQ(BytesOf(path_), "[General]\r\nKey=1\r\n");
}

TEST_F(SettingsFileTest, TakesUpWhatIsEditedByHandMeanwhile) {
    SettingsFile settings(path_);
    settings.Write(Section, Key, Text("1"));
    PutBytes(path_, "[General]\nKey=22\n; by hand\n");
    EXPECT_EQ(settings.Read(Section, Key, QString()), Text("22"));
    settings.Write(Section, Text("Other"), Text("x"));
    EXPECT_EQ(BytesOf(path_), "[General]\nKey=22\nOther=x\n; by hand\n");
    PutBytes(path_, "[General]\nKey=333\n[A]\na=1\n");
    settings.DeleteSection(Text("A"));
    EXPECT_EQ(BytesOf(path_), "[General]\nKey=333\n");
    PutBytes(path_, "[General]\nKey=4444\n");
    settings.WriteSection(Text("A"), {{Text("a"), Text("1")}});
    EXPECT_EQ(BytesOf(path_), "[General]\nKey=4444\n\n[A]\na=1\n");
}

TEST_F(SettingsFileTest, ReplacesTheFileAsAWholeThroughALinkToo) {
    const QString link = folder_.filePath(Text("link.ini"));
    PutBytes(path_, "[General]\r\nKey=1\r\n");
    ASSERT_EQ(chmod(QFile::encodeName(path_).constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(path_, link));
    PutBytes(path_ + Text(".tmp"), "half a fi");
    SettingsFile settings(link);
    EXPECT_FALSE(QFile::exists(path_ + Text(".tmp")));
    QFile old(path_);
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    settings.Write(Section, Key, Text("22"));
    EXPECT_EQ(old.readAll(), "[General]\r\nKey=1\r\n");
    EXPECT_EQ(BytesOf(path_), "[General]\r\nKey=22\r\n");
    EXPECT_EQ(QFile(path_).permissions() & QFile::ReadOther, 0);
    EXPECT_EQ(QDir(folder_.path()).entryList(QDir::Files).size(), 2);
}

// A running number is written into its place, with all else as it was, until it grows by a digit.
TEST_F(SettingsFileTest, WritesAValueOfTheSameLengthInPlace) {
    PutBytes(path_, "; top\n[General]\r\nBefore=x\nKey = 98\r\nAfter=y");
    SettingsFile settings(path_);
    for (int number = 99; number <= 101; ++number)
        settings.Write(Section, Key, QString::number(number));
    EXPECT_EQ(BytesOf(path_), "; top\n[General]\r\nBefore=x\nKey = 101\r\nAfter=y");
    PutBytes(path_, "[General]\r\nKey=555\r\n");
    settings.Write(Section, Key, Text("556"));
    EXPECT_EQ(BytesOf(path_), "[General]\r\nKey=556\r\n");
}

TEST_F(SettingsFileTest, AWholeSectionIsReplaced) {
    PutBytes(path_, "[List]\n9=nine\n; note\n\n[General]\nKey=1\n[LIST]\nx=y");
    const QString list = Text("List");
    const QByteArray rest = "; note\n[General]\nKey=1\n";
    const QByteArray section = "\n[List]\n1=\" blanks \"\n2=a=b\nK=new\n3=\xFC\n";
    SettingsFile settings(path_);
    for (const bool again : {false, true}) {
        settings.WriteSection(list, {{Text("1"), Text(" blanks ")},
                                     {Text("2"), Text("a=b")},
                                     {Text("k"), Text("old")},
                                     {Text("3"), Text("ü")},
                                     {Text("K"), Text("new")}});
        EXPECT_EQ(BytesOf(path_), rest + section) << again << " (no blank lines pile up)";
    }
    EXPECT_EQ(ErrorOf([&] {
                  settings.WriteSection(list, {{Text("a=b"), Text("1")}});
              }),
              errors::InvalidPropertyValue);
    EXPECT_EQ(settings.ReadSection(list).size(), 4);
    settings.WriteSection(list, {});
    EXPECT_EQ(BytesOf(path_).trimmed(), rest.trimmed());
}

TEST_F(SettingsFileTest, KeepsTheValueWhenTheFileCannotBeWritten) {
    PutBytes(path_, "[General]\r\nKey=1\r\n");
    SettingsFile settings(path_);
    // Stands in the way of the temporary file, for root as well.
    ASSERT_TRUE(QDir(folder_.path()).mkdir(Text("panel.ini.tmp")));
    EXPECT_EQ(ErrorOf([&] { settings.Write(Section, Key, Text("22")); }), errors::PathAccess);
    EXPECT_EQ(settings.Read(Section, Key, QString()), Text("22"));
    EXPECT_EQ(BytesOf(path_), "[General]\r\nKey=1\r\n");
    ASSERT_TRUE(QDir(folder_.path()).rmdir(Text("panel.ini.tmp")));
    settings.Write(Section, Key, Text("22"));
    EXPECT_EQ(BytesOf(path_), "[General]\r\nKey=22\r\n");

    // A folder in the file's place can't be read, and must not be replaced either. It is tried
    // again each time.
    const QString place = folder_.filePath(Text("taken.ini"));
    ASSERT_TRUE(QDir(folder_.path()).mkdir(Text("taken.ini")));
    SettingsFile taken(place);
    EXPECT_EQ(ErrorOf([&] { taken.Write(Section, Key, Text("22")); }), errors::PathAccess);
    ASSERT_TRUE(QDir(folder_.path()).rmdir(Text("taken.ini")));
    PutBytes(place, "[General]\r\nOther=1\r\n");
    taken.Write(Section, Key, Text("22"));
    EXPECT_EQ(BytesOf(place), "[General]\r\nOther=1\r\nKey=22\r\n");
}
