#include "bus/CommFunctions.h"

#include "bus/BusDiagnosis.h"
#include "support/Bench.h"
#include "support/FakeLink.h"
#include "support/FakeModules.h"

#include <array>
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

class Exchange : public QuietBench {
protected:
    Exchange() {
        link.setPortOpen(true);
        CommFunctions::ReportTo(&diagnosis);
    }
    ~Exchange() override { CommFunctions::ReportTo(nullptr); }

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

TEST_F(Exchange, FramesAreExactToTheByte) {
    Words words(3);
    LitMots(link, 0x11, 0x6B, words);
    EcritUnMot(link, 0x11, 1, 3);
    EcritMots(link, 0x11, 1, {10, 0x0102});
    LitMots(link, 64, 288, words);
    EcritUnMot(link, 64, 289, -1);
    EXPECT_EQ(link.sent, (QList<QByteArray>{
                             FromHex("1103006B00037687"), FromHex("1106000100039A9B"),
                             FromHex("11100001000204000A0102C6F0"),
                             WithCrc(FromHex("400301200003")), WithCrc(FromHex("40060121FFFF"))}));
    EXPECT_TRUE(link.readyToSend);
    // The length is counted short of the last byte: the CRC's own two follow in a frame.
    EXPECT_EQ(quint16(CommFunctions::CRC16("123456789xx", 9)), 0x4B37);
    for (const int length : {3, 9})
        EXPECT_EQ(CommFunctions::CRC16(FromHex("1103006B"), length), 1);
}

TEST_F(Exchange, TakesAGoodReplyWithoutWaiting) {
    // The byte count of the reply is not looked at.
    for (const char* count : {"06", "00", "FF"}) {
        Reply(WithCrc(FromHex("1103") + FromHex(count) + FromHex("022B8000FFFF")));
        Words words(3);
        EXPECT_TRUE(LitMots(link, 0x11, 0x6B, words));
        EXPECT_EQ(words, (Words{0x022B, -32768, -1}));
    }
    // Nor are CRC, register and number in the reply to a write of several.
    const QByteArray good = WithCrc(FromHex("111000010002"));
    for (const QByteArray& reply : {good, FromHex("1110FFFF00000000")}) {
        Reply(reply);
        EXPECT_TRUE(EcritMots(link, 0x11, 1, {10, 258}));
    }
    EXPECT_EQ(link.waitedMs, 0);
    for (const QByteArray& reply :
         {QByteArray(), good.chopped(1), good + '\1', WithCrc(FromHex("121000010002")),
          WithCrc(FromHex("110600010002"))}) {
        Reply(reply);
        EXPECT_FALSE(EcritMots(link, 0x11, 1, {3, 4})) << reply.toHex().toStdString();
    }
}

TEST_F(Exchange, DeadlineGrowsWithWordsAndSpeed) {
    EXPECT_EQ(CommFunctions::ReadDeadline(1, 9600), 1028);
    EXPECT_EQ(CommFunctions::ReadDeadline(124, 9600), 4571);
    EXPECT_EQ(CommFunctions::ReadDeadline(12, 19200), 1691);
    link.setSettings(Text("19200,E,8,1"));
    Words words(12);
    const qint64 before = clock.MonotonicMs();
    LitMots(link, 1, 1, words);
    EXPECT_EQ(link.waitedMs, 1691);
    EXPECT_EQ(clock.MonotonicMs() - before, 25 + 1691) << "with the rest ahead of the frame";
}

TEST_F(Exchange, ModuleTypeFollowsTwoRegisters) {
    constexpr int Silent = -1;
    const std::array<int, 3> rows[] = {
        {Silent, 2, 0}, {0, 2, 0}, {1, Silent, 3}, {1, 2, 5}, {1, 0, 1},      {1, 1, 1},
        {1, 3, 1},      {2, 2, 2}, {2, Silent, 2}, {3, 2, 0}, {0x8001, 2, 0},
    };
    for (const auto& [family, variant, type] : rows) {
        link.sent.clear();
        link.answer = [values = std::pair(family, variant)](const QByteArray& frame) {
            const bool first = FakeModules::WordAt(frame, 2) == 132;
            const int value = first ? values.first : values.second;
            const QByteArray head = frame.left(2) + '\2';
            return value == Silent ? QByteArray()
                                   : WithCrc(head + char(value >> 8) + char(value & 0xFF));
        };
        EXPECT_EQ(GetModuleType(link, 5), type) << family << ", " << variant;
        if (family == 2) {
            EXPECT_EQ(link.sent.size(), 1) << "it has no variant";
        }
    }
}

TEST_F(Exchange, TellsWhyAnExchangeFailed) {
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

    // Without a port nothing answers, and nobody is told of a broadcast.
    link.setPortOpen(false);
    EXPECT_FALSE(Read(0x11, good));
    EXPECT_FALSE(Write(0x11, taken));
    EXPECT_TRUE(EcritUnMot(link, 0, 289, 0));
    EXPECT_EQ(diagnosis.LastOf(0x11), std::nullopt);
    EXPECT_EQ(diagnosis.SinceStart(0x11), counters);
}

TEST_F(Exchange, MeasuresTheRepliesOfTheHour) {
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

TEST_F(Exchange, KeepsTheFramesOfLate) {
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
