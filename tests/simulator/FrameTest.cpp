#include "simulator/Frame.h"

#include <gmock/gmock.h>

using namespace Sim;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::FieldsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

namespace {

Bytes WithCrc(Bytes frame) {
    AppendCrc(frame);
    return frame;
}

const Bytes ReadFrame{0x01, 0x03, 0x00, 0x00, 0x00, 0x0A, 0xC5, 0xCD};

} // namespace

TEST(FrameCrc, KnownVectors) {
    EXPECT_EQ(WithCrc({0x01, 0x03, 0x00, 0x00, 0x00, 0x0A}), ReadFrame);
    const std::string check = "123456789";
    EXPECT_EQ(FrameCrc(Bytes(check.begin(), check.end())), 0x4B37);
}

TEST(FrameReader, AllFunctionsBackToBack) {
    FrameReader reader;
    for (const auto& frame :
         {ReadFrame, WithCrc({2, 6, 0x01, 0x21, 0xAB, 0xCD}),
          WithCrc({0, 16, 0x00, 0x19, 0x00, 0x02, 4, 0x30, 0x81, 0x00, 0x07})}) {
        reader.Feed(frame, 1s);
    }
    EXPECT_THAT(reader.Next(), Optional(FieldsAre(1, Function::ReadRegisters, 0, 10, IsEmpty())));
    EXPECT_THAT(reader.Next(),
                Optional(FieldsAre(2, Function::WriteRegister, 289, 1, ElementsAre(0xABCD))));
    EXPECT_THAT(reader.Next(), Optional(FieldsAre(0, Function::WriteRegisters, 25, 2,
                                                  ElementsAre(0x3081, 0x0007))));
    EXPECT_FALSE(reader.Next());
}

TEST(FrameReader, PiecesOfAFrameJoinUnlessSilenceParts) {
    const auto frame = WithCrc({3, 16, 0x00, 0x11, 0x00, 0x02, 4, 0, 3, 0, 2});
    FrameReader reader;
    auto time = 1000ms;
    for (const auto byte : frame) {
        EXPECT_FALSE(reader.Next());
        reader.Feed(Bytes{byte}, time += 5ms);
    }
    EXPECT_TRUE(reader.Next());

    reader.Feed(std::span(frame).first(6), time += 100ms);
    EXPECT_FALSE(reader.Next());
    reader.Feed(std::span(frame).subspan(6), time += FrameReader::Silence);
    EXPECT_FALSE(reader.Next());
    reader.Feed(ReadFrame, time += FrameReader::Silence);
    EXPECT_TRUE(reader.Next());
}

TEST(FrameReader, GarbageSpoilsAllUpToTheNextSilence) {
    auto badCrc = ReadFrame;
    badCrc.at(7) ^= 1;
    for (const auto& garbage : {badCrc, Bytes{0x01, 0x2B, 0x00}, Bytes{1, 16, 0, 17, 0, 2, 6}}) {
        FrameReader reader;
        reader.Feed(garbage, 1000ms);
        EXPECT_FALSE(reader.Next());
        reader.Feed(ReadFrame, 1010ms);
        EXPECT_FALSE(reader.Next());
        reader.Feed(ReadFrame, 1030ms);
        EXPECT_TRUE(reader.Next());
    }
}

TEST(Replies, LayoutOfEach) {
    const Request read{7, Function::ReadRegisters, 144, 2, {}};
    EXPECT_EQ(ReadReply(read, {0x1012, 0x3456}), WithCrc({7, 3, 4, 0x10, 0x12, 0x34, 0x56}));
    EXPECT_EQ(RefusalReply(read, Refusal::UnknownRegister), WithCrc({7, 0x83, 2}));
    const Request one{7, Function::WriteRegister, 289, 1, {0x0102}};
    EXPECT_EQ(WriteReply(one), WithCrc({7, 6, 0x01, 0x21, 0x01, 0x02}));
    const Request several{7, Function::WriteRegisters, 25, 3, {9, 9, 9}};
    EXPECT_EQ(WriteReply(several), WithCrc({7, 16, 0, 25, 0, 3}));
}
