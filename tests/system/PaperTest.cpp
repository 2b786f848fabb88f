// What the program writes on paper and disks, with printers that are stuck or late and disks that
// are full.

#include "support/PipePrinter.h"
#include "system/Processes.h"

#include "core/Config.h"
#include "core/DateTimes.h"
#include "model/Models.h"

#include <QElapsedTimer>
#include <cerrno>
#include <sys/mount.h>
#include <unistd.h>

namespace {

constexpr int Panels = 2;

class PaperTest : public ::testing::Test {
protected:
    PaperTest()
        : simulator_(folder_.Bus(), {"1=Q7100", "2=Q7100"})
        , printer_(folder_.Path("printer")) {
        EXPECT_TRUE(Config::OpenConfigBase());
        IniWrite("Ports", "LPT1", folder_.Path("printer"));
        site_.setAutoStart(true);
        for (int bit = 0; bit <= 4; ++bit) {
            site_.setOptionScreen(bit, true);
            site_.setOptionHisto(bit, true);
            site_.setOptionPrinter(bit, true);
        }
        for (int address = 1; address <= Panels; ++address) {
            PanelClass& panel = site_.Panel(address);
            panel.setModel(Models::Q7100);
            panel.setActive(true);
            for (int number = 1; number <= PanelClass::MaxChannel; ++number) {
                ChannelClass& channel = panel.Channel(number);
                channel.setScrAlm(true);
                channel.setHisto(true);
                channel.setPrtAlm(address == 1);
            }
        }
    }

    void Save(const QString& printer) {
        site_.setPrtSettings(printer);
        EXPECT_EQ(site_.Save(CurrentConfigFile()), ConfigClass::Saved);
    }
    /// Place in the trace of the first line that holds a part; -1 without one.
    qsizetype TraceLine(const char* part) const {
        const QStringList lines = folder_.Trace();
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (lines[i].contains(QLatin1String(part)))
                return i;
        }
        return -1;
    }
    bool WaitForTrace(const char* part) const {
        return Eventually([&] { return TraceLine(part) >= 0; });
    }
    void Alarms(int panel, int first, int last) {
        for (int channel = first; channel <= last; ++channel)
            simulator_.Do("active " + QByteArray::number(panel) + ' ' +
                          QByteArray::number(channel));
    }

    RunFolder folder_;
    SimulatorProcess simulator_;
    PipePrinter printer_;
    ConfigClass site_;
};

/// The same in a small file system of its own.
class DiskTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (mount("none", QFile::encodeName(disk_.path()).constData(), "tmpfs", 0, "size=192m") !=
            0)
            GTEST_SKIP() << "nothing can be mounted here";
        mounted_ = true;
        qputenv("TMPDIR", QFile::encodeName(disk_.path()));
    }
    void TearDown() override {
        if (!mounted_)
            return;
        former_.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", former_);
        umount2(QFile::encodeName(disk_.path()).constData(), MNT_DETACH);
    }
    QString Ballast() const { return disk_.filePath("ballast"); }
    void Fill() const {
        QFile file(Ballast());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (file.write(QByteArray(4096, 'x')) == 4096)
            continue;
    }

    const QByteArray former_ = qgetenv("TMPDIR");
    QTemporaryDir disk_;
    bool mounted_ = false;
};

/// A PaperTest that can be made when the disk is there.
class Plant : public PaperTest {
public:
    using PaperTest::Alarms;
    using PaperTest::folder_;
    using PaperTest::Save;
    using PaperTest::site_;
    using PaperTest::TraceLine;
    using PaperTest::WaitForTrace;

private:
    void TestBody() override {}
};

} // namespace

TEST_F(PaperTest, AStuckPrinterHoldsUpNoAlarm) {
    constexpr int Last = 13;
    Save("LPT1:");
    printer_.SwitchOn();
    ProgramProcess program(folder_);
    ASSERT_TRUE(WaitForTrace("SYNCHR"));
    Alarms(1, 1, 1);
    ASSERT_TRUE(Eventually([&] { return printer_.Paper().contains("P01-C01"); }));

    printer_.Stick();
    Alarms(1, 2, Last);
    ASSERT_TRUE(WaitForTrace("P01-C02"));
    QElapsedTimer timer;
    timer.start();
    Alarms(2, 1, 1);
    ASSERT_TRUE(WaitForTrace("P02-C01") || WaitForTrace("P02-C01"));
    RecordProperty("MillisecondsToAnotherPanel", int(timer.elapsed()));
    ASSERT_TRUE(WaitForTrace("PRINTER ERROR"));
    EXPECT_LT(TraceLine("P02-C01"), TraceLine("PRINTER ERROR"))
        << "it came while the printer still had its time";
    ASSERT_TRUE(WaitForTrace("FAULT BEGINS PRINTER NOT REACHED"));

    // It prints again: what is missing is told, and the next alarm stands behind that.
    printer_.Paper();
    const auto told = [&] {
        return printer_.Paper().contains("\n12 events not printed, see history\r\n");
    };
    ASSERT_TRUE(Eventually(told) || Eventually(told)) << printer_.Paper().toStdString();
    ASSERT_TRUE(WaitForTrace("FAULT ENDS   PRINTER NOT REACHED"));
    Alarms(1, Last + 1, Last + 1);
    ASSERT_TRUE(Eventually([&] { return printer_.Paper().contains("P01-C14"); }));
    EXPECT_FALSE(printer_.Paper().contains("P01-C02"));
}

TEST_F(PaperTest, APrinterThatComesLateIsFound) {
    Save("LPT1:");
    ProgramProcess program(folder_);
    ASSERT_TRUE(WaitForTrace("SYNCHR"));
    Alarms(1, 1, 2);
    ASSERT_TRUE(WaitForTrace("P01-C02"));
    printer_.SwitchOn();
    const auto told = [&] { return printer_.Paper().contains(" events not printed, see history"); };
    ASSERT_TRUE(Eventually(told) || Eventually(told));
    Alarms(1, 3, 3);
    ASSERT_TRUE(Eventually([&] { return printer_.Paper().contains("P01-C03"); }));
    EXPECT_TRUE(program.Running());
}

TEST_F(PaperTest, ThePortOfTheBusIsNotPrintedOn) {
    IniWrite("Ports", "LPT1", folder_.Bus());
    Save("LPT1:");
    ProgramProcess program(folder_);
    ASSERT_TRUE(WaitForTrace("SYNCHR"));
    Alarms(1, 1, 1);
    ASSERT_TRUE(WaitForTrace("P01-C01"));
    EXPECT_TRUE(WaitForTrace("FAULT BEGINS MESSAGE UNREAD")) << "refused with words";
    EXPECT_EQ(TraceLine("PRINTER"), -1);
}

TEST_F(PaperTest, ADeletedTraceFolderIsMadeAgain) {
    Save(QString());
    ProgramProcess program(folder_);
    ASSERT_TRUE(WaitForTrace("SYNCHR"));
    ASSERT_TRUE(QDir(folder_.Path("Trace")).removeRecursively());
    Alarms(1, 1, 1);
    EXPECT_TRUE(WaitForTrace("P01-C01"));
    EXPECT_EQ(TraceLine("FAULT"), -1) << "nothing to tell";
}

// The next alarm needs a history file, for which there is no room; the trace still has some.
TEST_F(DiskTest, AFullDiskIsToldAndHoldsUpNothing) {
    Plant plant;
    plant.Save(QString());
    QFile::remove(plant.folder_.Path("printer"));
    ProgramProcess program(plant.folder_);
    ASSERT_TRUE(plant.WaitForTrace("SYNCHR"));
    ASSERT_TRUE(Eventually([&] { return QFile::exists(plant.folder_.Path("AlarmSound99.wav")); }));
    const QString history = plant.folder_.Path(
        QStringLiteral("Histo%1.his").arg(DateTimes::FileMonth(DateTimes::Now())));
    QFile::remove(history);
    Fill();
    plant.Alarms(1, 1, 1);
    EXPECT_TRUE(plant.WaitForTrace("FAULT BEGINS HISTORY NOT WRITTEN"));
    EXPECT_TRUE(plant.WaitForTrace("ERROR 61 ")) << "a full disk and nothing else";
    plant.Alarms(1, 2, 2);
    EXPECT_TRUE(plant.WaitForTrace("P01-C02")) << "beneath the box";

    // The site stays what it was.
    const auto saved = [&] {
        QFile file(CurrentConfigFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QByteArray former = saved();
    plant.site_.setAutoStart(false);
    EXPECT_EQ(plant.site_.Save(CurrentConfigFile()), ConfigClass::SaveFailed);
    EXPECT_TRUE(saved() == former);
    EXPECT_TRUE(plant.site_.Modified());

    ASSERT_TRUE(QFile::remove(Ballast()));
    plant.Alarms(1, 3, 3);
    EXPECT_TRUE(plant.WaitForTrace("FAULT ENDS   HISTORY NOT WRITTEN"));
    EXPECT_EQ(plant.folder_.History().filter("P01-C03").size(), 1);
    EXPECT_TRUE(program.Running());
}
