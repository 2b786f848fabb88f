// The list of the alarm console without its screen: columns, colours, order and selection.

#include "screens/AlarmConsoleFixture.h"
#include "screens/touch/Colours.h"

namespace {

class AlarmRowsTest : public ConsoleTest {
protected:
    /// Numbers the texts, so that rows can be told from each other.
    void Take(const EventClass& event) { rows.Take(event, QString::number(++texts)); }
    QString Texts() const {
        QStringList list;
        for (int row = 0; row < rows.Count(); ++row)
            list.append(rows.Row(row).text);
        return list.join(u',');
    }
    AlarmRows rows;
    int texts = 0;
};

EventClass At(DateTime when, EventClass event, int num) {
    event.setGDH(when);
    event.setNum(num);
    return event;
}

} // namespace

TEST_F(AlarmRowsTest, ColumnsOfARow) {
    const DateTime now = clock.Now();
    EXPECT_EQ(AlarmRows::RowText(At(now, {1, 7, 0, 1}, 123)),
              QStringLiteral("    123 2024-03-15 12:00:00 P01-C07 Compressor s "
                             "Oil pressure low         "));
    EXPECT_EQ(AlarmRows::RowText(At(now, {12, 0, 0, 3}, 999999)).left(36),
              " 999999 2024-03-15 12:00:00 P12-ACK ");
    EXPECT_EQ(AlarmRows::RowText(At(now, {2, 255, 1, 0}, 5)),
              "      5 2024-03-15 12:00:00 P02-Q62 Panel lost");
    EXPECT_EQ(AlarmRows::RowText(At(now, {3, 255, 1, 1}, 5)),
              "      5 2024-03-15 12:00:00 P03-Q70 Panel present");
    Site().Panel(1).Channel(7).setScreenText(QString(40, u'x'));
    EXPECT_EQ(AlarmRows::RowText(At(now, {1, 7, 0, 1}, 1)).size(), 74);
}

TEST_F(AlarmRowsTest, ColoursByEventAndReadableInk) {
    const std::pair<EventClass, const char*> colours[] = {
        {{1, 255, 1, 0}, "#ff0000"}, {{1, 255, 1, 1}, "#ffffff"}, {{1, 7, 0, 1}, "#00ffff"},
        {{1, 7, 0, 3}, "#80ff80"},   {{1, 7, 1, 1}, "#ffffff"},   {{1, 7, 1, 2}, "#8080ff"},
        {{1, 7, 1, 3}, "#ff0000"},   {{1, 7, 2, 4}, "#ff8000"},   {{1, 7, 1, 255}, "#ff00ff"},
        {{1, 7, 1, 0}, "#000000"}};
    for (const auto& [event, colour] : colours) {
        const QColor shown = Colours::FromBgr(AlarmRows::RowColor(event.ID()));
        EXPECT_EQ(shown.name(), colour) << event.ID();
        EXPECT_GE(Colours::Contrast(shown, Colours::InkOn(shown)), 4.5) << colour;
    }
}

TEST_F(AlarmRowsTest, NewestOnTopUpdatesInPlaceAndWhatEndsAnAlarmRemovesItsRow) {
    for (const EventClass& end : {EventClass(1, 255, 1, 1), EventClass(1, 5, 1, 0),
                                  EventClass(1, 30, 0, 1), EventClass(1, 254, 1, 1)})
        Take(end);
    EXPECT_EQ(Texts(), "") << "nothing to end";
    Take({1, 1, 0, 1});
    Take({1, 2, 0, 1});
    Take({2, 255, 1, 0});
    EXPECT_EQ(Texts(), "7,6,5");
    Take({1, 2, 1, 1});
    EXPECT_EQ(Texts(), "7,8,5") << "an acknowledgement changes the row where it stands";
    EXPECT_EQ(rows.Row(1).data, EventClass(1, 2, 1, 1).ID());
    EXPECT_EQ(rows.Row(1).colour, AlarmRows::White);
    Take({1, 1, 0, 0});
    EXPECT_EQ(Texts(), "7,8,9") << "back to normal without an acknowledgement still stands";
    Take({2, 255, 1, 1});
    EXPECT_EQ(Texts(), "8,9");
    Take({1, 2, 1, 0});
    Take({1, 1, 1, 0});
    EXPECT_EQ(rows.Count(), 0);
    EXPECT_EQ(rows.Current(), -1);
    Take({1, 5, 0, 0});
    EXPECT_EQ(rows.Count(), 1) << "a return to normal that waits for its acknowledgement";
    Take({1, 0, 1, 2});
    EXPECT_EQ(rows.Count(), 2) << "a panel's own acknowledgement";
}

TEST_F(AlarmRowsTest, SelectionStaysOnItsAlarmButJumpsToFirstFaultsAndLostPanels) {
    const auto after = [this](const EventClass& event) {
        Take(event);
        return rows.Current();
    };
    EXPECT_EQ(after({1, 1, 0, 1}), 0);
    EXPECT_EQ(after({1, 2, 0, 1}), 1);
    EXPECT_EQ(after({1, 3, 1, 4}), 2) << "a second fault doesn't take the selection";
    EXPECT_EQ(after({1, 4, 0, 3}), 0);
    rows.SetCurrent(2);
    EXPECT_EQ(after({2, 255, 1, 0}), 0);
    rows.SetCurrent(3);
    EXPECT_EQ(after({1, 4, 1, 3}), 3) << "an update moves nothing";
    EXPECT_EQ(after({2, 255, 1, 1}), 2) << "a row above went";
    rows.SetCurrent(3);
    EXPECT_EQ(after({1, 1, 1, 0}), 2) << "the last row itself went";
}

TEST_F(AlarmRowsTest, ViewFollowsTheKeysAndEachNewRow) {
    rows.Position().SetPage(4);
    rows.Position().MoveBy(1);
    EXPECT_EQ(rows.Current(), -1);
    for (qint16 channel = 1; channel <= 10; ++channel)
        Take({1, channel, 0, 1});
    EXPECT_EQ(rows.Current(), 9);
    EXPECT_EQ(rows.First(), 0) << "the newest is in sight, not the selection";
    for (const auto& [by, first] : {std::pair(-1, 5), std::pair(-4, 4), std::pair(100, 6)}) {
        rows.Position().MoveBy(by);
        EXPECT_EQ(rows.First(), first) << by;
    }
    rows.Remove(9);
    EXPECT_EQ(rows.First(), 5) << "no empty place below while there are rows above";
    Take({1, 20, 0, 1});
    EXPECT_EQ(rows.First(), 0);
    EXPECT_THROW(rows.SetCurrent(10), platform::RunTimeError);
}

TEST_F(AlarmRowsTest, OfAKeyThatWasReadBackTwiceTheLastRowCounts) {
    const qint32 id = EventClass(1, 5, 0, 1).ID();
    for (const qint32 key : {id, EventClass(1, 6, 0, 1).ID(), id})
        rows.Append({{}, key, 0});
    for (const int last : {2, 0}) {
        EXPECT_EQ(rows.FindKey(id), last);
        rows.Remove(last);
    }
    EXPECT_EQ(rows.FindKey(id), -1);
}

TEST_F(AlarmRowsTest, SettingsKeepTheListOverAnAbsence) {
    IniWrite("LastAlarms", "99", "01020001old");
    rows.Append({"first fault", EventClass(1, 7, 1, 3).ID(), 0});
    rows.Append({"two\r\nlines", EventClass(64, 24, 1, 255).ID(), 0});
    rows.Append({"  lost ", EventClass(2, 255, 1, 0).ID(), 0});
    LastAlarms::Write(rows);
    EXPECT_EQ(IniRead("LastAlarms", "2", QString()), "401801FFtwo|lines");

    AlarmRows back;
    LastAlarms::Read(back);
    ASSERT_EQ(back.Count(), 3);
    for (int row = 0; row < 3; ++row)
        EXPECT_EQ(std::tuple(back.Row(row).text, back.Row(row).data),
                  std::tuple(rows.Row(row).text, rows.Row(row).data));
    EXPECT_EQ(Colours::FromBgr(back.Row(1).colour).name(), "#ff00ff");
    EXPECT_EQ(back.Current(), 1) << "the index is 1 when none is kept";

    IniWrite("LastAlarms", "Index", "2");
    IniWrite("LastAlarms", "4", "no key at all");
    AlarmRows again;
    LastAlarms::Read(again);
    EXPECT_EQ(again.Count(), 3);
    EXPECT_EQ(again.Current(), 0) << "the last row can't be chosen";
}
