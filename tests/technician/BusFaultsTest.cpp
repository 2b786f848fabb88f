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
        link->setPortOpen(true);
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
    /// Reads so many words of each panel in turn; gives what that adds to the counters of each.
    QList<BusDiagnosis::Counters> Poll(int words) {
        QList<BusDiagnosis::Counters> before = Counters();
        for (quint32 i = 0; i < Reads * Panels; ++i) {
            Words values(words);
            LitMots(*link, quint8(1 + i % Panels), 1, values);
        }
        QList<BusDiagnosis::Counters> after = Counters();
        for (int i = 0; i < Panels; ++i)
            for (int outcome = 0; outcome < BusDiagnosis::OutcomeCount; ++outcome)
                after[i].outcomes[size_t(outcome)] -= before[i].outcomes[size_t(outcome)];
        return after;
    }
    QList<BusDiagnosis::Counters> Counters() const {
        QList<BusDiagnosis::Counters> all;
        for (int panel = 1; panel <= Panels; ++panel)
            all += engine->Diagnosis().SinceStart(panel);
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
        const BusDiagnosis::Counters& faulty = all[Faulty - 1];
        EXPECT_GT(faulty.Of(Outcome::BadCrc), Reads / 5);
        EXPECT_EQ(faulty.Answers() + faulty.Of(Outcome::BadCrc), Reads) << "it is never silent";
        for (const int other : {1, 3, 4})
            EXPECT_EQ(all[other - 1].Answers(), Reads) << other;
    }
    EXPECT_GT(lengthy[Faulty - 1].Answers(), 0U);
    EXPECT_LT(lengthy[Faulty - 1].Answers() * 2, brief[Faulty - 1].Answers());
    EXPECT_EQ(twins[Faulty - 1].Answers(), 0U);

    Do("swap on");
    for (const BusDiagnosis::Counters& panel : Poll(1)) {
        EXPECT_GT(panel.Of(Outcome::NoAnswer), Reads * 3 / 4);
        EXPECT_EQ(panel.Of(Outcome::NoAnswer) + panel.Of(Outcome::BadCrc), Reads) << "noise";
    }
    Do("swap off");
    for (const BusDiagnosis::Counters& panel : Poll(1))
        EXPECT_EQ(panel.Answers(), Reads) << "all is well again";
}
