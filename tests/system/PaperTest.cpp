// What the program writes on paper and disks, with printers that are stuck or late and disks that
// are full.

#include "support/PipePrinter.h"
#include "system/Processes.h"

#include "core/DateTimes.h"

#include <cerrno>
#include <sys/mount.h>
#include <unistd.h>

namespace {

constexpr int Panels = 2;

class PaperTest : public PlantTest {
protected:
    PaperTest()
        : simulator_(folder.Bus(), {"1=Q7100", "2=Q7100"})
        , printer_(folder.Path("printer")) {
        IniWrite("Ports", "LPT1", folder.Path("printer"));
        for (int bit = 0; bit <= 4; ++bit) {
            site.setOptionScreen(bit, true);
            site.setOptionHisto(bit, true);
            site.setOptionPrinter(bit, true);
        }
        for (int address = 1; address <= Panels; ++address) {
            PanelClass& panel = Put(address);
            for (int number = 1; number <= PanelClass::MaxChannel; ++number) {
                ChannelClass& channel = panel.Channel(number);
                channel.setScrAlm(true);
                channel.setHisto(true);
                channel.setPrtAlm(address == 1);
            }
        }
        site.setPrtSettings("LPT1:");
    }

    /// Place in the trace of the first line that holds a part; -1 without one.
    qsizetype TraceLine(const QString& part) const {
        return folder.Trace().indexOf(Traced(part).value(0));
    }
    void Alarms(int panel, int first, int last) {
        for (int channel = first; channel <= last; ++channel)
            simulator_.Do("active " + QByteArray::number(panel) + ' ' +
                          QByteArray::number(channel));
    }
    bool Prints(const char* part) {
        return Eventually([&] { return printer_.Paper().contains(part); }, 120);
    }

    SimulatorProcess simulator_;
    PipePrinter printer_;
};

/// A small file system for what is temporary.
class SmallDisk {
public:
    SmallDisk()
        : mounted(mount("none", QFile::encodeName(disk_.path()).constData(), "tmpfs", 0,
                        "size=192m") == 0) {
        if (mounted)
            qputenv("TMPDIR", QFile::encodeName(disk_.path()));
    }
    ~SmallDisk() {
        if (!mounted)
            return;
        former_.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", former_);
        umount2(QFile::encodeName(disk_.path()).constData(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    QString Ballast() const { return disk_.filePath("ballast"); }
    void Fill() const {
        QFile file(Ballast());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (file.write(QByteArray(4096, 'x')) == 4096)
            continue;
    }

private:
    const QByteArray former_ = qgetenv("TMPDIR");
    QTemporaryDir disk_;

public:
    const bool mounted;
};

/// The plant is on the disk, which is there first.
class DiskTest : public SmallDisk, public PaperTest {
protected:
    void SetUp() override {
        if (!mounted)
            GTEST_SKIP() << "nothing can be mounted here";
    }
};

} // namespace

TEST_F(PaperTest, AStuckPrinterHoldsUpNoAlarm) {
    constexpr int Last = 13;
    Save();
    printer_.SwitchOn();
    ProgramProcess program(folder);
    ASSERT_TRUE(Comes("SYNCHR"));
    Alarms(1, 1, 1);
    ASSERT_TRUE(Prints("P01-C01"));

    printer_.Stick();
    Alarms(1, 2, Last);
    ASSERT_TRUE(Comes("P01-C02"));
    Alarms(2, 1, 1);
    ASSERT_TRUE(Comes("P02-C01"));
    ASSERT_TRUE(Comes("PRINTER ERROR"));
    EXPECT_LT(TraceLine("P02-C01"), TraceLine("PRINTER ERROR"))
        << "it came while the printer still had its time";
    ASSERT_TRUE(Comes("FAULT BEGINS PRINTER NOT REACHED"));

    // It prints again: what is missing is told, and the next alarm stands behind that.
    printer_.Paper();
    ASSERT_TRUE(Prints("\n12 events not printed, see history\r\n"))
        << printer_.Paper().toStdString();
    ASSERT_TRUE(Comes("FAULT ENDS   PRINTER NOT REACHED"));
    Alarms(1, Last + 1, Last + 1);
    ASSERT_TRUE(Prints("P01-C14"));
    EXPECT_FALSE(printer_.Paper().contains("P01-C02"));
}

TEST_F(PaperTest, APrinterThatComesLateIsFound) {
    Save();
    ProgramProcess program(folder);
    ASSERT_TRUE(Comes("SYNCHR"));
    Alarms(1, 1, 2);
    ASSERT_TRUE(Comes("P01-C02"));
    printer_.SwitchOn();
    ASSERT_TRUE(Prints(" events not printed, see history"));
    Alarms(1, 3, 3);
    ASSERT_TRUE(Prints("P01-C03"));
    EXPECT_TRUE(program.Running());
}

TEST_F(PaperTest, ThePortOfTheBusIsNotPrintedOn) {
    IniWrite("Ports", "LPT1", folder.Bus());
    Save();
    ProgramProcess program(folder);
    ASSERT_TRUE(Comes("SYNCHR"));
    Alarms(1, 1, 1);
    ASSERT_TRUE(Comes("P01-C01"));
    EXPECT_TRUE(Comes("FAULT BEGINS MESSAGE UNREAD")) << "refused with words";
    EXPECT_EQ(TraceLine("PRINTER"), -1);
}

// The next alarm needs a history file, for which there is no room; the trace still has some.
TEST_F(DiskTest, AFullDiskIsToldAndHoldsUpNothing) {
    site.setPrtSettings(QString());
    Save();
    QFile::remove(folder.Path("printer"));
    ProgramProcess program(folder);
    ASSERT_TRUE(Comes("SYNCHR"));
    ASSERT_TRUE(Starts());
    const QString history =
        folder.Path(QStringLiteral("Histo%1.his").arg(DateTimes::FileMonth(DateTimes::Now())));
    QFile::remove(history);
    Fill();
    Alarms(1, 1, 1);
    EXPECT_TRUE(Comes("FAULT BEGINS HISTORY NOT WRITTEN"));
    EXPECT_TRUE(Comes("ERROR 61 ")) << "a full disk and nothing else";
    Alarms(1, 2, 2);
    EXPECT_TRUE(Comes("P01-C02")) << "beneath the box";

    // The site stays what it was.
    const auto saved = [&] {
        QFile file(CurrentConfigFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QByteArray former = saved();
    site.setAutoStart(false);
    EXPECT_EQ(site.Save(CurrentConfigFile()), ConfigClass::SaveFailed);
    EXPECT_TRUE(saved() == former);
    EXPECT_TRUE(site.Modified());

    ASSERT_TRUE(QFile::remove(Ballast()));
    Alarms(1, 3, 3);
    EXPECT_TRUE(Comes("FAULT ENDS   HISTORY NOT WRITTEN"));
    EXPECT_EQ(folder.History().filter("P01-C03").size(), 1);
    EXPECT_TRUE(program.Running());
}
