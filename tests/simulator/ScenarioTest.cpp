#include "simulator/Timeline.h"

#include <gmock/gmock.h>

using namespace Sim;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::FieldsAre;
using ::testing::HasSubstr;

namespace {

std::string Complaint(const std::string& text) {
    try {
        Bus bus([] { return 0ms; });
        Populate(bus, ParseScenario(text));
    } catch (const ScenarioError& error) {
        return error.what();
    }
    return "";
}

/// A scenario of one module and these further members.
std::string With(const std::string& members) {
    return R"({"modules":[{"address":1,"model":"Q7100"}],)" + members + "}";
}

std::string Step(const std::string& at, const std::string& command) {
    return R"("timeline":[{"at":)" + at + R"(,"do":")" + command + R"("}])";
}

} // namespace

TEST(Scenario, ReadsModulesAndSortsTheTimeline) {
    const auto scenario = ParseScenario(R"({
        "modules": [{"address": 64, "model": "P5500", "title": "Gates"}],
        "loop": 60,
        "timeline": [{"at": 2.25, "do": "normal 64 7"}, {"at": 1, "do": "active 64 7"}]})");
    EXPECT_THAT(scenario.modules, ElementsAre(FieldsAre(64, Model::P5500, "Gates")));
    EXPECT_EQ(scenario.loop, 60s);
    ASSERT_EQ(scenario.timeline.size(), 2U);
    EXPECT_EQ(scenario.timeline[0].at, 1s);
    EXPECT_EQ(scenario.timeline[1].at, 2250ms);
    EXPECT_EQ(scenario.timeline[1].command.verb, Verb::Normal);
    // Modules of the command line.
    EXPECT_THAT(ParseModule("12=Q6200XT"), FieldsAre(12, Model::Q6200XT, ""));
    for (const auto* text : {"", "12", "=Q7100", "0=Q7100", "65=Q7100", "1=q7100", "1x=Q7100"}) {
        EXPECT_THROW(ParseModule(text), ScenarioError) << text;
    }
}

TEST(Scenario, ComplaintsNameThePlace) {
    EXPECT_EQ(Complaint(With(R"("loop":5)")), "");
    const std::pair<std::string, std::string> cases[] = {
        {"{", "JSON"},
        {"[]", "object"},
        {"{}", "'modules' is missing"},
        {R"({"modules":{}})", "modules: a list"},
        {R"({"modules":[]})", "no modules"},
        {R"({"modules":[{"address":0,"model":"Q7100"}]})", "modules[0].address"},
        {R"({"modules":[{"address":65,"model":"Q7100"}]})", "modules[0].address"},
        {R"({"modules":[{"address":1.5,"model":"Q7100"}]})", "modules[0].address"},
        {R"({"modules":[{"address":1,"model":"Q9"}]})", "unknown model 'Q9'"},
        {R"({"modules":[{"address":1,"model":"Q7100","titel":""}]})", "unknown key 'titel'"},
        {R"({"modules":[{"address":1,"model":"Q7100"},{"address":1,"model":"P5000"}]})",
         "address 1 is given twice"},
        {With(R"("loop":0)"), "loop"},
        {With(R"("loop":"1")"), "loop"},
        {With(Step("-1", "ack 1")), "timeline[0].at"},
        {With(Step("1", "jump 1")), "timeline[0].do: unknown command 'jump'"},
        {With(Step("1", "ack 2")), "no module 2"},
        {With(Step("1", "active 1 15")), "no input 15"},
        {With(R"("loop":5,)" + Step("5", "ack 1")), "not within the loop"},
    };
    for (const auto& [text, complaint] : cases) {
        EXPECT_THAT(Complaint(text), HasSubstr(complaint)) << text;
    }
}

TEST(Scenario, TheDemonstrationIsValid) {
    const auto scenario =
        LoadScenario(std::filesystem::path(KORVANELLE_SOURCE_DIR) / "data/demo/scenario.json");
    Bus bus([] { return 0ms; });
    Populate(bus, scenario);
}

TEST(Timeline, LoopsAndGivesEachStepOnce) {
    Scenario scenario;
    scenario.loop = 10s;
    scenario.timeline = {{2s, {Verb::Active, 1, 1}}, {4s, {Verb::Normal, 1, 1}}};
    Timeline timeline(scenario);
    EXPECT_EQ(timeline.NextDue(), 2s);
    EXPECT_FALSE(timeline.Take(1999ms));
    EXPECT_EQ(timeline.Take(13s)->verb, Verb::Active);
    EXPECT_EQ(timeline.Take(13s)->verb, Verb::Normal);
    EXPECT_EQ(timeline.Take(13s)->verb, Verb::Active);
    EXPECT_FALSE(timeline.Take(13s));
    EXPECT_EQ(timeline.NextDue(), 14s);

    scenario.loop.reset();
    Timeline once(scenario);
    EXPECT_TRUE(once.Take(5s));
    EXPECT_TRUE(once.Take(5s));
    EXPECT_FALSE(once.Take(1h));
    EXPECT_FALSE(once.NextDue());
}
