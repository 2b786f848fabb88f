#include "model/SiteDifference.h"

#include "core/Config.h"
#include "model/ConfigClass.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

constexpr int HeaderEnd = 1024;

class SiteDifferenceTest : public ::testing::Test {
protected:
    SiteDifferenceTest() {
        Config::CloseConfigBase();
        first.setUserName(1, "Anna");
        first.setUserPwd(1, "12345");
        first.setPrinterName("escp");
        first.setPrtSettings("LPT1:");
        first.setBusSettings("COM3:9600,N,8,1");
        for (int i = 0; i < ConfigClass::PrinterStrings; ++i) {
            first.setPrinterInitCode(i, "1B");
            first.setPrinterInitString(i, "xy");
        }
        first.Panel(1).setTitle("Boiler");
        first.Panel(1).Channel(1).setScreenText("Low water");
        first.Panel(1).Channel(1).setPrintText("LOW");
        // One bit less than all leaves a true one true.
        first.Panel(1).Channel(1).setHisto(false);
        first.setBiblio(1, "Pump");
        first.setConsigne(1, "Call the plant");
        first.Mirrors().Add(1, 2, 3, 4, 1);
        EXPECT_EQ(first.Save(path), ConfigClass::Saved);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        bytes = file.readAll();
    }
    /// The differences from the site whose file has another byte at a place; nothing when no site
    /// can be read from it.
    std::optional<QList<SiteDifference>> WithByte(qsizetype at) {
        QByteArray changed = bytes;
        changed[at] = char(changed[at] ^ 1);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(changed);
        file.close();
        ConfigClass second;
        if (second.Read(path) != ConfigClass::ReadDone)
            return std::nullopt;
        return CompareSites(first, second);
    }

    QTemporaryDir folder;
    const QString path = folder.filePath("site.kv2");
    ConfigClass first;
    QByteArray bytes;
};

} // namespace

// A field of the file that the tables of the comparison don't have would be seen by nobody.
TEST_F(SiteDifferenceTest, TellsEachByteOfTheFileThatMeansSomething) {
    const qsizetype signatureEnd = 32;
    const qsizetype firstPrinter = bytes.indexOf("LPT1:");
    // Two booleans stand between the printer's first copy and the sounds, whose place 0 is unused.
    const qsizetype unusedSound = firstPrinter + 5 + 4;
    const qsizetype firstPanel = HeaderEnd;
    const qsizetype headerEnd = bytes.indexOf("escp") + 4 + 2;
    const qsizetype channelEnd = bytes.indexOf("LOW") + 3 + 22;
    QList<qsizetype> places;
    for (qsizetype at = signatureEnd; at < headerEnd; ++at) {
        const bool isFirstCopy = at >= firstPrinter - 4 && at < firstPrinter + 5;
        // One of ten sounds stands for all.
        const bool isSound = at >= unusedSound && at < unusedSound + 200;
        if (!isFirstCopy && (!isSound || (at - unusedSound) % 20 == 2))
            places += at;
    }
    for (qsizetype at = firstPanel + 1; at < channelEnd; ++at)
        places += at;
    const qsizetype mirrors = bytes.size() - 12;
    for (qsizetype at = mirrors; at < bytes.size(); ++at)
        places += at;
    places += bytes.indexOf("Pump");
    places += bytes.indexOf("Call");
    int read = 0;
    for (const qsizetype at : places) {
        const auto differences = WithByte(at);
        read += differences ? 1 : 0;
        EXPECT_TRUE(!differences || !differences->isEmpty()) << "byte " << at;
    }
    EXPECT_GT(read, int(places.size()) / 2);
}

TEST_F(SiteDifferenceTest, SaysWhatIsOtherwiseButNoCode) {
    ConfigClass second;
    ASSERT_EQ(second.Read(path), ConfigClass::ReadDone);
    EXPECT_TRUE(CompareSites(first, second).isEmpty());
    second.Panel(1).Channel(1).setAlmPrio(7);
    second.setUserPwd(1, "99999");
    second.setUserCount(3);
    second.setUserName(3, "Bert");
    second.setConsigne(1, "Call nobody");
    second.Mirrors().RemoveAll();
    second.Mirrors().Add(1, 2, 3, 5, 1);
    const QList<SiteDifference> found = CompareSites(first, second);
    ASSERT_EQ(found.size(), 6);
    EXPECT_EQ(found[0].first, "99");
    EXPECT_EQ(found[0].second, "7");
    EXPECT_TRUE(found[0].group.contains("Boiler") && found[0].part.contains("Low water"));
    EXPECT_EQ(found[1].field, "Anna");
    EXPECT_EQ(found[2].field, "Bert");
    EXPECT_EQ(found[3].second, "Call nobody");
    for (const SiteDifference& one : found)
        EXPECT_FALSE((one.first + one.second).contains("99999") ||
                     (one.first + one.second).contains("12345"));
}
