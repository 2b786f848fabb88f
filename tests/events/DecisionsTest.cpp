#include "events/Decisions.h"

#include "model/Models.h"
#include "support/Bench.h"

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

bool Expected(const char* options, int mask) {
    if (*options == '*')
        return true;
    for (const char* option = options; *option != '\0' && *option != '-'; ++option)
        if ((mask & (1 << (*option - '0'))) != 0)
            return true;
    return false;
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
};

TEST_F(Decisions, FollowOptionsForEveryKindOfEventAndModel) {
    SetFlags(true, true, true, true);
    for (int model = 0; model <= 5; ++model) {
        AddPanel(Address, model);
        const bool neverSounds = model == Models::P5000 || model == Models::P5500;
        for (int mask = 0; mask < 32; ++mask) {
            for (const Row& row : Table) {
                const EventClass event(Address, row.chnl, row.param, row.aff);
                SCOPED_TRACE(::testing::Message()
                             << "chnl " << row.chnl << " param " << row.param << " aff " << row.aff
                             << " mask " << mask << " model " << model);
                // Each decision has its own row of options: the others are the opposite.
                SetOptions(mask, ~mask, ~mask, ~mask);
                EXPECT_EQ(IsToDisplay(event), Expected(row.display, mask));
                SetOptions(~mask, mask, ~mask, ~mask);
                EXPECT_EQ(IsToHisto(event), Expected(row.record, mask));
                SetOptions(~mask, ~mask, mask, ~mask);
                EXPECT_EQ(IsToPrint(event), Expected(row.record, mask));
                SetOptions(~mask, ~mask, ~mask, mask);
                EXPECT_EQ(IsToKlaxon(event), !neverSounds && Expected(row.horn, mask));
            }
        }
    }
}

TEST_F(Decisions, AChannelWithoutItsFlagGoesNowhere) {
    AddPanel(Address, Models::Q7100);
    SetOptions(31, 31, 31, 31);
    for (int flag = 0; flag < 4; ++flag) {
        // The flag under test is down, the three others are up.
        SetFlags(flag != 0, flag != 1, flag != 2, flag != 3);
        for (const Row& row : Table) {
            if (!Family::IsChannel(row.chnl))
                continue;
            const EventClass event(Address, row.chnl, row.param, row.aff);
            EXPECT_EQ(IsToDisplay(event), flag != 0 && Expected(row.display, 31));
            EXPECT_EQ(IsToHisto(event), flag != 1 && Expected(row.record, 31));
            EXPECT_EQ(IsToPrint(event), flag != 2 && Expected(row.record, 31));
            EXPECT_EQ(IsToKlaxon(event), flag != 3 && Expected(row.horn, 31));
        }
    }
    // Events of the application need no panel.
    const EventClass event(0, Family::System, 0, SystemEvents::ApplicationStarted);
    EXPECT_TRUE(IsToHisto(event) && IsToPrint(event));
    EXPECT_FALSE(IsToDisplay(event) || IsToKlaxon(event));
}

} // namespace
