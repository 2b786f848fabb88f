#include "core/Bytes.h"

#include "core/Config.h"
#include "core/Record.h"
#include "support/PrintText.h"

#include <gtest/gtest.h>

namespace {

TEST(Bytes, ValReadsTheHeadOfAText) {
    struct Case {
        const char* text;
        double value;
    };
    for (const Case& test : {Case{"", 0}, Case{"12", 12}, Case{" -3.5 m", -3.5}, Case{"+7x", 7},
                             Case{"1.2.3", 1.2}, Case{"abc", 0}, Case{"-", 0}, Case{".", 0},
                             Case{".5", 0.5}, Case{"3-4", 3}, Case{"0012", 12}, Case{"1,5", 1}})
        EXPECT_EQ(Bytes::Val(Text(test.text)), test.value) << test.text;
    EXPECT_EQ(Bytes::Val(Text("\u0663")), 0) << "only ASCII digits are digits";
}

TEST(Bytes, WordsAndDigits) {
    EXPECT_EQ(Bytes::MakeWord(0xAB, 0xCD), 0xABCD);
    EXPECT_EQ(Bytes::HighByte(0xABCD) * 1000 + Bytes::LowByte(0xABCD), 0xAB * 1000 + 0xCD);
    EXPECT_EQ(QStringList({Bytes::Hex4(146), Bytes::Hex2(0x1FE), Bytes::Hex8(-1)}),
              TextList({"0092", "FE", "FFFFFFFF"}));
    EXPECT_EQ(QStringList({Bytes::Padded(7, 2), Bytes::Padded(123, 2), Bytes::Padded(-1, 2)}),
              TextList({"07", "123", "-01"}));
}

TEST(Bytes, BinToDecIsSignAndMagnitude) {
    const auto bin = [](const char* text, bool is16Bit = false) {
        return Config::BinToDec(Text(text), is16Bit);
    };
    EXPECT_EQ(bin(""), 0);
    EXPECT_EQ(bin("11111"), 31);
    EXPECT_EQ(bin("00010010"), 18);
    EXPECT_EQ(bin("1000000000000001", true), -1);
    EXPECT_EQ(bin("1000000000000001"), 32769);
    EXPECT_EQ(bin("11000000000000101", true), -5) << "only the last 16 digits count";
    EXPECT_EQ(bin("10000000000000000000000000000011"), -3);
    EXPECT_EQ(bin("01111111111111111111111111111111"), 2147483647);
}

TEST(Bytes, RecordFieldsAreCutAndPadded) {
    Record record(12, Text("................"));
    EXPECT_EQ(record.Text().size(), 12);
    record.Set({2, 4}, Text("ab"));
    EXPECT_EQ(record.Text(), Text("..ab  ......"));
    record.Set({8, 4}, Text("abcdefgh"));
    EXPECT_EQ(record.Text(), Text("..ab  ..abcd"));
    EXPECT_EQ(record.Get({8, 4}), Text("abcd"));
    EXPECT_EQ(Record(3, Text("x")).Text(), Text("x  "));
}

} // namespace
