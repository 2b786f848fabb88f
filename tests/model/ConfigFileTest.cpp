// The site file as a whole: its layout against bytes put together by hand, the results of reading
// and saving, and damaged files.

#include "model/ConfigClass.h"

#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "model/SiteBytes.h"
#include "platform/CodePage.h"
#include "platform/Folders.h"

#include <QTemporaryDir>
#include <memory>

namespace {

class ConfigFile : public ::testing::Test {
protected:
    ConfigFile() {
        Messages::Install([this](const QString& text, int, bool) {
            boxes.append(text);
            return int(Messages::Ok);
        });
    }
    ~ConfigFile() override {
        Messages::Install({});
        platform::OverrideApplication({}, {});
    }

    QString Path(const char* name = "site.kv2") const { return folder.filePath(Text(name)); }

    /// Reads bytes as a site file into a new configuration.
    qint32 Read(const QByteArray& bytes) {
        WriteFile(Path(), bytes);
        config = std::make_unique<ConfigClass>();
        return config->Read(Path());
    }

    /// Saves and gives the bytes.
    QByteArray Saved(ConfigClass& saved) {
        EXPECT_EQ(saved.Save(Path()), -1);
        return FileBytes(Path());
    }

    QTemporaryDir folder;
    QStringList boxes;
    std::unique_ptr<ConfigClass> config;
    const QByteArray tail = SiteTail();
};

/// Place of the scrambling key in a header of SiteHeader's settings.
int KeyOffset(const SiteHeader& header) {
    return int(32 + 4 + header.busSettings.size() + 4 + header.secondPrtSettings.size() + 4 + 200 +
               4);
}

TEST_F(ConfigFile, ReadsEveryField) {
    ASSERT_EQ(Read(SiteHeader().Bytes() + tail + "trailing"), 0);
    EXPECT_EQ(config->BusSettings(), Text("COM3:9600,N,8,2"));
    EXPECT_EQ(config->PrtSettings(), Text("LPT2:"));
    EXPECT_TRUE(config->AutoStart());
    EXPECT_FALSE(config->PrintBusResult());
    EXPECT_EQ(config->AlarmPrioSound(99), 7);
    EXPECT_TRUE(config->OptionScreen(4) && config->OptionKlaxon(1) && config->OptionPrinter(2) &&
                config->OptionHisto(4));
    EXPECT_FALSE(config->OptionKlaxon(2) || config->OptionPrinter(1) || config->OptionHisto(1));
    EXPECT_EQ(config->UserCount(), 2);
    EXPECT_EQ(config->UserName(2) + config->UserPwd(1), Text("CHIEF1234"));
    EXPECT_EQ(config->UserLevel(2), 2);
    EXPECT_EQ(config->PrintMaxLen(), 132);
    EXPECT_EQ(config->PrinterInitString(7) + config->PrinterInitCode(0), Text("\u001BH<27>A"));
    EXPECT_EQ(config->PrinterName(), Text("Matrix"));
    EXPECT_EQ(config->InactivityTime(), 15);
    EXPECT_EQ(config->Panel(64).Numero(), 64);
    EXPECT_EQ(config->Mirrors().Item(1).ID(), Text("03120504"));
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(ConfigFile, SavesWhatItReadByteForByte) {
    SiteHeader header;
    header.prtSettings = header.secondPrtSettings;
    ASSERT_EQ(Read(header.Bytes() + tail), 0);
    config->Panel(9).setNumero(1);
    config->setModified(true);
    WriteFile(Path("again.kv2"), QByteArray(1000000, 'x'));
    ASSERT_EQ(config->Save(Path("again.kv2")), -1);
    const QByteArray saved = FileBytes(Path("again.kv2"));
    header.key = quint8(saved[KeyOffset(header)]);
    EXPECT_EQ(saved, header.Bytes() + tail);
    EXPECT_FALSE(config->Panel(9).Modified());
    EXPECT_TRUE(config->Modified());

    // A header beyond the panels' offset has no padding.
    ConfigClass full;
    for (int i = 1; i <= 40; ++i)
        full.setUserName(i, QString(16, QChar(0xE9)));
    full.Panel(1).setTitle(Text("Hall"));
    full.setConsigne(48, QString(1024, QChar(0x20AC)));
    ASSERT_EQ(Read(Saved(full)), 0);
    EXPECT_EQ(config->Panel(1).Title(), Text("Hall"));
    EXPECT_EQ(config->Consigne(48), QString(1024, QChar(0x20AC)));
    EXPECT_EQ(config->UserCount(), 40);
}

// A text that the key turns blank at its end loses it, as in every file of this format.
TEST_F(ConfigFile, ScrambledBlanksAreLost) {
    SiteHeader header;
    header.key = 'C' ^ ' ';
    ASSERT_EQ(Read(header.Bytes() + tail), 0);
    EXPECT_EQ(config->UserName(1), Text("HIEF"));
    EXPECT_EQ(config->UserPwd(1), Text("1234"));

    // An empty setting of the bus leaves what was there, one of the printer does not.
    header = {};
    header.busSettings = "";
    header.secondPrtSettings = "";
    WriteFile(Path(), header.Bytes() + tail);
    ConfigClass read;
    read.setBusSettings(Text("COM1:4800,N,8,1"));
    ASSERT_EQ(read.Read(Path()), 0);
    EXPECT_EQ(read.BusSettings(), Text("COM1:4800,N,8,1"));
    EXPECT_EQ(read.PrtSettings(), QString());
}

// Names of one letter each leave two of all keys with which they come back.
TEST_F(ConfigFile, NoKeyThatDamagesANameIsDrawn) {
    const auto letter = [](int code) { return platform::FromCodePage(QByteArray(1, char(code))); };
    ConfigClass site;
    site.setUserCount(128);
    for (int code = 1; code < 256; ++code) {
        const QString text = code == 'K' ? Text("AA") : letter(code);
        if (code % 2 == 0)
            site.setUserName(code / 2 + 1, text);
        else
            site.setUserPwd(code / 2 + 1, text);
    }
    for (int save = 0; save < 20; ++save) {
        ASSERT_EQ(Read(Saved(site)), 0);
        for (int i = 1; i <= 128; ++i) {
            ASSERT_EQ(config->UserName(i), site.UserName(i)) << i;
            ASSERT_EQ(config->UserPwd(i), site.UserPwd(i)) << i;
        }
    }
    EXPECT_EQ(boxes, QStringList());
    site.setUserPwd(1, Text("K"));
    site.setUserName(1, letter(0) + letter(1));
    EXPECT_EQ(site.Save(Path()), -1) << "and is told when there is no other";
    EXPECT_EQ(boxes.size(), 1);
}

TEST_F(ConfigFile, SoundsOfBothRevisions) {
    SiteHeader header;
    header.sound = 120;
    ASSERT_EQ(Read(header.Bytes() + tail), 0);
    EXPECT_EQ(config->AlarmPrioSound(1), 99);
    header.revision = 23;
    ASSERT_EQ(Read(header.Bytes() + tail), 0);
    EXPECT_EQ(config->AlarmPrioSound(99), 99);
    header.revision = 22;
    header.sounds = 6;
    ASSERT_EQ(Read(header.Bytes() + tail), 0);
    EXPECT_EQ(config->AlarmPrioSound(5), 120);
    EXPECT_EQ(config->AlarmPrioSound(6), 1);
    EXPECT_EQ(config->AlarmPrioSound(99), 1);
    EXPECT_EQ(config->Panel(64).Numero(), 64);
}

TEST_F(ConfigFile, SignatureAndVersion) {
    SiteHeader header;
    header.signature = "  Korvanelle II";
    EXPECT_EQ(Read(header.Bytes() + tail), 0);
    for (const char* signature : {"Korvanelle I", "korvanelle ii", "", "Korvanelle II\t"}) {
        header.signature = signature;
        EXPECT_EQ(Read(header.Bytes() + tail), 20003) << signature;
    }
    header = {};
    using Case = std::tuple<int, int, int, int>;
    // Minor 10 sorts below minor 2, as texts do.
    for (const auto& [major, minor, revision, result] :
         {Case{2, 3, 0, 20004}, Case{3, 0, 0, 20004}, Case{2, 9, 30, 20004}, Case{2, 2, 9999, 0},
          Case{2, 1, 99, 0}, Case{2, 10, 30, 0}, Case{10, 0, 30, 0}, Case{2, 20, 30, 20004}}) {
        header.majorVersion = major;
        header.minorVersion = minor;
        header.revision = revision;
        header.sounds = revision < 23 ? 6 : 100;
        EXPECT_EQ(Read(header.Bytes() + tail), result) << major << '.' << minor << '.' << revision;
    }
}

TEST_F(ConfigFile, UnreadableFilesGiveNoReport) {
    for (const int count : {0, -1, 32767}) {
        QByteArray bytes = SiteHeader().Bytes() + tail;
        const int place = KeyOffset(SiteHeader()) + 1;
        bytes.replace(place, 2, SiteBytes().Word(count).bytes);
        EXPECT_EQ(Read(bytes), 20001) << count;
        EXPECT_EQ(config->BusSettings(), Text("COM3:9600,N,8,2")) << "what was read stays";
        EXPECT_LE(config->UserCount(), 32767);
    }
    for (const QString& path : {QString(), Path("missing.kv2"), folder.path()})
        EXPECT_EQ(config->Read(path), 20001) << path.toStdString();
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(ConfigFile, FailedSavesAreReported) {
    ConfigClass site;
    site.Panel(1).setTitle(Text("x"));
    EXPECT_EQ(site.Save(QString()), 20002);
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(site.Save(Path("no/such/folder.kv2")), 20002);
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_TRUE(boxes[0].startsWith(Text("Error Nr 76 : ")));
    EXPECT_TRUE(site.Panel(1).Modified()) << "nothing was saved";
    EXPECT_EQ(site.Save(Text("/dev/full")), 20002);
    EXPECT_TRUE(boxes.last().startsWith(Text("Error Nr 61 : ")));

    // What stood there before stays, and so do its rights and a link to it.
    const auto rights = QFile::ReadOwner | QFile::ReadUser | QFile::WriteOwner | QFile::WriteUser;
    ASSERT_TRUE(QFile::link(Path("target.kv2"), Path()));
    const QByteArray former = Saved(site);
    EXPECT_FALSE(site.Panel(1).Modified());
    EXPECT_TRUE(QFileInfo(Path()).isSymLink());
    ASSERT_TRUE(QFile::setPermissions(Path("target.kv2"), rights));
    EXPECT_EQ(site.Save(Path()), -1);
    EXPECT_EQ(QFile::permissions(Path("target.kv2")), rights);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), TextList({"site.kv2", "target.kv2"}));
    const QByteArray saved = FileBytes(Path());
    EXPECT_EQ(saved.size(), former.size());
    ASSERT_TRUE(QDir().mkpath(Path("target.kv2.tmp/taken")));
    site.Panel(1).setTitle(Text("y"));
    EXPECT_EQ(site.Save(Path()), 20002) << "the place beside it is taken";
    EXPECT_TRUE(site.Panel(1).Modified());
    EXPECT_EQ(FileBytes(Path()), saved);
    for (int i = 0; i <= 32767; ++i)
        site.Mirrors().Add(1, 1, 2, 1, 1);
    EXPECT_EQ(site.Save(Path()), 20002) << "more rules than the count can tell";
    EXPECT_EQ(FileBytes(Path()), saved);
}

TEST_F(ConfigFile, CurrentConfigurationLiesBesideTheExecutable) {
    platform::OverrideApplication(folder.path(), Text("korvanelle"));
    Global::setConfiguration(nullptr);
    Global::Configuration().Panel(3).setTitle(Text("Three"));
    EXPECT_EQ(SaveCurrentConfig(), -1);
    EXPECT_EQ(CurrentConfigFile(), Path("korvanelle.dat"));
    EXPECT_TRUE(FileBytes(Path("korvanelle.dat")).contains("Three"));
    Global::setConfiguration(nullptr);
}

TEST_F(ConfigFile, EveryTruncationFails) {
    const QByteArray whole = SiteHeader().Bytes() + tail;
    for (qsizetype length = 0; length < whole.size(); length += length < 1100 ? 1 : 997)
        ASSERT_EQ(Read(whole.left(length)), 20001) << length;
    EXPECT_EQ(Read(whole.chopped(1)), 20001);
    EXPECT_TRUE(boxes.isEmpty());
}

} // namespace
