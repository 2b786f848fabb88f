// Kills the engine at random moments while events are routed, and counts what was lost:
// korvanelle-kills <korvanelle.cfg> <number of kills>. Ends with 0 when nothing was.

#include "Base.h"
#include "support/FakeLink.h"

#include "bus/wPolling.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "platform/Folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <cstdio>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// What the settings hold beside the numbering: it must come through every kill.
const QByteArray Foreign = "; kept by hand\r\n[Ports]\r\nCOM1=/dev/none\r\n\r\n[Other]\r\nx=1\r\n";
constexpr int HistoryWidth = 138;

/// The child: routes events until it is killed. Every hundredth changes a key of another length,
/// so that the settings are replaced as a whole too.
[[noreturn]] void RouteUntilKilled() {
    Trace::OpenToday();
    wPolling engine(std::make_unique<FakeLink>());
    engine.Form_Load();
    for (int i = 0;; ++i) {
        EventClass event(1, Family::Presence, 1, qint16(i % 2));
        engine.SendEvent(event);
        if (i % 100 == 0)
            IniWrite(QStringLiteral("Files"), QStringLiteral("Length"), QString(i % 37, u'x'));
    }
}

QByteArray ContentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What was wrong behind one kill.
struct Losses {
    int settings = 0;
    int numbers = 0;
    int lines = 0;
    /// The line that a kill itself cut short: no loss, for its event wasn't routed to the end.
    int cut = 0;
};

/// Numbers of the trace's events. A line that another ran into is lost.
QList<int> NumbersOf(const QByteArray& trace, Losses& losses) {
    constexpr int TraceWidth = 132;
    QList<int> numbers;
    for (const QByteArray& line : trace.split('\n')) {
        if (line.isEmpty())
            continue;
        losses.lines += line.size() > TraceWidth + 1 ? 1 : 0;
        bool isNumber = false;
        const int number = line.mid(20, 6).toInt(&isNumber);
        if (isNumber)
            numbers += number;
    }
    return numbers;
}

void CountHistoryLine(const QByteArray& line, Losses& losses) {
    losses.lines += line.size() > HistoryWidth + 1 ? 1 : 0;
    losses.cut += !line.isEmpty() && line.size() < HistoryWidth + 1 ? 1 : 0;
}

Losses Check(int kills) {
    Losses losses;
    const QByteArray settings = ContentOf(SLVfonctions::IniFileName());
    losses.settings = settings.startsWith(Foreign) ? 0 : 1;
    const QList<int> numbers = NumbersOf(ContentOf(Trace::FileName(DateTimes::Now())), losses);
    int missing = 0;
    for (qsizetype i = 1; i < numbers.size(); ++i) {
        if (numbers[i] <= numbers[i - 1])
            ++losses.numbers;
        else
            missing += numbers[i] - numbers[i - 1] - 1;
    }
    // A kill between the giving of a number and its line leaves one number without a line.
    losses.numbers += missing > kills ? missing - kills : 0;
    const int last =
        IniRead(QStringLiteral("General"), QStringLiteral("LastEvent"), QString()).toInt();
    losses.numbers += !numbers.isEmpty() && last < numbers.last() ? 1 : 0;
    const QDir folder(platform::ApplicationFolder());
    for (const QString& name : folder.entryList({QStringLiteral("Histo*.his")}, QDir::Files))
        for (const QByteArray& line : ContentOf(folder.filePath(name)).split('\n'))
            CountHistoryLine(line, losses);
    return losses;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: korvanelle-kills <korvanelle.cfg> <number>\n");
        return 2;
    }
    const int count = QByteArray(argv[2]).toInt();
    const QTemporaryDir folder;
    if (!Base::OpenCopy(argv[1], folder))
        return 1;
    Global::setConfiguration(std::make_unique<ConfigClass>());
    for (int bit = 0; bit <= 4; ++bit)
        Global::Configuration().setOptionHisto(bit, true);
    Messages::Install([](const QString&, int, bool) { return int(Messages::Ok); });
    QFile settings(SLVfonctions::IniFileName());
    if (!settings.open(QIODevice::WriteOnly) || settings.write(Foreign) != Foreign.size())
        return 1;
    settings.close();

    std::mt19937 random(1);
    for (int kill = 1; kill <= count; ++kill) {
        const pid_t child = fork();
        if (child == 0)
            RouteUntilKilled();
        usleep(useconds_t(2000 + random() % 20000));
        ::kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
    const Losses losses = Check(count);
    std::printf("%d kills: settings damaged %d, numbers lost %d, lines lost %d, cut by a kill %d\n",
                count, losses.settings, losses.numbers, losses.lines, losses.cut);
    return losses.settings + losses.numbers + losses.lines == 0 && losses.cut <= count ? 0 : 1;
}
