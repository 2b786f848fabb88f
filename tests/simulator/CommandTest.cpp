#include "simulator/Command.h"
#include "Fixtures.h"

#include <gmock/gmock.h>
#include <sstream>

using namespace Sim;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class CommandTest : public BusTest {
protected:
    CommandTest() {
        bus.Add(3, Model::Q7100, "Pump room");
        bus.Add(4, Model::Q6200XT, "");
        bus.Add(5, Model::P5000, "");
    }

    void Do(const std::string& text) {
        const auto command = ParseCommand(text);
        CheckCommand(command, bus);
        RunCommand(command, bus, out);
    }

    std::ostringstream out;
};

} // namespace

TEST_F(CommandTest, WiringAndShow) {
    for (const auto* text : {"active 3 7", "fault  3 8 first", "fault 3 9 second",
                             "fault 3 10 cable", "active 3 11", "normal 3 11"}) {
        Do(text);
    }
    EXPECT_THAT(Read(3, 7, 5), ElementsAre(1, 3, 4, 2, 0));
    time = 12'300ms;
    Do("show 3");
    EXPECT_EQ(out.str(), "show 3 Q7100 states=000000134200 forced=000000000000 waiting=9 clock=123 "
                         "horn=1 lamps=0 title=Pump room\n");
    Do("ack 3");
    EXPECT_THAT(Read(3, 7, 5), ElementsAre(1, 1, 1, 1, 0));
}

TEST_F(CommandTest, RefusedCommands) {
    for (const auto* text :
         {"", "dance 3", "active", "active 3", "active 3 7 8", "active 3 0", "active 3 x",
          "active 0 1", "active 65 1", "active -3 1", "fault 3 7 third", "delay 3 -1", "corrupt 3",
          "quit 3", "mute", "twin 3", "twin 3 yes", "swap", "swap 3 on"}) {
        EXPECT_THROW(ParseCommand(text), CommandError) << text;
    }
    for (const auto* text : {"active 9 1", "show 9", "active 3 15", "active 5 13", "normal 4 1"}) {
        EXPECT_THROW(CheckCommand(ParseCommand(text), bus), CommandError) << text;
    }
    EXPECT_NO_THROW(CheckCommand(ParseCommand("active 3 14"), bus));
    EXPECT_NO_THROW(CheckCommand(ParseCommand("quit"), bus));
}

TEST_F(CommandTest, WritesAreToldOnceAndAMutedModuleReceivesNone) {
    std::vector<int> told;
    bus.setWriteListener([&told](const Request& request) { told.push_back(request.address); });
    Write(3, 67, {2});
    Read(3, 1, 12);
    Exchange(Writing(9, 67, {2}));
    Do("mute 3");
    EXPECT_THAT(Exchange(Reading(3, 144, 1)), IsEmpty());
    EXPECT_THAT(Exchange(Writing(3, 17, {3})), IsEmpty());
    time = 5s;
    Exchange(Writing(0, 289, {0}));
    Do("unmute 3");
    EXPECT_THAT(Read(3, 1, 1), ElementsAre(0));
    EXPECT_EQ(bus.Find(3)->module->Clock(), 50U);
    EXPECT_EQ(bus.Find(4)->module->Clock(), 0U);
    EXPECT_THAT(told, ElementsAre(3, 0)) << "once, when received";
}
