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

} // namespace

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
