// Days of a plant on the test clock: engine, console and files as they are, simulated modules at
// the far end of the line, 50 events a minute and all that happens to a panel PC in a year:
// korvanelle-day <korvanelle.cfg> <hours>. Ends with 0 when each event came once and in order to
// console, history, trace and paper, and nothing grew.

#include "Base.h"
#include "day/Ledger.h"
#include "day/Plant.h"
#include "support/PipePrinter.h"

#include "bus/wPolling.h"
#include "config_screens/ConfigScreens.h"
#include "core/Faults.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "screens/Screens.h"
#include "screens/touch/ScreenForm.h"
#include "screens/touch/Theme.h"
#include "technician/Technician.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <cstdio>
#include <malloc.h>

namespace {

constexpr int Minute = 60;
constexpr int Hour = 60 * Minute;
/// What the first hours take on, such as fonts, pictures and the heap's own reserve, is no growth.
constexpr int SettledHours = 2;
constexpr int MostGrowthKb = 1024;
constexpr int MostHeapGrowthKb = 512;
/// The last things come to rest: a module that was missing is asked each ten minutes.
constexpr int CalmSeconds = 15 * Minute;

struct Sample {
    int kB = 0;
    int heap = 0; // kB that are in use of it, with what is mapped for large blocks
    int threads = 0;
    int handles = 0;
};

/// What malloc keeps free goes back first: it is no growth.
Sample Measure() {
    Sample sample;
    malloc_trim(0);
    const struct mallinfo2 heap = mallinfo2();
    sample.heap = int((heap.uordblks + heap.hblkhd) / 1024);
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("VmRSS:"))
                sample.kB = line.simplified().split(' ')[1].toInt();
            if (line.startsWith("Threads:"))
                sample.threads = line.simplified().split(' ')[1].toInt();
        }
    }
    status.close();
    sample.handles = int(QDir(QStringLiteral("/proc/self/fd"))
                             .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                             .size());
    return sample;
}

void MakeSite() {
    Global::setConfiguration(std::make_unique<ConfigClass>());
    ConfigClass& site = Global::Configuration();
    for (int bit = 0; bit <= 4; ++bit) {
        site.setOptionScreen(bit, true);
        site.setOptionHisto(bit, true);
        site.setOptionPrinter(bit, true);
        site.setOptionKlaxon(bit, true);
    }
    site.setPrtSettings(QStringLiteral("LPT1:"));
    site.setInactivityTime(0);
    for (int address = 1; address <= Plant::Modules; ++address) {
        PanelClass& panel = site.Panel(address);
        panel.setModel(quint8(Plant::ModelOf(address)));
        panel.setTitle(QStringLiteral("Plant %1").arg(address));
        panel.setActive(true);
        for (int number = 1; number <= Plant::Channels; ++number) {
            ChannelClass& channel = panel.Channel(number);
            channel.setScreenText(QStringLiteral("Unit %1.%2").arg(address).arg(number));
            channel.setPrintText(channel.ScreenText());
            channel.setScrAlm(true);
            channel.setHisto(true);
            channel.setPrtAlm(true);
            channel.setKlaxon(true);
            channel.setReact(number == 1);
        }
    }
    for (int address = 1; address <= 10; ++address)
        site.Mirrors().Add(qint16(address), 1, Plant::Modules, qint16(address), 1);
}

/// The program on its plant, second by second.
class Day {
public:
    Day()
        : printer_(Global::InApplicationFolder(QStringLiteral("printer")))
        , stick_(Global::InApplicationFolder(QStringLiteral("stick"))) {
        IniWrite(QStringLiteral("Ports"), QStringLiteral("LPT1"),
                 Global::InApplicationFolder(QStringLiteral("printer")));
        IniWrite(QStringLiteral("Files"), QStringLiteral("PeriodUnit"), QStringLiteral("1"));
        IniWrite(QStringLiteral("Files"), QStringLiteral("Histo"), stick_);
        QDir().mkpath(stick_);
        printer_.SwitchOn();
        clock_.Set(2024, 10, 26, 23, 30);
        Messages::Install([this](const QString& text, int, bool) {
            ledger_.Fail(QStringLiteral("a box: ") + text);
            return int(Messages::Ok);
        });
        Trace::OpenToday();
        plant_.onRaised = [this](int address, EventKey key) { ledger_.Raised(address, key); };
        engine_ = std::make_unique<wPolling>(plant_.MakeLink());
        QObject::connect(engine_.get(), &wPolling::BusEvent,
                         [this](const EventClass& event) { ledger_.Routed(event); });
        engine_->Form_Load();
        engine_->setRun(true);
        ledger_.Forget();
        Forms::Show(FormNames::wRunAlarms);
    }
    ~Day() {
        engine_->Form_Unload();
        Forms::UnloadAllBut({});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        engine_.reset();
        Messages::Install(nullptr);
    }
    Day(const Day&) = delete;
    Day& operator=(const Day&) = delete;

    bool Run(int hours) {
        for (second_ = 0; second_ < hours * Hour; ++second_) {
            Script();
            Second();
            if (second_ % Hour == Hour - 1)
                TakeSample(second_ / Hour + 1);
        }
        plant_.Calm();
        SetPrinter(true);
        for (int i = 0; i < CalmSeconds; ++i)
            Second();
        ledger_.Printed(printer_.Taken());
        ledger_.CheckEnd(plant_, engine_->Paper().Unprinted());
        std::printf(
            "%d hours: %lld events, %.1f a minute, %lld of them made up of standing states; "
            "%d faults of the line, at most %d events waiting in a module, %lld events not on "
            "paper and told there; %d failures\n",
            hours, ledger_.Events(), double(ledger_.Events()) / (hours * 60.0), ledger_.MadeUp(),
            plant_.faults, plant_.mostWaiting, ledger_.NotOnPaper(), ledger_.Failures());
        return ledger_.Failures() == 0;
    }

private:
    void Second() {
        for (const qint64 end = clock_.MonotonicMs() + 1000; clock_.MonotonicMs() < end;) {
            plant_.Advance();
            engine_->RunComm();
            ledger_.CheckConsole();
            clock_.Advance(wPolling::PollRest);
        }
        engine_->tmrMidnight_Timer();
        const int day = DateTimes::DateOf(clock_.Now()).day();
        if (std::exchange(day_, day) != day && second_ > 0)
            CheckDay();
        if (second_ % 10 == 0)
            engine_->tmrReactiv_Timer();
        engine_->Paper().Advance();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        ledger_.CheckConsole();
        if (!isStuck_)
            ledger_.Printed(printer_.Taken());
    }

    /// What a year brings, once a day and in its first two hours: a midnight without the stick, the
    /// clock back over midnight and forth again; each hour the printer; each four hours the
    /// adapter.
    void Script() {
        const int ofDay = second_ % (24 * Hour);
        const auto at = [&](int minute) { return ofDay == minute * Minute; };
        const auto eachHour = [&](int minute) { return second_ % Hour == minute * Minute; };
        if (at(20) && !QDir().rename(stick_, stick_ + QStringLiteral(".out")))
            ledger_.Fail(QStringLiteral("the stick is stuck"));
        if (at(40))
            QDir().rename(stick_ + QStringLiteral(".out"), stick_);
        if (at(45))
            SetClock(-1);
        if (at(105))
            SetClock(1);
        if (eachHour(5))
            SetPrinter(false);
        if (eachHour(12))
            SetPrinter(true);
        if (eachHour(25))
            Stick();
        if (eachHour(35))
            SetPrinter(true);
        if (second_ % (4 * Hour) == 50 * Minute)
            plant_.SetPlugged(false);
        if (second_ % (4 * Hour) == 52 * Minute)
            plant_.SetPlugged(true);
        if (second_ % (6 * Hour) == 55 * Minute)
            engine_->setRun(false);
        if (second_ % (6 * Hour) == 56 * Minute)
            engine_->setRun(true);
        if (second_ % (2 * Minute) == 70)
            Touch(second_ / (2 * Minute));
    }

    void SetClock(int hours) {
        ledger_.CheckFiles();
        clock_.Set(clock_.Now() + hours / 24.0);
        // From here on the files follow one another by their days again.
        engine_->tmrMidnight_Timer();
        Second();
        if ((hours < 0) != Faults::Stands(Faults::Kind::ClockSetBack))
            ledger_.Fail(QStringLiteral("a clock that is set isn't told"));
    }

    void SetPrinter(bool on) {
        if (isStuck_)
            printer_.Taken();
        ledger_.Printed(printer_.Taken());
        isStuck_ = false;
        printer_.SwitchOff();
        if (on)
            printer_.SwitchOn();
    }
    void Stick() {
        ledger_.Printed(printer_.Taken());
        printer_.Stick();
        isStuck_ = true;
    }

    /// The files of the new day are there, and a stick that is in holds the day before.
    void CheckDay() {
        ledger_.CheckDay(Plant::Modules);
        const QString name = QStringLiteral("Histo%1.his").arg(DateTimes::FileDate(clock_.Now()));
        if (!QFile::exists(Global::InApplicationFolder(name)) ||
            !QFile::exists(Trace::FileName(clock_.Now())))
            ledger_.Fail(QStringLiteral("the new day has no files"));
        const QString before =
            QStringLiteral("Histo%1.his").arg(DateTimes::FileDate(clock_.Now() - 1));
        // The stick is cared for by the real time.
        for (; engine_->Second().IsBusy(); engine_->tmrMidnight_Timer())
            QThread::msleep(1);
        const bool hasStick = QFile::exists(stick_);
        if (hasStick && QFile::exists(Global::InApplicationFolder(before)) &&
            !QFile::exists(stick_ + u'/' + before))
            ledger_.Fail(QStringLiteral("the day before isn't on the stick"));
        QFile trace(Trace::FileName(clock_.Now()));
        if (!hasStick &&
            (!trace.open(QIODevice::ReadOnly) || !trace.readAll().contains("HISTORIES NOT COPIED")))
            ledger_.Fail(QStringLiteral("nothing tells that there is no stick"));
        for (int round = 0; round < 3 * Plant::Modules; ++round) {
            engine_->RunComm();
            clock_.Advance(wPolling::PollRest);
        }
        for (int address = 1; address <= Plant::Modules; ++address)
            if (!plant_.IsMuted(address) && plant_.ClockOf(address) > Minute * 10U)
                ledger_.Fail(QStringLiteral("the clock of module %1 wasn't set").arg(address));
    }

    void Touch(int turn) {
        auto* console = dynamic_cast<ScreenForm*>(Forms::Find(FormNames::wRunAlarms));
        if (console == nullptr || !console->isVisible())
            return;
        static const QStringList controls{
            QStringLiteral("imgAcquit"),    QStringLiteral("imgControl_5"),
            QStringLiteral("imgAcquit"),    QStringLiteral("imgArretKlaxon"),
            QStringLiteral("imgAcquit"),    QStringLiteral("imgHisto"),
            QStringLiteral("imgControl_6"), QStringLiteral("imgArretKlaxon"),
            QStringLiteral("imgAcquit"),    QStringLiteral("imgNavig_0")};
        console->grab();
        clock_.Advance(1000);
        auto* control = console->findChild<QWidget*>(controls[turn % controls.size()]);
        if (control == nullptr)
            ledger_.Fail(QStringLiteral("no ") + controls[turn % controls.size()]);
        else
            QTest::mouseClick(control, Qt::LeftButton);
    }

    void TakeSample(int hour) {
        ledger_.CheckFiles();
        const Sample now = Measure();
        std::printf("hour %d: %d kB, %d kB of the heap, %d threads, %d handles\n", hour, now.kB,
                    now.heap, now.threads, now.handles);
        std::fflush(stdout);
        if (hour <= SettledHours) {
            most_.kB = qMax(most_.kB, now.kB);
            most_.heap = qMax(most_.heap, now.heap);
            most_.threads = qMax(most_.threads, now.threads);
            most_.handles = qMax(most_.handles, now.handles);
            return;
        }
        if (now.kB > most_.kB + MostGrowthKb || now.heap > most_.heap + MostHeapGrowthKb ||
            now.threads > most_.threads || now.handles > most_.handles)
            ledger_.Fail(QStringLiteral("memory, threads or handles are more than at first"));
    }

    platform::TestClock clock_;
    PipePrinter printer_;
    QString stick_;
    Plant plant_;
    Ledger ledger_;
    std::unique_ptr<wPolling> engine_;
    Sample most_;
    int second_ = 0;
    int day_ = 0;
    bool isStuck_ = false;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: korvanelle-day <korvanelle.cfg> <hours>\n");
        return 2;
    }
    QApplication::setQuitOnLastWindowClosed(false);
    Theme::Apply(application);
    const QTemporaryDir folder;
    if (!Base::OpenCopy(argv[1], folder))
        return 1;
    Global::Get().sound = std::make_unique<platform::SilentSound>();
    RegisterScreens();
    RegisterConfigScreens();
    RegisterTechnician();
    MakeSite();
    QElapsedTimer timer;
    timer.start();
    const bool good = Day().Run(QByteArray(argv[2]).toInt());
    std::printf("in %lld s\n", timer.elapsed() / 1000);
    Global::setConfiguration(nullptr);
    return good ? 0 : 1;
}
