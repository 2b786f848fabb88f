#include "events/Decisions.h"

#include "model/Models.h"
#include "platform/RunTimeError.h"
#include "support/Bench.h"

#include <array>

namespace {

/// Which routing options, by bit, let an event through to a consumer: "-" none, "*" all events
/// of the kind whatever the options.
struct Row {
    qint16 chnl, param, aff;
    const char* display;
    const char* record; // history and printer
    const char* horn;
};

// Presence of a panel (only the loss sounds), the system, the panel as a whole, channels, and
// what is no event at all.
const Row Table[] = {
    {255, 1, 0, "0", "0", "0"},  {255, 1, 1, "0", "0", "-"}, {254, 0, 0, "-", "4", "-"},
    {254, 0, 1, "-", "*", "-"},  {254, 0, 2, "-", "*", "-"}, {254, 0, 3, "-", "*", "-"},
    {254, 0, 4, "-", "*", "-"},  {254, 0, 5, "-", "*", "-"}, {254, 0, 6, "-", "*", "-"},
    {0, 0, 0, "-", "-", "-"},    {0, 0, 1, "-", "-", "-"},   {0, 1, 1, "-", "-", "-"},
    {0, 0, 2, "3", "3", "-"},    {0, 1, 3, "3", "3", "-"},   {7, 0, 0, "2", "2", "2"},
    {7, 0, 1, "2", "2", "2"},    {7, 1, 1, "1", "1", "1"},   {7, 2, 1, "-", "-", "-"},
    {7, 0, 2, "12", "12", "12"}, {7, 1, 2, "1", "1", "1"},   {7, 5, 2, "1", "1", "1"},
    {7, 0, 3, "2", "2", "2"},    {7, 1, 3, "1", "1", "1"},   {7, 2, 3, "-", "-", "-"},
    {1, 0, 4, "2", "2", "2"},    {24, 0, 4, "2", "2", "2"},  {24, 1, 0, "1", "1", "1"},
    {25, 0, 1, "-", "-", "-"},   {30, 1, 2, "-", "-", "-"},  {253, 0, 1, "-", "-", "-"},
    {256, 0, 1, "-", "-", "-"},
};

bool Expected(const QByteArray& options, int mask) {
    for (int bit = 0; bit <= 4; ++bit)
        if ((mask & (1 << bit)) != 0 && options.contains(char('0' + bit)))
            return true;
    return options == "*";
}

class Decisions : public QuietBench {
protected:
    static constexpr int Address = 9;

    static void SetFlags(bool screen, bool histo, bool printer, bool klaxon) {
        for (int i = 1; i <= PanelClass::MaxChannel; ++i) {
            ChannelClass& channel = Site().Panel(Address).Channel(i);
            channel.setScrAlm(screen);
            channel.setHisto(histo);
            channel.setPrtAlm(printer);
            channel.setKlaxon(klaxon);
        }
    }
    /// What screen, history, printer and horn decide, and what is expected of them.
    static std::array<bool, 4> Decided(const EventClass& event) {
        return {IsToDisplay(event), IsToHisto(event), IsToPrint(event), IsToKlaxon(event)};
    }
    static std::array<bool, 4> Wanted(const Row& row, int mask) {
        const bool record = Expected(row.record, mask);
        return {Expected(row.display, mask), record, record, Expected(row.horn, mask)};
    }
};

TEST_F(Decisions, FollowOptionsForEveryKindOfEventAndModel) {
    SetFlags(true, true, true, true);
    for (int model = 0; model <= 5; ++model) {
        AddPanel(Address, model);
        const bool neverSounds = model == Models::P5000 || model == Models::P5500;
        for (int mask = 0; mask < 32; ++mask) {
            for (const Row& row : Table) {
                SCOPED_TRACE(::testing::Message()
                             << "chnl " << row.chnl << " param " << row.param << " aff " << row.aff
                             << " mask " << mask << " model " << model);
                const EventClass event(Address, row.chnl, row.param, row.aff);
                auto wanted = Wanted(row, mask);
                wanted[3] = wanted[3] && !neverSounds;
                // Each decision has its own row of options: the others are the opposite.
                for (size_t which = 0; which < 4; ++which) {
                    const auto of = [&](size_t other) { return which == other ? mask : ~mask; };
                    SetOptions(of(0), of(1), of(2), of(3));
                    EXPECT_EQ(Decided(event)[which], wanted[which]) << which;
                }
            }
        }
    }
}

TEST_F(Decisions, AChannelWithoutItsFlagGoesNowhere) {
    AddPanel(Address, Models::Q7100);
    SetOptions(31, 31, 31, 31);
    // The flag under test is down, the three others are up.
    for (size_t flag = 0; flag < 4; ++flag) {
        SetFlags(flag != 0, flag != 1, flag != 2, flag != 3);
        for (const Row& row : Table) {
            if (!Family::IsChannel(row.chnl))
                continue;
            auto wanted = Wanted(row, 31);
            wanted[flag] = false;
            EXPECT_EQ(Decided(EventClass(Address, row.chnl, row.param, row.aff)), wanted) << flag;
        }
    }
    // Events of the application need no panel.
    EXPECT_EQ(Decided(EventClass(0, Family::System, 0, SystemEvents::ApplicationStarted)),
              (std::array{false, true, true, false}));
}

// With the top bit set a key still splits by bytes, but none is packed.
TEST(EventClass, IdPacksTheFourFieldsAndSplitsAgain) {
    EventClass event;
    for (const auto& [key, fields] :
         {std::pair(0x03FF0101U, std::array{3, 255, 1, 1}), {0xFFFE0200U, {255, 254, 2, 0}}}) {
        event.setID(qint32(key));
        EXPECT_EQ((std::array<int, 4>{event.Panel(), event.Chnl(), event.Param(), event.Aff()}),
                  fields);
    }
    EXPECT_THROW((void)event.ID(), platform::RunTimeError);
    EXPECT_EQ(EventClass(64, 24, 0, 4).ID(), 0x40180004);
    EXPECT_EQ(EventClass(127, 255, 255, 255).ID(), 0x7FFFFFFF);
}

} // namespace
