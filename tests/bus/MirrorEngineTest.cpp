#include "bus/Engine.h"

#include "bus/Miroirs.h"

#include <QMultiHash>
#include <QSet>
#include <array>
#include <random>
#include <tuple>

namespace {

/// Rules from panel 5 to panel 6, neither of which the cycle polls.
class MirrorEngine : public Engine {
protected:
    MirrorEngine() {
        Start();
        for (const int address : {5, 6})
            AddModule(address, Models::Q7100).setActive(false);
    }

    static MirrorClass Rule(int toChannel, int kind) {
        MirrorClasses rules;
        rules.Add(5, 0, 6, qint16(toChannel), qint16(kind));
        return rules.Item(1);
    }
    /// What a round puts on the line.
    Lines Carried() {
        link->sent.clear();
        Rounds(1);
        return Sent();
    }

    Miroirs::Sink sink = [this](const CommandPtr& command) { engine->SendCommand(command); };

    ChannelClass& Lamp(int channel) { return Site().Panel(6).Channel(channel); }
};

TEST_F(MirrorEngine, CarriesOutWhatAPairOfModelsCan) {
    // What a rule writes on an acknowledgement and on a first fault tells its action.
    const Lines none;
    const Lines error = {"traced", "traced"};
    const Lines r3r3 = {"write 6 67 2"};
    const Lines r2r3 = {"write 6 67 2", "write 6 67 2"};
    const Lines r3r2 = {"writes 6 25 0 0 0 0 0"};
    const Lines r2r2 = {"writes 6 25 0 0 0 0 0", "writes 6 25 0 0 0 0 0"};
    const auto v3v3 = [](int registerNo) {
        return Lines(2, "write 6 " + std::to_string(registerNo) + " 2");
    };
    const auto v3v2 = [](int registerNo) {
        return Lines{"write 6 " + std::to_string(registerNo) + " 3", "write 6 64 1"};
    };
    const std::tuple<int, int, int, int, Lines> rows[] = {
        {1, 0, 1, 0, r3r3},      {1, 0, 3, 24, r3r3},      {3, 0, 1, 12, r3r3},
        {1, 0, 2, 0, r3r2},      {3, 0, 2, 0, r3r2},       {3, 0, 2, 1, error},
        {1, 0, 4, 0, none},      {3, 0, 5, 7, none},       {1, 0, 0, 0, none},
        {1, 1, 1, 1, v3v3(17)},  {3, 12, 3, 12, v3v3(28)}, {1, 5, 3, 0, error},
        {1, 5, 1, 13, error},    {3, 5, 1, 20, error},     {3, 5, 1, -1, error},
        {3, 5, 2, 20, v3v2(20)}, {1, 12, 2, 24, v3v2(24)}, {1, 1, 2, 1, v3v2(1)},
        {1, 5, 2, 0, error},     {1, 5, 2, 25, error},     {1, 5, 4, 3, none},
        {3, 5, 5, 0, none},      {3, 5, 0, 0, none},       {1, 13, 1, 1, error},
        {3, 24, 2, 1, error},    {1, -1, 1, 1, error},     {1, 13, 4, 1, error},
        {2, 0, 1, 0, r2r3},      {2, 0, 3, 0, r2r3},       {2, 0, 3, 1, error},
        {2, 0, 2, 0, r2r2},      {2, 0, 2, 1, error},      {2, 0, 4, 0, none},
        {2, 0, 5, 1, none},      {2, 1, 1, 1, error},      {2, 24, 2, 24, error},
        {2, 1, 5, 1, error},     {4, 0, 1, 0, error},      {4, 1, 5, 1, error},
        {5, 1, 1, 1, error},     {5, 0, 5, 0, error},      {0, 1, 1, 1, error},
    };
    for (const auto& [source, fromChannel, target, toChannel, expected] : rows) {
        Site().Panel(5).setModel(quint8(source));
        Site().Panel(6).setModel(quint8(target));
        Site().Mirrors().RemoveAll();
        const auto from = qint16(fromChannel);
        Site().Mirrors().Add(5, from, 6, qint16(toChannel), MirrorClass::Permanent);
        Lines seen;
        for (const qint16 aff : {2, 3}) {
            const qsizetype traced = TraceLines().size();
            Miroirs::DoMirrors(EventClass(5, from, 1, aff), sink);
            if (TraceLines().size() > traced)
                seen.emplace_back("traced");
            std::ranges::copy(Carried(), std::back_inserter(seen));
        }
        EXPECT_EQ(seen, expected) << source << "/" << fromChannel << " to " << target << "/"
                                  << toChannel;
    }
}

TEST_F(MirrorEngine, TakesTheRulesOfTheSourceInTheirOrder) {
    AddModule(7, Models::P5000).setActive(false);
    for (const int address : {1, 8})
        AddModule(address, Models::Q7000).setActive(false);
    // With 7 nothing can be done, channel 20 is an error, and two rules are of other sources.
    const std::array<qint16, 5> rules[] = {{5, 3, 8, 2, 2}, {5, 3, 7, 1, 1}, {5, 3, 6, 20, 1},
                                           {5, 4, 6, 9, 1}, {8, 3, 6, 9, 1}, {5, 3, 6, 1, 1},
                                           {5, 3, 1, 2, 2}};
    for (const auto& [from, fromChannel, to, toChannel, kind] : rules)
        Site().Mirrors().Add(from, fromChannel, to, toChannel, kind);
    Miroirs::DoMirrors(EventClass(5, 3, 1, 4), sink);
    EXPECT_EQ(engine->Commands().Item(1)->SendTime(), clock.Now());
    EXPECT_EQ(TraceLines().last(), Text("2024-03-15 12:00:00 MIRROR ERROR   05030620"));
    EXPECT_EQ(Carried(), (Lines{"write 8 18 3", "write 6 17 2", "write 1 18 3"}));

    // Rules out of all bounds go to the trace.
    Site().Mirrors().Add(5, 7, 0, 3, MirrorClass::Permanent);
    Site().Mirrors().Add(5, 7, 65, 3, MirrorClass::Permanent);
    const qsizetype traced = TraceLines().size();
    Miroirs::DoMirrors(EventClass(5, 7, 0, 1), sink);
    EXPECT_EQ(TraceLines().mid(traced).filter(Text("MIRROR ERROR")).size(), 2);
}

TEST_F(MirrorEngine, ChannelToChannelByQualifierStateAndKind) {
    const Lines none;
    for (const int kind : {MirrorClass::NoKind, MirrorClass::Permanent, MirrorClass::Pulse})
        for (qint16 param = 0; param <= 2; ++param)
            for (qint16 aff = 0; aff <= 4; ++aff) {
                int value = -1;
                if (aff == 0)
                    value = 0;
                else if (param == 0 && aff == 1)
                    value = 3;
                else if (param == 1 && aff >= 2 && kind != MirrorClass::NoKind)
                    value = kind == MirrorClass::Permanent ? 2 : 3;
                Miroirs::TraitementV3V3(EventClass(5, 1, param, aff), Rule(4, kind), sink);
                EXPECT_EQ(Carried(),
                          value < 0 ? none : Lines{"write 6 20 " + std::to_string(value)})
                    << kind << " " << param << " " << aff;
            }
}

TEST_F(MirrorEngine, ChannelToLamp) {
    constexpr int Nothing = -2;
    Site().Panel(6).setModel(Models::Q6200XT);
    const std::tuple<qint16, qint16, qint16, int, qint16> rows[] = {
        {1, 3, 0, 3, 3},        {1, 4, 1, 4, 4},       {0, 3, 1, Nothing, 1},
        {2, 3, 1, Nothing, 1},  {0, 1, 0, 1, 1},       {0, 1, 3, 1, 1},
        {1, 1, 3, Nothing, 3},  {0, 0, 3, 0, 0},       {0, 0, 0, 0, 0},
        {1, 0, 1, 0, 0},        {2, 0, 1, 0, 0},       {1, 0, 2, Nothing, -1},
        {1, 0, 4, Nothing, -1}, {1, 0, 0, Nothing, 0}, {1, 0, -1, Nothing, -1},
        {1, 2, 3, Nothing, 3},  {0, 2, 3, Nothing, 3},
    };
    for (const auto& [param, aff, before, written, after] : rows) {
        SCOPED_TRACE(::testing::Message() << param << " " << aff << " " << before);
        Lines expected;
        if (written != Nothing)
            expected.push_back("write 6 20 " + std::to_string(written));
        if (written >= 3)
            expected.emplace_back("write 6 64 1");
        Lamp(20).setState(before);
        Lamp(20).setMirrorType(MirrorClass::NoKind);
        Miroirs::TraitementV3V2(EventClass(5, 1, param, aff), Rule(20, MirrorClass::Pulse), sink);
        EXPECT_EQ(Lamp(20).State(), after) << "at once, ahead of the command";
        EXPECT_EQ(Lamp(20).MirrorType(),
                  written == Nothing ? MirrorClass::NoKind : MirrorClass::Pulse);
        EXPECT_EQ(Carried(), expected);
    }
}

TEST_F(MirrorEngine, PacksTheStatesOfADisplay) {
    Site().Panel(6).setModel(Models::Q6200XT);
    for (const auto& [channel, state] : {std::pair(1, 1), {3, 2}, {5, 3}, {6, 1}, {15, 4}, {24, 4}})
        Lamp(channel).setState(qint16(state));
    Miroirs::TraitementR2R2(EventClass(), Rule(0, 0), sink);
    EXPECT_EQ(Carried(), Lines{"writes 6 25 12417 1 16384 0 2048"});

    // An acknowledgement leaves of each lamp what its kind says.
    const std::array<qint16, 3> rows[] = {{2, 3, 1}, {2, 4, 1},  {2, 2, 2}, {2, 1, 1},
                                          {2, 0, 0}, {2, -1, 0}, {1, 3, 0}, {1, 1, 0},
                                          {0, 3, 3}, {0, 1, 1},  {3, 4, 4}};
    for (const auto& [kind, before, after] : rows) {
        Lamp(24).setMirrorType(kind);
        Lamp(24).setState(before);
        Miroirs::TraitementR2R2(EventClass(), Rule(0, 0), sink);
        EXPECT_EQ(Lamp(24).State(), after) << kind << " " << before;
    }
}

TEST_F(MirrorEngine, ADisplayThatIsAcknowledgedIsRefreshedAndPassesItOn) {
    AddModule(9, Models::Q6200XT).setActive(true);
    AddModule(10, Models::Q6200XT).setActive(false);
    Site().Mirrors().Add(9, 0, 6, 0, MirrorClass::NoKind);
    Site().Mirrors().Add(9, 0, 10, 0, MirrorClass::NoKind);
    ChannelClass& lamp = Site().Panel(9).Channel(7);
    lamp.setState(3);
    lamp.setMirrorType(MirrorClass::Pulse);
    modules[9][68] = 1;
    Rounds(1);
    modules[9][68] = 0;
    EXPECT_EQ(Ids(), QList<int>{0x09000002});
    EXPECT_EQ(lamp.State(), 1);
    Lines carried = Carried();
    carried.resize(3);
    EXPECT_EQ(carried, (Lines{"writes 9 25 0 8 0 0 0", "write 6 67 2", "writes 10 25 0 0 0 0 0"}));
}

TEST_F(MirrorEngine, FindsAChainOfRules) {
    MirrorClasses rules;
    for (const auto& [from, to] : {std::pair(1, 2), {9, 3}, {2, 3}, {3, 4}})
        rules.Add(qint16(from), qint16(from), qint16(to), qint16(to), 1);
    // Only along the rules, and from another end point.
    const std::tuple<std::array<qint16, 4>, bool> rows[] = {
        {{2, 2, 1, 1}, true},  {{4, 4, 1, 1}, true},  {{4, 4, 9, 9}, true}, {{1, 1, 4, 4}, false},
        {{4, 4, 1, 2}, false}, {{4, 3, 1, 1}, false}, {{4, 4, 4, 4}, false}};
    for (const auto& [ends, leads] : rows)
        EXPECT_EQ(Miroirs::MirrorLoop(rules, ends[0], ends[1], ends[2], ends[3]), leads)
            << ends[0] << ends[1] << ends[2] << ends[3];

    // Two ways from each layer to the next: the question goes once to each end point.
    for (qint16 layer = 1; layer < 60; ++layer)
        for (const qint16 way : {0, 1, 2, 3})
            rules.Add(layer, qint16(11 + way / 2), qint16(layer + 1), qint16(11 + way % 2), 1);
    EXPECT_TRUE(Miroirs::MirrorLoop(rules, 60, 11, 1, 12));
    rules.Add(60, 11, 1, 11, 1);
    EXPECT_FALSE(Miroirs::MirrorLoop(rules, 60, 11, 1, 13)) << "a loop is no endless question";
}

// Against a walk over all chains, on lists with and without circles.
TEST_F(MirrorEngine, RefusesWhatWouldCloseACircle) {
    std::mt19937 random(20240315);
    const auto number = [&](int below) { return qint16(1 + random() % unsigned(below)); };
    int loops = 0;
    for (int round = 0; round < 400; ++round) {
        MirrorClasses rules;
        QMultiHash<qint16, qint16> sources;
        for (int rule = 0; rule < 8; ++rule) {
            const qint16 from = number(6);
            const qint16 to = number(6);
            sources.insert(to, from);
            rules.Add(from, 1, to, 1, 1);
        }
        const qint16 from = number(6);
        const qint16 to = number(6);
        // Chains of more steps than there are panels go round in a circle.
        QSet<qint16> ends{from};
        bool expected = false;
        for (int step = 1; step <= 7; ++step) {
            QSet<qint16> before;
            for (const qint16 end : ends)
                for (const qint16 source : sources.values(end))
                    before.insert(source);
            ends = before;
            expected = expected || ends.contains(to) || (step == 7 && !ends.isEmpty());
        }
        EXPECT_EQ(Miroirs::IsMirrorLoop(rules, from, 1, to, 1), expected) << round;
        loops += expected ? 1 : 0;
    }
    EXPECT_GT(loops, 50);
    EXPECT_LT(loops, 350);
    MirrorClasses circle;
    for (qint16 panel = 1; panel <= 60; ++panel)
        for (qint16 channel = 1; channel <= 24; ++channel)
            circle.Add(panel, channel, qint16(channel == 24 ? panel % 60 + 1 : panel),
                       qint16(channel % 24 + 1), 1);
    EXPECT_TRUE(Miroirs::IsMirrorLoop(circle, 7, 7, 64, 1)) << "a damaged list ends too";
    EXPECT_FALSE(Miroirs::IsMirrorLoop(circle, 61, 1, 7, 7));
}

} // namespace
