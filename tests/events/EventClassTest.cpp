#include "events/EventClass.h"

#include "platform/RunTimeError.h"

#include <gtest/gtest.h>

namespace {

TEST(EventClass, IdPacksTheFourFieldsAndSplitsAgain) {
    EventClass event(3, 255, 1, 1);
    EXPECT_EQ(event.ID(), 0x03FF0101);
    EventClass other;
    other.setID(0x03FF0101);
    EXPECT_EQ(other.Panel(), 3);
    EXPECT_EQ(other.Chnl(), 255);
    EXPECT_EQ(other.Param(), 1);
    EXPECT_EQ(other.Aff(), 1);

    // A key by itself, fields behind it: the fields count.
    other.setChnl(24);
    other.setAff(4);
    other.setParam(0);
    other.setPanel(64);
    EXPECT_EQ(other.ID(), 0x40180004);

    // A key with the top bit set still splits by bytes.
    other.setID(qint32(0xFFFE0200));
    EXPECT_EQ(other.Panel(), 255);
    EXPECT_EQ(other.Chnl(), 254);
    EXPECT_EQ(other.Param(), 2);
    EXPECT_EQ(other.Aff(), 0);
}

TEST(EventClass, IdOverflowsAboveThirtyTwoBits) {
    EventClass event(127, 255, 255, 255);
    EXPECT_EQ(event.ID(), 0x7FFFFFFF);
    event.setPanel(128);
    try {
        (void)event.ID();
        FAIL() << "no error";
    } catch (const platform::RunTimeError& error) {
        EXPECT_EQ(error.Number(), platform::errors::Overflow);
    }
}

} // namespace
