#include "bus/BusDiagnosis.h"

#include "bus/CommFunctions.h"
#include "support/Bench.h"
#include "support/FakeLink.h"
#include "support/FakeModules.h"

#include <tuple>

namespace {

using Outcome = BusDiagnosis::Outcome;

/// A line on which replies take their time.
class SlowLink : public FakeLink {
public:
    int delay = 0;
    void WaitForInput(int count, qint64 deadlineMs) override {
        platform::Clock::Current().Sleep(delay);
        FakeLink::WaitForInput(count, deadlineMs);
    }
};

class Diagnosis : public QuietBench {
protected:
    Diagnosis() {
        link.setPortOpen(true);
        CommFunctions::ReportTo(&diagnosis);
    }
    ~Diagnosis() override { CommFunctions::ReportTo(nullptr); }

    /// Reads one word of a panel; the reply comes after some time.
    bool Read(int panel, const QByteArray& reply, int milliseconds = 0) {
        Reply(reply, milliseconds);
        Words words{-5};
        const bool done = LitMots(link, quint8(panel), 144, words);
        EXPECT_EQ(words == Words{-5}, !done) << "a damaged reply changes nothing";
        return done;
    }
    bool Write(int panel, const QByteArray& reply) {
        Reply(reply);
        return EcritUnMot(link, quint8(panel), 1, 3);
    }
    void Reply(const QByteArray& reply, int milliseconds = 0) {
        link.answer = [reply](const QByteArray&) { return reply; };
        link.delay = milliseconds;
        link.waitedMs = 0;
    }

    SlowLink link;
    BusDiagnosis diagnosis;
};

TEST_F(Diagnosis, TellsWhyAnExchangeFailed) {
    const QByteArray good = WithCrc(FromHex("1103020007"));
    const std::tuple<const char*, QByteArray, Outcome> reads[] = {
        {"a reply", good, Outcome::Answered},
        {"silence", {}, Outcome::NoAnswer},
        {"one byte", good.left(1), Outcome::BadCrc},
        {"short by one", good.chopped(1), Outcome::BadCrc},
        {"a surplus byte", good + '\0', Outcome::BadCrc},
        {"two replies", good + good, Outcome::BadCrc},
        {"the CRC high", good.chopped(1) + char(good.back() ^ 1), Outcome::BadCrc},
        {"the CRC low", good.left(5) + char(good[5] ^ 0x80) + good[6], Outcome::BadCrc},
        {"a flipped bit", good.left(4) + '\6' + good.mid(5), Outcome::BadCrc},
        {"the echo", WithCrc(FromHex("110300900001")), Outcome::BadCrc},
        {"another function", WithCrc(FromHex("1104020007")), Outcome::BadCrc},
        {"an exception", WithCrc(FromHex("118302")), Outcome::Exception},
        {"a damaged exception", FromHex("1183020000"), Outcome::BadCrc},
        {"another address", WithCrc(FromHex("1203020007")), Outcome::OtherAddress},
        {"an exception of another", WithCrc(FromHex("128302")), Outcome::OtherAddress},
        {"another, at its own length", WithCrc(FromHex("12030400070008")), Outcome::OtherAddress},
    };
    for (const auto& [what, reply, outcome] : reads) {
        EXPECT_EQ(Read(0x11, reply), outcome == Outcome::Answered) << what;
        EXPECT_EQ(diagnosis.LastOf(0x11), outcome) << what;
        EXPECT_EQ(link.waitedMs, reply.size() < good.size() ? 1028 : 0) << what;
    }
    const QByteArray taken = WithCrc(FromHex("110600010003"));
    const std::tuple<const char*, QByteArray, Outcome, int> writes[] = {
        {"a reply", taken, Outcome::Answered, 0},
        {"silence", {}, Outcome::NoAnswer, 500},
        {"short by one", taken.chopped(1), Outcome::BadCrc, 500},
        {"a surplus byte", taken + '\1', Outcome::BadCrc, 0},
        {"another function", WithCrc(FromHex("110300010003")), Outcome::BadCrc, 0},
        {"another address", WithCrc(FromHex("120600010003")), Outcome::OtherAddress, 0},
        {"an exception", WithCrc(FromHex("118604")), Outcome::Exception, 500},
    };
    for (const auto& [what, reply, outcome, waits] : writes) {
        EXPECT_EQ(Write(0x11, reply), outcome == Outcome::Answered) << what;
        EXPECT_EQ(diagnosis.LastOf(0x11), outcome) << what;
        EXPECT_EQ(link.waitedMs, waits) << what;
    }
    // Neither the CRC nor register and value count in the reply to a write, but it is told.
    EXPECT_TRUE(Write(0x11, FromHex("1106FFFF00000000")));
    EXPECT_EQ(diagnosis.LastOf(0x11), Outcome::BadCrc);

    const BusDiagnosis::Counters counters = diagnosis.SinceStart(0x11);
    EXPECT_EQ(counters.exchanges, std::size(reads) + std::size(writes) + 1);
    EXPECT_EQ(counters.outcomes, (std::array<quint32, 5>{2, 2, 14, 2, 4}));
    EXPECT_EQ(diagnosis.SinceStart(0x12), BusDiagnosis::Counters()) << "it wasn't asked";

    link.setPortOpen(false);
    Read(0x11, good);
    EXPECT_EQ(diagnosis.LastOf(0x11), std::nullopt);
    EXPECT_EQ(diagnosis.SinceStart(0x11), counters);
}

TEST_F(Diagnosis, MeasuresTheRepliesOfTheHour) {
    const QByteArray good = WithCrc(FromHex("0503020007"));
    using Told = std::array<double, 4>;
    const auto told = [](const BusDiagnosis::Counters& counters) {
        return Told{double(counters.exchanges), double(counters.shortest), counters.Mean(),
                    double(counters.longest)};
    };
    Read(5, good, 40);
    Read(5, {});
    EXPECT_EQ(told(diagnosis.SinceStart(5)), (Told{2, 40, 40, 40})) << "a time-out has no time";
    clock.Advance(30 * qint64(60000));
    Read(5, good, 20);
    Read(5, good, 90);
    EXPECT_EQ(told(diagnosis.LastHour(5)), (Told{4, 20, 50, 90}));
    clock.Advance(30 * qint64(60000));
    EXPECT_EQ(told(diagnosis.LastHour(5)), (Told{2, 20, 55, 90}));
    clock.Advance(24 * qint64(60) * 60000);
    EXPECT_EQ(diagnosis.LastHour(5), BusDiagnosis::Counters());
    EXPECT_EQ(told(diagnosis.SinceStart(5)), (Told{4, 20, 50, 90}));
}

TEST_F(Diagnosis, KeepsTheFramesOfLate) {
    const platform::DateTime sent = clock.Now() + 25 / 86400000.0;
    Read(7, WithCrc(FromHex("0803020007")), 12);
    EcritUnMot(link, 0, 289, 0);
    Read(9, {});
    ASSERT_EQ(diagnosis.EndFrame(), 4U) << "silence is no frame";
    const BusDiagnosis::Frame& reply = diagnosis.FrameAt(1);
    EXPECT_EQ(diagnosis.FrameAt(0).Bytes(), link.sent.value(0));
    EXPECT_EQ(reply.panel, 7) << "whoever replies";
    EXPECT_EQ(reply.Bytes(), WithCrc(FromHex("0803020007")));
    EXPECT_EQ(reply.direction, BusDiagnosis::Direction::Received);
    EXPECT_EQ(diagnosis.FrameAt(2).panel, 0);
    constexpr double HalfMs = 0.5 / 86400000.0;
    EXPECT_NEAR(diagnosis.TimeOf(diagnosis.FrameAt(0)), sent, HalfMs);
    EXPECT_NEAR(diagnosis.TimeOf(reply), sent + 12 / 86400000.0, HalfMs);

    Read(10, QByteArray(1000, 'x'));
    EXPECT_EQ(diagnosis.FrameAt(5).length, 1000);
    EXPECT_EQ(diagnosis.FrameAt(5).Bytes(), QByteArray(BusDiagnosis::FrameSize, 'x'));
    for (int i = 0; i < BusDiagnosis::FrameRing; ++i)
        Write(1 + i % 64, {});
    EXPECT_EQ(diagnosis.FirstFrame(), 6U);
    EXPECT_EQ(diagnosis.FrameAt(6).panel, 1);
    EXPECT_EQ(diagnosis.FrameAt(diagnosis.EndFrame() - 1).panel, 1 + 999 % 64);
}

} // namespace
