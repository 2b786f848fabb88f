// A month of a plant on the test clock: events, silence, spoiled replies, restarts and losses of
// power of the program, the simulator's modules at the far end. Whatever a module dropped on a
// receipt stands in the trace and in the history exactly once, in the module's order.

#include "support/Bench.h"
#include "support/FakeLink.h"
#include "support/SimulatedLine.h"
#include "system/Processes.h"

#include "bus/wPolling.h"

#include <QSet>
#include <algorithm>
#include <random>

namespace {

using SimulatedLine::MemoryRegister;
using SimulatedLine::ReceiptRegister;

constexpr int Modules = 3;
constexpr int Steps = 12000;

class MonthTest : public Bench {
protected:
    MonthTest()
        : bus_([this] { return Sim::Milliseconds(clock.MonotonicMs()); }, 5) {
        SetOptions(31, 31, 0, 31);
        const int models[Modules] = {Models::Q7100, Models::Q7000, Models::Q7100};
        for (int address = 1; address <= Modules; ++address) {
            bus_.Add(address, Sim::Model(models[address - 1]), "module");
            Site().Panel(address).setModel(quint8(models[address - 1]));
            Site().Panel(address).setActive(true);
        }
        IniWrite("Files", "PeriodUnit", "1");
    }

    /// The program starts: engine, port, bus.
    void Start() {
        auto link = std::make_unique<FakeLink>();
        link->answer = [this](const QByteArray& frame) { return Answer(frame); };
        engine_ = std::make_unique<wPolling>(std::move(link));
        QObject::connect(engine_.get(), &wPolling::Synchronising,
                         [this](bool on) { synchronising_ = on; });
        engine_->Form_Load();
        engine_->setRun(true);
    }

    QByteArray Answer(const QByteArray& frame) {
        const std::optional<Sim::Request> request = SimulatedLine::RequestOf(frame);
        if (!request)
            return {};
        NoteReceipt(frame);
        return SimulatedLine::BytesOf(bus_.Handle(*request));
    }

    /// Takes down what a receipt is about to drop. The general synchronisation throws memories
    /// away unread and tells the standing states instead.
    void NoteReceipt(const QByteArray& frame) {
        const int address = quint8(frame[0]);
        const auto word = [&](int at) { return quint8(frame[at]) * 256 + quint8(frame[at + 1]); };
        Sim::Station* station = bus_.Find(address);
        if (synchronising_ || frame[1] != 6 || word(2) != ReceiptRegister || station == nullptr ||
            station->faults.muted)
            return;
        for (int i = 0; i < word(4); ++i) {
            const int head = station->module->Read(quint16(MemoryRegister + 2 * i));
            const int low = station->module->Read(quint16(MemoryRegister + 2 * i + 1));
            if (head >> 12 == 15 && ((head >> 4) & 15) == 1)
                continue; // silences the horn and is no event
            const int chnl = head >> 12 == 15 ? 0 : head >> 12;
            dropped_[address] +=
                QStringLiteral("%1 %2")
                    .arg(((head & 15) << 16) | low, 7, 10, QLatin1Char('0'))
                    .arg((address << 24) | (chnl << 16) | (head & 0xF00) | ((head >> 4) & 15), 8,
                         16, QLatin1Char('0'))
                    .toUpper();
        }
    }

    void Trouble(int address) {
        Sim::LineFaults& faults = bus_.Find(address)->faults;
        faults = {};
        if (const int what = Random(12); what < 5)
            SimulatedLine::GiveTrouble(faults, what, [this](int below) { return Random(below); });
    }

    /// Something happens in the plant. The module's clock has tenths: two events of one moment
    /// could not be told apart.
    void Happen() {
        const int address = 1 + Random(Modules);
        clock.Advance(100 + Random(400));
        if (Random(4) == 0)
            Trouble(address);
        else if (Random(8) == 0)
            bus_.Find(address)->module->Acknowledge();
        else
            bus_.Find(address)->module->SetContact(1 + Random(12), Sim::Contact(Random(5)));
    }

    /// The program ends in order, or its process is gone from one moment to the next. All modules
    /// answer its next start, which throws their memories away: nobody knows any more what was
    /// taken of one that can't be reached then, and it tells that a second time.
    void MaybeRestart() {
        const int what = Random(300);
        if (what > 1)
            return;
        for (int address = 1; address <= Modules; ++address)
            bus_.Find(address)->faults = {};
        if (what == 0)
            engine_->Form_Unload();
        engine_.reset();
        synchronising_ = false;
        clock.Advance(Random(60000));
        Start();
    }

    int Random(int below) { return int(random_() % unsigned(below)); }

    Sim::Bus bus_;
    std::mt19937 random_{11};
    std::unique_ptr<wPolling> engine_;
    bool synchronising_ = false;
    /// By address.
    QHash<int, QStringList> dropped_;
};

} // namespace

TEST_F(MonthTest, EveryDroppedEventIsRecordedOnceInOrder) {
    Start();
    for (int step = 0; step < Steps; ++step) {
        Happen();
        MaybeRestart();
        for (int rounds = Random(Modules + 2); rounds > 0; --rounds)
            engine_->RunComm();
        if (Random(5) == 0)
            clock.Advance(Random(2000000));
        engine_->tmrMidnight_Timer();
    }
    engine_.reset();

    const QStringList trace = LinesIn(Path("Trace"), "*.log");
    const QStringList history = LinesIn(Path(QString()), "Histo*.his");
    EXPECT_GT(QDir(Path("Trace")).count(), 15U);

    // In the trace: numbers one behind the other; clock and key of each dropped event once, those
    // of one module in the order of its receipts.
    QHash<int, QStringList> recorded;
    QHash<int, QSet<QString>> wanted;
    for (int address = 1; address <= Modules; ++address)
        wanted[address] = {dropped_[address].cbegin(), dropped_[address].cend()};
    int last = 0;
    for (const QString& line : trace) {
        bool isNumber = false;
        const int number = line.mid(20, 6).toInt(&isNumber);
        if (!isNumber)
            continue;
        ASSERT_GT(number, last) << line.toStdString();
        last = number;
        const int address = line.mid(35, 2).toInt(nullptr, 16);
        if (const QString key = line.mid(27, 16); wanted[address].contains(key))
            recorded[address] += key;
    }
    for (int address = 1; address <= Modules; ++address) {
        const QStringList& keys = dropped_[address];
        ASSERT_GT(keys.size(), Steps / 10);
        EXPECT_EQ(recorded[address].size(), keys.size()) << address;
        const auto [missing, other] = std::mismatch(
            keys.cbegin(), keys.cend(), recorded[address].cbegin(), recorded[address].cend());
        EXPECT_TRUE(missing == keys.cend()) << address << " misses " << missing->toStdString();
    }

    // In the history: as many lines with a panel clock as in the trace, and in the same order.
    const auto clocks = [](const QStringList& lines) {
        QStringList all;
        for (const QString& line : lines) {
            bool isNumber = false;
            line.mid(27, 7).toInt(&isNumber);
            if (isNumber)
                all += line.mid(27, 7);
        }
        return all;
    };
    EXPECT_EQ(clocks(history), clocks(trace));
    EXPECT_TRUE(boxes.isEmpty()) << boxes.join(u'\n').toStdString();
}
