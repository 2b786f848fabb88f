#include "Fixtures.h"

#include <gmock/gmock.h>

using namespace Sim;
using namespace std::chrono_literals;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

class ModuleTest : public BusTest {
protected:
    ModuleTest() {
        bus.Add(1, Model::Q7100, "q");
        bus.Add(2, Model::Q6200XT, "display");
        bus.Add(3, Model::Q7000, "old q");
        bus.Add(4, Model::P5000, "p");
        bus.Add(5, Model::P5500, "new p");
    }

    Module& At(int address) { return *bus.Find(address)->module; }

    /// The first words of all events in the memory.
    Words Events(int address) {
        const int count = Read(address, 144, 1).at(0);
        Words heads;
        for (int i = 0; i < count; ++i) {
            heads.push_back(Read(address, 146 + 2 * i, 1).at(0));
        }
        return heads;
    }

    Words TakeEvents(int address) {
        auto heads = Events(address);
        Write(address, 288, {static_cast<std::uint16_t>(heads.size())});
        return heads;
    }
};

} // namespace

TEST_F(ModuleTest, BlocksMustBeKnownAsAWhole) {
    EXPECT_EQ(Read(1, 1, 12).size(), 12U);
    EXPECT_THAT(Read(1, 1, 13), IsEmpty());
    EXPECT_EQ(Read(2, 1, 24).size(), 24U);
    EXPECT_EQ(Read(1, 146, 124).size(), 124U);
    EXPECT_THAT(Read(4, 144, 1), IsEmpty());
    EXPECT_THAT(Read(4, 49, 12), IsEmpty());
    EXPECT_EQ(Exchange(Reading(1, 1, 0)).at(2), 3);
    EXPECT_EQ(Exchange(Reading(1, 146, 126)).at(2), 3);
    EXPECT_THAT(Read(1, 0xFFFF, 2), IsEmpty());

    EXPECT_FALSE(Write(1, 28, {3, 3}));
    EXPECT_THAT(Read(1, 12, 1), ElementsAre(0));
    EXPECT_FALSE(Write(1, 132, {2}));
    EXPECT_FALSE(Write(4, 288, {1}));
}

TEST_F(ModuleTest, ChannelLifeInStatesQualifiersAndEvents) {
    time = 0x23456 * 100ms;
    At(1).SetContact(1, Contact::Active);
    At(1).SetContact(1, Contact::Active);
    EXPECT_THAT(Read(1, 146, 4), ElementsAre(0x1012, 0x3456, 0, 0));
    EXPECT_THAT(TakeEvents(1), ElementsAre(0x1012));
    EXPECT_THAT(Read(1, 1, 1), ElementsAre(1));
    EXPECT_THAT(Read(1, 49, 1), ElementsAre(0));

    At(1).SetContact(12, Contact::SecondFault);
    EXPECT_THAT(Read(1, 12, 1), ElementsAre(4));
    EXPECT_THAT(Read(1, 60, 1), ElementsAre(1));
    At(1).SetContact(14, Contact::CableFault);
    At(1).SetContact(1, Contact::Normal);
    EXPECT_THAT(TakeEvents(1), ElementsAre(0xC012, 0xC142, 0xE022, 0xE122, 0x1002));
    EXPECT_THAT(Read(1, 1, 1), ElementsAre(0));
}

TEST_F(ModuleTest, AcknowledgementSettlesStandingAndGoneAlarms) {
    At(1).SetContact(3, Contact::Active);
    At(1).SetContact(4, Contact::FirstFault);
    At(1).SetContact(5, Contact::Active);
    At(1).SetContact(5, Contact::Normal);
    TakeEvents(1);
    EXPECT_THAT(Read(1, 64, 1), ElementsAre(1));

    EXPECT_TRUE(Write(1, 67, {2}));
    EXPECT_THAT(TakeEvents(1), ElementsAre(0x3110, 0x4110, 0x5100, 0xF020));
    EXPECT_THAT(Read(1, 3, 3), ElementsAre(1, 1, 0));
    EXPECT_THAT(Read(1, 51, 2), ElementsAre(1, 1));
    EXPECT_THAT(Read(1, 64, 1), ElementsAre(0));

    // Nothing is left to acknowledge, and a contact that merely stands is no news.
    At(1).SetContact(3, Contact::Active);
    At(1).Acknowledge();
    EXPECT_THAT(TakeEvents(1), ElementsAre(0xF020));
    At(1).SetContact(4, Contact::Normal);
    EXPECT_THAT(TakeEvents(1), ElementsAre(0x4000, 0x4100));
}

TEST_F(ModuleTest, TheMemoryLosesTheOldest) {
    for (int channel = 1; channel <= 5; ++channel) {
        At(1).SetContact(channel, Contact::Active);
    }
    Write(1, 288, {2});
    EXPECT_THAT(Events(1), ElementsAre(0x3010, 0x4010, 0x5010));
    Write(1, 288, {0});
    EXPECT_EQ(Events(1).size(), 3U);
    Write(1, 288, {500});
    EXPECT_THAT(Events(1), IsEmpty());
    // A full memory loses the oldest.
    for (int i = 0; i < 101; ++i) {
        At(1).SetContact(6, Contact::Active);
        At(1).SetContact(6, Contact::Normal);
        EXPECT_THAT(Read(1, 144, 1), ElementsAre(std::min(2 * i + 2, 200)));
        EXPECT_THAT(Read(1, 146, 1), ElementsAre(0x6010));
    }
    At(1).SetContact(7, Contact::Active);
    EXPECT_THAT(Read(1, 144, 1), ElementsAre(200));
    EXPECT_THAT(Read(1, 146, 1), ElementsAre(0x6000));
}

TEST_F(ModuleTest, ClockCountsTenthsWrapsAndIsReset) {
    time = 24h - 1s;
    EXPECT_EQ(At(1).Clock(), 863'990U);
    time = (0x100000 + 5) * 100ms;
    EXPECT_EQ(At(1).Clock(), 5U);
    Write(1, 289, {1});
    EXPECT_EQ(At(1).Clock(), 5U);
    EXPECT_THAT(Exchange(Writing(0, 289, {0})), IsEmpty());
    time += 700ms;
    for (int address = 1; address <= 5; ++address) {
        EXPECT_EQ(At(address).Clock(), 7U) << address;
    }
}

TEST_F(ModuleTest, ForcedStatesStandInForTheWiring) {
    EXPECT_TRUE(Write(1, 17, {3}));
    EXPECT_TRUE(Write(1, 18, {2}));
    EXPECT_THAT(Read(1, 1, 3), ElementsAre(1, 3, 0));
    EXPECT_THAT(TakeEvents(1), ElementsAre(0x1010, 0x2010, 0x2130));
    EXPECT_THAT(At(1).Describe(), HasSubstr("states=130000000000 forced=320000000000"));

    // The wiring is hidden while forced, and shows again on release.
    At(1).SetContact(2, Contact::CableFault);
    EXPECT_THAT(Events(1), IsEmpty());
    EXPECT_TRUE(Write(1, 17, Words(12, 0)));
    EXPECT_THAT(TakeEvents(1), ElementsAre(0x1000, 0x2020, 0x2120));
    EXPECT_TRUE(Write(1, 17, Words(12, 0)));
    EXPECT_THAT(Events(1), IsEmpty());

    EXPECT_TRUE(Write(4, 28, {3}));
    EXPECT_THAT(Read(4, 1, 12), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1));
    EXPECT_TRUE(Write(4, 28, {1}));
    EXPECT_THAT(Read(4, 12, 1), ElementsAre(1));
}

TEST_F(ModuleTest, StatesOfTheModelsWithoutMemory) {
    At(5).SetContact(2, Contact::FirstFault);
    EXPECT_THAT(Read(5, 1, 3), ElementsAre(0, 3, 0));
    Write(5, 67, {2});
    EXPECT_THAT(Read(5, 2, 1), ElementsAre(1));
    At(5).SetContact(2, Contact::Normal);
    EXPECT_THAT(Read(5, 2, 1), ElementsAre(0));
}

TEST_F(ModuleTest, DisplayTellsAnAcknowledgementOnceAndHasLamps) {
    EXPECT_THAT(Read(2, 68, 1), ElementsAre(0));
    At(2).Acknowledge();
    EXPECT_THAT(Read(2, 68, 2), IsEmpty()); // refused, so the flag stays
    EXPECT_NE(Read(2, 68, 1).at(0), 0);
    EXPECT_THAT(Read(2, 68, 1), ElementsAre(0));
    Write(2, 67, {2});
    EXPECT_NE(Read(2, 68, 1).at(0), 0);

    // Lamps of channels 1 to 5 as 1, 0, 2, 0, 3; channel 24 as 4.
    EXPECT_TRUE(Write(2, 25, {12417, 0, 0, 0, 4 << 9}));
    EXPECT_THAT(Read(2, 1, 6), ElementsAre(1, 0, 2, 0, 3, 0));
    EXPECT_THAT(Read(2, 24, 1), ElementsAre(4));
    EXPECT_TRUE(Write(2, 2, {3}));
    EXPECT_TRUE(Write(2, 64, {1}));
    EXPECT_THAT(Read(2, 1, 3), ElementsAre(1, 3, 2));
    EXPECT_TRUE(Write(2, 0, {0}));
    EXPECT_THAT(Read(2, 1, 24), Each(0));
}
