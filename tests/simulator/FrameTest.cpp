#include "simulator/Frame.h"

#include <gtest/gtest.h>

using namespace Sim;
using namespace std::chrono_literals;

namespace {

const Bytes ReadFrame{0x01, 0x03, 0x00, 0x00, 0x00, 0x0A, 0xC5, 0xCD};

} // namespace

TEST(FrameReader, PiecesOfAFrameJoinUnlessSilenceParts) {
    Bytes frame{3, 16, 0x00, 0x11, 0x00, 0x02, 4, 0, 3, 0, 2};
    AppendCrc(frame);
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
