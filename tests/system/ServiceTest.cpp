// The program under a service manager: it says that it is up and alive, and a hang is seen.

#include "platform/Terminal.h"
#include "system/Processes.h"

#include <array>
#include <csignal>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

/// The manager's end of the socket.
class NotifySocket {
public:
    explicit NotifySocket(const QString& path) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        const QByteArray name = path.toLocal8Bit();
        EXPECT_LT(size_t(name.size()), sizeof address.sun_path);
        std::copy(name.begin(), name.end(), address.sun_path);
        EXPECT_EQ(
            bind(socket_.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    /// Waits for a message that begins so; false after so many milliseconds.
    bool Hears(const QByteArray& head, int milliseconds = 30000) const {
        const QDeadlineTimer deadline(milliseconds);
        pollfd place = {socket_.Number(), POLLIN, 0};
        while (poll(&place, 1, int(deadline.remainingTime())) > 0) {
            std::array<char, 4096> bytes = {};
            const ssize_t length = recv(socket_.Number(), bytes.data(), bytes.size(), 0);
            if (QByteArray(bytes.data(), length).startsWith(head))
                return true;
        }
        return false;
    }

private:
    Handle socket_{::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)};
};

class ServiceTest : public PlantTest {};

QByteArray ContentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Number of the one child of a process, 0 for none.
int ChildOf(qint64 process) {
    return ContentOf(QStringLiteral("/proc/%1/task/%1/children").arg(process)).trimmed().toInt();
}

} // namespace

// A rehearsal is entered and left in one process, and the manager sees no end. Nothing of it stands
// in the plant's folder.
TEST_F(ServiceTest, ARehearsalTakesThePlaceOfTheWatchAndGivesItBack) {
    ASSERT_TRUE(QFile::copy(KORVANELLE_BUILD_DIR "/simulator/korvanelle-sim",
                            folder.Path("korvanelle-sim")));
    Put(1);
    site.setPrtSettings("COM2:9600,N,8,1");
    Save();
    const QDir own(folder.Path("Rehearsal"));
    ASSERT_TRUE(QDir().mkpath(own.path()));
    for (const char* former : {"Histo202001.his", "AlarmSound7.wav", "korvanelle.dat"})
        EXPECT_TRUE(QFile(own.filePath(former)).open(QIODevice::WriteOnly));
    IniWrite("Files", "Histo", "/media/usb0");
    IniWrite("Files", "PeriodTime", "3");
    IniWrite("Files", "LastUsed", "/sites/Waterworks.kv2");
    IniWrite(Pending, "1", "2|1|0043|0|0002");
    const QByteArray settings = ContentOf(folder.Path("korvanelle.ini"));

    // A compositor takes the end of such a pipe for the end of the program.
    int pipe[2] = {};
    ASSERT_EQ(::pipe(pipe), 0);
    const Handle reader(pipe[0]);
    const NotifySocket socket(folder.Path("notify"));
    ProgramProcess program(folder,
                           {{"NOTIFY_SOCKET", folder.Path("notify")}, {"WATCHDOG_USEC", "2000000"}},
                           {"--rehearsal"});
    close(pipe[1]);
    const auto isHeld = [&reader] {
        pollfd place = {reader.Number(), POLLIN, 0};
        return poll(&place, 1, 0) == 0;
    };
    ASSERT_TRUE(socket.Hears("READY=1"));
    EXPECT_FALSE(LinesIn(QDir(own.filePath("Trace")), "*.log").filter("COMM   START").isEmpty());
    EXPECT_EQ(LinesIn(own, "Histo2*.his").filter("APPLIC").size(), 1);
    EXPECT_TRUE(own.exists("Histo202001.his"));
    EXPECT_EQ(ContentOf(own.filePath("korvanelle.dat")), ContentOf(folder.Path("korvanelle.dat")));
    EXPECT_GT(QFileInfo(own.filePath("Printed.txt")).size(), 0) << "whatever the site's port";
    const QByteArray copied = ContentOf(own.filePath("korvanelle.ini"));
    EXPECT_TRUE(copied.contains("PeriodTime=3"));
    EXPECT_TRUE(copied.contains("LastUsed=" + own.filePath("Waterworks.kv2").toLocal8Bit()));
    EXPECT_FALSE(copied.contains("usb0") || copied.contains("Ports") || copied.contains("0043"));
    EXPECT_EQ(ContentOf(folder.Path("korvanelle.ini")), settings);
    EXPECT_TRUE(folder.Trace().isEmpty());
    EXPECT_TRUE(folder.History().isEmpty());

    // The simulator is killed until it is given up, whether it has come up yet or not.
    int child = 0;
    int kills = 0;
    EXPECT_TRUE(Eventually([&] {
        const int present = ChildOf(program.Number());
        if (present > 0 && present != child) {
            child = present;
            ::kill(child, SIGKILL);
            ++kills;
        }
        return !folder.Trace().filter("REHEARSAL ENDED").isEmpty();
    }));
    EXPECT_EQ(kills, 3);
    EXPECT_TRUE(program.Running());
    EXPECT_TRUE(Eventually([&] { return ChildOf(program.Number()) == 0; }));
    EXPECT_FALSE(folder.History().filter("APPLIC").isEmpty());
    EXPECT_TRUE(socket.Hears("READY=1"));
    EXPECT_TRUE(socket.Hears("WATCHDOG=1"));
    EXPECT_TRUE(isHeld());
    EXPECT_EQ(program.Terminate(), 0);
    EXPECT_FALSE(isHeld());
}

TEST_F(ServiceTest, AHangOfTheEventLoopSilencesTheSignsOfLife) {
    SimulatorProcess simulator(folder.Bus(), {"1=Q7100"});
    Put(1);
    Save();
    const NotifySocket socket(folder.Path("notify"));
    ProgramProcess program(folder,
                           {{"NOTIFY_SOCKET", folder.Path("notify")}, {"WATCHDOG_USEC", "400000"}});
    ASSERT_TRUE(socket.Hears("READY=1"));
    EXPECT_TRUE(socket.Hears("WATCHDOG=1"));
    EXPECT_TRUE(socket.Hears("STATUS=Bus running. Modules watched: 1, missing: 0, alarms: "));
    program.Signal(SIGSTOP);
    QThread::msleep(100);
    while (socket.Hears({}, 0))
        continue;
    EXPECT_FALSE(socket.Hears("WATCHDOG=1", 1000));
    program.Signal(SIGCONT);
    EXPECT_TRUE(socket.Hears("WATCHDOG=1"));
    // With the line gone the console stands and tells it; that is no hang.
    QFile::remove(folder.Bus());
    EXPECT_TRUE(socket.Hears("WATCHDOG=1"));
    program.Signal(SIGTERM);
    EXPECT_TRUE(socket.Hears("STOPPING=1"));
    EXPECT_TRUE(program.WaitForEnd(20000));
}

TEST_F(ServiceTest, TheFolderOfTheDataIsNamed) {
    const QString data = folder.Path("site/data");
    ProgramProcess program(folder, {}, {"--folder", data});
    // The base is the one beside the program.
    EXPECT_TRUE(FileComes("site/data/AlarmSound99.wav"));
    EXPECT_TRUE(QFile::exists(data + QStringLiteral("/korvanelle.ini")));
    EXPECT_FALSE(QFile::exists(folder.Path("Trace")));
    EXPECT_EQ(program.Terminate(), 0);

    ProgramProcess lost(folder, {}, {"--folder", "/proc/none"});
    EXPECT_TRUE(lost.WaitForEnd(20000));
    EXPECT_EQ(lost.ExitCode(), 1);
}
