#include "bus/Engine.h"

#include "bus/Miroirs.h"
#include "support/Frames.h"

#include <QSet>
#include <array>
#include <random>

namespace {

using Lines = std::vector<std::string>;

/// Rules from panel 5 to panel 6, neither of which the cycle polls.
class MirrorEngine : public Engine {
protected:
    MirrorEngine() {
        Start();
        for (const int address : {5, 6})
            AddModule(address, Models::Q7100).setActive(false);
    }

    static MirrorClass Rule(int toChannel, int kind) {
        MirrorClass rule;
        rule.setFromModule(5);
        rule.setToModule(6);
        rule.setToChannel(qint16(toChannel));
        rule.setMirrorType(qint16(kind));
        return rule;
    }
    /// What a round puts on the line.
    Lines Carried() {
        link->sent.clear();
        Rounds(1);
        return Frames::Said(link->sent);
    }

    Miroirs::Sink Sink() {
        return [this](const CommandPtr& command) { engine->SendCommand(command); };
    }

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
    struct {
        int source, fromChannel, target, toChannel;
        Lines expected;
    } const rows[] = {
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
    for (const auto& row : rows) {
        Site().Panel(5).setModel(quint8(row.source));
        Site().Panel(6).setModel(quint8(row.target));
        Site().Mirrors().RemoveAll();
        const auto from = qint16(row.fromChannel);
        Site().Mirrors().Add(5, from, 6, qint16(row.toChannel), MirrorClass::Permanent);
        Lines seen;
        for (const qint16 aff : {2, 3}) {
            const qsizetype traced = TraceLines().size();
            Miroirs::DoMirrors(EventClass(5, from, 1, aff), Sink());
            if (TraceLines().size() > traced)
                seen.push_back("traced");
            for (const std::string& frame : Carried())
                seen.push_back(frame);
        }
        EXPECT_EQ(seen, row.expected)
            << row.source << "/" << row.fromChannel << " to " << row.target << "/" << row.toChannel;
    }
    EXPECT_EQ(boxes, QStringList());
}

TEST_F(MirrorEngine, TakesTheRulesOfTheSourceInTheirOrder) {
    AddModule(7, Models::P5000).setActive(false);
    for (const int address : {1, 8})
        AddModule(address, Models::Q7000).setActive(false);
    Site().Mirrors().Add(5, 3, 8, 2, MirrorClass::Pulse);
    Site().Mirrors().Add(5, 3, 7, 1, MirrorClass::Permanent);  // nothing can be done with it
    Site().Mirrors().Add(5, 3, 6, 20, MirrorClass::Permanent); // an error
    Site().Mirrors().Add(5, 4, 6, 9, MirrorClass::Permanent);
    Site().Mirrors().Add(8, 3, 6, 9, MirrorClass::Permanent);
    Site().Mirrors().Add(5, 3, 6, 1, MirrorClass::Permanent);
    Site().Mirrors().Add(5, 3, 1, 2, MirrorClass::Pulse);
    Miroirs::DoMirrors(EventClass(5, 3, 1, 4), Sink());
    EXPECT_EQ(engine->Commands().Item(1)->SendTime(), clock.Now());
    EXPECT_EQ(TraceLines().last(), Text("2024-03-15 12:00:00 MIRROR ERROR   05030620"));
    EXPECT_EQ(Carried(), (Lines{"write 8 18 3", "write 6 17 2", "write 1 18 3"}));

    // Rules out of all bounds go to the trace.
    Site().Mirrors().Add(5, 7, 0, 3, MirrorClass::Permanent);
    Site().Mirrors().Add(5, 7, 65, 3, MirrorClass::Permanent);
    const qsizetype traced = TraceLines().size();
    EventClass event(5, 7, 0, 1);
    Miroirs::DoMirrors(event, Sink());
    EXPECT_EQ(boxes, QStringList());
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
                Miroirs::TraitementV3V3(EventClass(5, 1, param, aff), Rule(4, kind), Sink());
                EXPECT_EQ(Carried(),
                          value < 0 ? none : Lines{"write 6 20 " + std::to_string(value)})
                    << kind << " " << param << " " << aff;
            }
}

TEST_F(MirrorEngine, ChannelToLamp) {
    constexpr int Nothing = -2;
    Site().Panel(6).setModel(Models::Q6200XT);
    const struct {
        qint16 param, aff, before;
        int written;
        qint16 after;
    } rows[] = {
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
            expected.push_back("write 6 64 1");
        Lamp(20).setState(before);
        Lamp(20).setMirrorType(MirrorClass::NoKind);
        Miroirs::TraitementV3V2(EventClass(5, 1, param, aff), Rule(20, MirrorClass::Pulse), Sink());
        EXPECT_EQ(Lamp(20).State(), after) << "at once, ahead of the command";
        EXPECT_EQ(Lamp(20).MirrorType(),
                  written == Nothing ? MirrorClass::NoKind : MirrorClass::Pulse);
        EXPECT_EQ(Carried(), expected);
    }
}

TEST_F(MirrorEngine, PacksTheStatesOfADisplay) {
    Site().Panel(6).setModel(Models::Q6200XT);
    const int states[] = {1, 0, 2, 0, 3};
    for (int i = 0; i < 5; ++i)
        Lamp(i + 1).setState(qint16(states[i]));
    Lamp(6).setState(1);
    Lamp(15).setState(4);
    Lamp(24).setState(4);
    Miroirs::TraitementR2R2(EventClass(), Rule(0, 0), Sink());
    EXPECT_EQ(Carried(), Lines{"writes 6 25 12417 1 16384 0 2048"});

    // An acknowledgement leaves of each lamp what its kind says.
    struct {
        qint16 kind, before, after;
    } const rows[] = {{2, 3, 1}, {2, 4, 1}, {2, 2, 2}, {2, 1, 1}, {2, 0, 0}, {2, -1, 0},
                      {1, 3, 0}, {1, 1, 0}, {0, 3, 3}, {0, 1, 1}, {3, 4, 4}};
    int channel = 24;
    for (const auto& row : rows) {
        Lamp(channel).setMirrorType(row.kind);
        Lamp(channel--).setState(row.before);
    }
    Miroirs::TraitementR2R2(EventClass(), Rule(0, 0), Sink());
    channel = 24;
    for (const auto& row : rows)
        EXPECT_EQ(Lamp(channel--).State(), row.after) << row.kind << " " << row.before;
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
    rules.Add(1, 1, 2, 2, 1);
    rules.Add(9, 9, 3, 3, 1);
    rules.Add(2, 2, 3, 3, 1);
    rules.Add(3, 3, 4, 4, 1);
    EXPECT_TRUE(Miroirs::MirrorLoop(rules, 2, 2, 1, 1));
    EXPECT_TRUE(Miroirs::MirrorLoop(rules, 4, 4, 1, 1));
    EXPECT_TRUE(Miroirs::MirrorLoop(rules, 4, 4, 9, 9));
    EXPECT_FALSE(Miroirs::MirrorLoop(rules, 1, 1, 4, 4)) << "only along the rules";
    EXPECT_FALSE(Miroirs::MirrorLoop(rules, 4, 4, 1, 2));
    EXPECT_FALSE(Miroirs::MirrorLoop(rules, 4, 3, 1, 1));
    EXPECT_FALSE(Miroirs::MirrorLoop(rules, 4, 4, 4, 4));
    EXPECT_FALSE(Miroirs::MirrorLoop(MirrorClasses(), 1, 1, 1, 1));

    // Two ways from each layer to the next: the question goes once to each end point.
    MirrorClasses layers;
    for (qint16 layer = 1; layer < 60; ++layer)
        for (const qint16 from : {1, 2})
            for (const qint16 to : {1, 2})
                layers.Add(layer, from, qint16(layer + 1), to, 1);
    EXPECT_TRUE(Miroirs::MirrorLoop(layers, 60, 1, 1, 2));
    EXPECT_FALSE(Miroirs::MirrorLoop(layers, 60, 1, 1, 3));
    layers.Add(60, 1, 1, 1, 1);
    EXPECT_FALSE(Miroirs::MirrorLoop(layers, 60, 1, 9, 9)) << "a loop is no endless question";
}

// Against a walk over all chains, on lists with and without circles.
TEST_F(MirrorEngine, RefusesWhatWouldCloseACircle) {
    std::mt19937 random(20240315);
    const auto number = [&](int below) { return qint16(1 + random() % unsigned(below)); };
    int loops = 0;
    for (int round = 0; round < 400; ++round) {
        MirrorClasses rules;
        QList<std::array<qint16, 2>> edges;
        for (int rule = 0; rule < 8; ++rule) {
            edges += {number(6), number(6)};
            rules.Add(edges.last()[0], 1, edges.last()[1], 1, 1);
        }
        const qint16 from = number(6);
        const qint16 to = number(6);
        // Chains of more steps than there are panels go round in a circle.
        QList<qint16> ends{from};
        bool expected = false;
        for (int step = 1; step <= 7; ++step) {
            QSet<qint16> before;
            for (const auto& edge : edges) {
                if (ends.contains(edge[1]))
                    before.insert(edge[0]);
            }
            ends = before.values();
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
    EXPECT_FALSE(Miroirs::IsMirrorLoop(MirrorClasses(), 1, 1, 1, 1));
}

} // namespace
