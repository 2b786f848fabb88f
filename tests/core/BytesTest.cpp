#include "core/Bytes.h"

#include "core/Config.h"
#include "core/Record.h"
#include "support/PrintText.h"

#include <gtest/gtest.h>

namespace {

TEST(Bytes, ValReadsTheHeadOfAText) {
    using Case = std::pair<const char*, double>;
    for (const auto& [text, value] :
         {Case{"", 0}, Case{"12", 12}, Case{" -3.5 m", -3.5}, Case{"+7x", 7}, Case{"1.2.3", 1.2},
          Case{"abc", 0}, Case{"-", 0}, Case{".", 0}, Case{".5", 0.5}, Case{"3-4", 3},
          Case{"0012", 12}, Case{"1,5", 1}})
        EXPECT_EQ(Bytes::Val(Text(text)), value) << text;
    EXPECT_EQ(Bytes::Val(Text("\u0663")), 0) << "only ASCII digits are digits";
}

TEST(Bytes, BinToDecIsSignAndMagnitude) {
    for (const auto& [text, value] : {std::pair{"", 0},
                                      {"00010010", 18},
                                      {"1000000000000001", 32769},
                                      {"10000000000000000000000000000011", -3},
                                      {"01111111111111111111111111111111", 2147483647}})
        EXPECT_EQ(Config::BinToDec(Text(text)), value) << text;
    EXPECT_EQ(Config::BinToDec(Text("1000000000000001"), true), -1);
    EXPECT_EQ(Config::BinToDec(Text("11000000000000101"), true), -5) << "the last 16 digits count";
}

TEST(Bytes, RecordFieldsAreCutAndPadded) {
    Record record(12, Text("................"));
    record.Set({2, 4}, Text("ab"));
    record.Set({8, 4}, Text("abcdefgh"));
    EXPECT_EQ(record.Text(), Text("..ab  ..abcd"));
    EXPECT_EQ(record.Get({8, 4}), Text("abcd"));
    EXPECT_EQ(Record(3, Text("x")).Text(), Text("x  "));
}

} // namespace
