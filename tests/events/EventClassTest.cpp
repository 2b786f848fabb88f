#include "events/EventClass.h"

#include "platform/RunTimeError.h"

#include <array>
#include <gtest/gtest.h>

namespace {

TEST(EventClass, IdPacksTheFourFieldsAndSplitsAgain) {
    EventClass event;
    // With the top bit set a key still splits by bytes, but none is packed.
    const std::pair<quint32, std::array<int, 4>> rows[] = {{0x03FF0101U, {3, 255, 1, 1}},
                                                           {0x40180004U, {64, 24, 0, 4}},
                                                           {0xFFFE0200U, {255, 254, 2, 0}}};
    for (const auto& [key, fields] : rows) {
        event.setID(qint32(key));
        EXPECT_EQ((std::array<int, 4>{event.Panel(), event.Chnl(), event.Param(), event.Aff()}),
                  fields);
        if (key < 0x80000000U) {
            EXPECT_EQ(event.ID(), qint32(key));
        }
    }
    EXPECT_THROW((void)event.ID(), platform::RunTimeError);
    EXPECT_EQ(EventClass(127, 255, 255, 255).ID(), 0x7FFFFFFF);
}

} // namespace
