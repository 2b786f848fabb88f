#include "bus/CommFunctions.h"

#include "support/Bench.h"
#include "support/FakeLink.h"
#include "support/FakeModules.h"

#include <array>

namespace {

class Exchange : public QuietBench {
protected:
    Exchange() { link.setPortOpen(true); }
    void Answer(const QByteArray& reply) {
        link.answer = [reply](const QByteArray&) { return reply; };
    }
    FakeLink link;
};

TEST_F(Exchange, FramesAreExactToTheByte) {
    Words words(3);
    LitMots(link, 0x11, 0x6B, words);
    EcritUnMot(link, 0x11, 1, 3);
    EcritMots(link, 0x11, 1, {10, 0x0102});
    LitMots(link, 64, 288, words);
    EcritUnMot(link, 64, 289, -1);
    const QList<QByteArray> expected = {FromHex("1103006B00037687"), FromHex("1106000100039A9B"),
                                        FromHex("11100001000204000A0102C6F0"),
                                        WithCrc(FromHex("400301200003")),
                                        WithCrc(FromHex("40060121FFFF"))};
    EXPECT_EQ(link.sent, expected);
    EXPECT_TRUE(link.readyToSend);
    // The length is counted short of the last byte: the CRC's own two follow in a frame.
    EXPECT_EQ(quint16(CommFunctions::CRC16("123456789xx", 9)), 0x4B37);
    for (const int length : {3, 9})
        EXPECT_EQ(CommFunctions::CRC16(FromHex("1103006B"), length), 1);
}

TEST_F(Exchange, TakesAGoodReplyWithoutWaiting) {
    // The byte count of the reply is not looked at.
    for (const char* count : {"06", "00", "FF"}) {
        Answer(WithCrc(FromHex("1103") + FromHex(count) + FromHex("022B8000FFFF")));
        Words words(3);
        EXPECT_TRUE(LitMots(link, 0x11, 0x6B, words));
        EXPECT_EQ(words, (Words{0x022B, -32768, -1}));
    }
    // Nor are CRC, register and number in the reply to a write of several.
    const QByteArray good = WithCrc(FromHex("111000010002"));
    for (const QByteArray& reply : {good, FromHex("1110FFFF00000000")}) {
        Answer(reply);
        EXPECT_TRUE(EcritMots(link, 0x11, 1, {10, 258}));
    }
    EXPECT_EQ(link.waitedMs, 0);
    for (const QByteArray& reply : {QByteArray(), good.chopped(1), good + '\1',
                                    WithCrc(FromHex("121000010002")), WithCrc(FromHex("110600010002"))}) {
        Answer(reply);
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

TEST_F(Exchange, WithoutAPortNothingAnswersAndNoBoxComes) {
    link.setPortOpen(false);
    Words words{7};
    EXPECT_FALSE(LitMots(link, 1, 144, words));
    EXPECT_EQ(words, Words{7});
    EXPECT_FALSE(EcritUnMot(link, 1, 67, 2));
    EXPECT_TRUE(EcritUnMot(link, 0, 289, 0));
    EXPECT_EQ(link.sent, QList<QByteArray>());
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

} // namespace
