#include "events/EventClass.h"

#include "platform/RunTimeError.h"

#include <gtest/gtest.h>

namespace {

TEST(EventClass, IdPacksTheFourFieldsAndSplitsAgain) {
    EventClass event;
    const auto expect = [&event](int panel, int chnl, int param, int aff, qint32 id) {
        EXPECT_EQ(event.Panel(), panel);
        EXPECT_EQ(event.Chnl(), chnl);
        EXPECT_EQ(event.Param(), param);
        EXPECT_EQ(event.Aff(), aff);
        EXPECT_EQ(event.ID(), id);
    };
    event.setID(0x03FF0101);
    expect(3, 255, 1, 1, 0x03FF0101);
    // A key by itself, fields behind it: the fields count.
    event.setChnl(24);
    event.setAff(4);
    event.setParam(0);
    event.setPanel(64);
    expect(64, 24, 0, 4, 0x40180004);
    event = EventClass(127, 255, 255, 255);
    EXPECT_EQ(event.ID(), 0x7FFFFFFF);
    // A key with the top bit set still splits by bytes, but none is packed.
    event.setID(qint32(0xFFFE0200));
    EXPECT_EQ(event.Panel(), 255);
    EXPECT_EQ(event.Chnl(), 254);
    EXPECT_EQ(event.Param(), 2);
    try {
        (void)event.ID();
        FAIL() << "no error";
    } catch (const platform::RunTimeError& error) {
        EXPECT_EQ(error.Number(), platform::errors::Overflow);
    }
}

} // namespace
