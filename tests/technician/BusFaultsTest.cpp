// Faults of the wiring as the simulator plays them: each shows a picture of its own in the
// counters.

#include "TechnicianFixture.h"
#include "bus/BusDiagnosis.h"
#include "bus/CommFunctions.h"
#include "simulator/Command.h"
#include "support/SimulatedLine.h"

#include <sstream>

namespace {

using Outcome = BusDiagnosis::Outcome;

constexpr int Panels = 4;
constexpr int Faulty = 2;
constexpr int Reads = 60;

class BusFaultsTest : public TechnicianTest {
protected:
    BusFaultsTest() {
        for (int panel = 1; panel <= Panels; ++panel)
            bus.Add(panel, Sim::Model::Q7100, {});
        link->answer = [this](const QByteArray& frame) {
            const auto request = SimulatedLine::RequestOf(frame);
            return request ? SimulatedLine::BytesOf(bus.Handle(*request)) : QByteArray();
        };
    }
    static Sim::Milliseconds Time() {
        return Sim::Milliseconds(platform::Clock::Current().MonotonicMs());
    }
    void Do(const std::string& text) {
        std::ostringstream out;
        Sim::RunCommand(Sim::ParseCommand(text), bus, out);
    }
    /// Good replies of each panel to reads of so many words in turn.
    std::array<int, Panels + 1> Poll(int words) {
        std::array<int, Panels + 1> good{};
        for (int i = 0; i < Reads * Panels; ++i) {
            const int panel = 1 + i % Panels;
            Words values(words);
            good[size_t(panel)] += LitMots(*link, quint8(panel), 1, values) ? 1 : 0;
        }
        return good;
    }
    quint32 Count(Outcome outcome) const {
        return engine->Diagnosis().SinceStart(Faulty).Of(outcome);
    }

    Sim::Bus bus{Time};
};

} // namespace

TEST_F(BusFaultsTest, EachShowsAPictureOfItsOwn) {
    Do("terminator 2 off");
    const auto brief = Poll(1);
    const auto lengthy = Poll(12);
    Do("terminator 2 on");
    Do("twin 2 on");
    const auto twins = Poll(12);
    Do("twin 2 off");
    for (const auto& good : {brief, lengthy, twins}) {
        for (const size_t other : {1, 3, 4})
            EXPECT_EQ(good[other], Reads) << other;
    }
    EXPECT_LT(brief[Faulty], Reads);
    EXPECT_GT(lengthy[Faulty], 0);
    EXPECT_LT(lengthy[Faulty] * 2, brief[Faulty]);
    EXPECT_EQ(twins[Faulty], 0);
    EXPECT_EQ(Count(Outcome::NoAnswer), 0U) << "the replies are damaged";

    Do("swap on");
    EXPECT_EQ(Poll(1), (std::array<int, Panels + 1>{}));
    EXPECT_GT(Count(Outcome::NoAnswer), quint32(Reads) * 3 / 4) << "all but noise";
    Do("swap off");
    EXPECT_EQ(Poll(1), (std::array<int, Panels + 1>{0, Reads, Reads, Reads, Reads}));
}
