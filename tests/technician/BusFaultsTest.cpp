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
constexpr quint32 Reads = 60;

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
    /// What becomes of reads of so many words of each panel in turn.
    std::array<BusDiagnosis::Counters, Panels + 1> Poll(int words) {
        std::array<BusDiagnosis::Counters, Panels + 1> all;
        for (quint32 i = 0; i < Reads * Panels; ++i) {
            const int panel = 1 + int(i % Panels);
            Words values(words);
            LitMots(*link, quint8(panel), 1, values);
            all[size_t(panel)].Count(*engine->Diagnosis().LastOf(panel), 0);
        }
        return all;
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
    for (const auto& all : {brief, lengthy, twins}) {
        const BusDiagnosis::Counters& faulty = all[Faulty];
        EXPECT_GT(faulty.Of(Outcome::BadCrc), Reads / 5);
        EXPECT_EQ(faulty.Answers() + faulty.Of(Outcome::BadCrc), Reads) << "it is never silent";
        for (const size_t other : {1, 3, 4})
            EXPECT_EQ(all[other].Answers(), Reads) << other;
    }
    EXPECT_GT(lengthy[Faulty].Answers(), 0U);
    EXPECT_LT(lengthy[Faulty].Answers() * 2, brief[Faulty].Answers());
    EXPECT_EQ(twins[Faulty].Answers(), 0U);

    Do("swap on");
    const auto swapped = Poll(1);
    Do("swap off");
    const auto well = Poll(1);
    for (size_t panel = 1; panel <= Panels; ++panel) {
        EXPECT_EQ(swapped[panel].Answers(), 0U);
        EXPECT_GT(swapped[panel].Of(Outcome::NoAnswer), Reads * 3 / 4) << "all but noise";
        EXPECT_EQ(well[panel].Answers(), Reads) << "all is well again";
    }
}
