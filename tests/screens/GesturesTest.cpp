// The gestures that the forms share: pointers, arrows, lists, tables.

#include "screens/touch/FieldPointer.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/NumberedList.h"
#include "screens/touch/Stepper.h"
#include "screens/touch/TouchTable.h"
#include "screens/touch/ValueLabel.h"

#include <QHeaderView>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

TouchTable::Row Line(const QString& tag, const QString& number, const QString& word) {
    return {{number, word}, tag};
}

} // namespace

TEST(GesturesTest, ThePointerStaysOnFieldsThatMayBePointedAt) {
    QWidget form;
    QList<ValueLabel*> fields;
    for (int i = 0; i < 4; ++i)
        fields += new ValueLabel(&form);
    QPushButton back(&form);
    QPushButton on(&form);
    FieldPointer pointer(&form, fields, &back, &on);
    EXPECT_TRUE(fields[0]->IsPointed() && !back.isEnabled());
    pointer.Skip(1);
    for (const auto& [by, place] : {std::pair(1, 2), std::pair(-1, 0)}) {
        pointer.MoveBy(by);
        EXPECT_EQ(pointer.Place(), place) << "steps over";
    }
    QTest::mouseClick(fields[1], Qt::LeftButton);
    EXPECT_EQ(pointer.Place(), 0) << "a touch on a field that is stepped over means nothing";
    QTest::mouseClick(fields[3], Qt::LeftButton);
    EXPECT_EQ(pointer.Field(), fields[3]);
    EXPECT_FALSE(on.isEnabled() || fields[0]->IsPointed());
    pointer.MoveBy(1);
    EXPECT_EQ(pointer.Place(), 3);
}

TEST(GesturesTest, AStepperStopsAtItsBoundsAndTellsWhoStepped) {
    QWidget form;
    ValueLabel shown(&form);
    QPushButton down(&form);
    QPushButton up(&form);
    HoldToRepeat repeat(&form);
    Stepper stepper(repeat, &shown, {&down, &up}, 2);
    stepper.setBounds(1, 3);
    QSignalSpy changes(&stepper, &Stepper::Changed);
    stepper.StepBy(1);
    stepper.StepBy(7);
    stepper.StepBy(1);
    EXPECT_EQ(shown.Caption(), "03");
    EXPECT_FALSE(up.isEnabled());
    EXPECT_TRUE(down.isEnabled());
    ASSERT_EQ(changes.size(), 2) << "what changes nothing tells nothing";
    EXPECT_TRUE(changes[1][1].toBool());
    stepper.setBounds(1, 2);
    EXPECT_EQ(stepper.Value(), 2);
    EXPECT_FALSE(changes.last()[1].toBool());
}

TEST(GesturesTest, AListAndItsNumberFollowEachOther) {
    QWidget form;
    auto* list = new QListWidget(&form);
    auto* number = new ValueLabel(&form);
    QStringList texts{"a", "b", "c"};
    NumberedList entries(list, number, 1, [&](int entry) { return texts[entry - 1]; });
    entries.Fill(3);
    QSignalSpy changes(&entries, &NumberedList::Changed);
    list->setCurrentRow(2);
    EXPECT_EQ(number->Caption(), "3");
    entries.setNumber(-4);
    EXPECT_EQ(list->currentRow(), 0);
    EXPECT_EQ(changes.size(), 2);
    entries.setNumber(2);
    texts[1] = "new";
    entries.Renew(2);
    EXPECT_EQ(list->item(1)->text(), "new");
    entries.Fill(3);
    EXPECT_EQ(entries.Number(), 2) << "the place stays over a change of all";
    EXPECT_EQ(changes.size(), 3);
}

TEST(GesturesTest, ATableSortsByTouchAndKeepsItsRow) {
    TouchTable table;
    table.resize(400, 300);
    table.setColumns({{"No", 1}, {"Word", 2}}, 1);
    QList<TouchTable::Row> rows{Line("x", "10", "b"), Line("y", "9", "c"), Line("z", "all", "a")};
    QSignalSpy changes(&table, &TouchTable::RowChanged);
    const auto touch = [&](int column) { Q_EMIT table.horizontalHeader()->sectionClicked(column); };
    const auto shown = [&](int column) {
        return table.Cell(0, column) + u' ' + table.Cell(1, column) + u' ' + table.Cell(2, column);
    };
    table.setRows(rows);
    EXPECT_EQ(shown(0), "9 10 all") << "numbers by value, before words";
    table.SelectTag("x");
    touch(1);
    EXPECT_EQ(shown(1), "a b c");
    EXPECT_EQ(table.CurrentTag(), "x");
    EXPECT_EQ(table.CurrentRow(), 1);
    touch(1);
    EXPECT_EQ(shown(1), "c b a");
    for (int times = 0; times < 2; ++times) {
        table.MoveBy(1);
        EXPECT_EQ(table.CurrentTag(), "z");
    }
    table.setCells("y", {"9", "A"});
    EXPECT_EQ(shown(1), "A b a") << "in its place";
    rows[0].order = {QString(), "d"};
    table.setRows(rows);
    EXPECT_EQ(shown(1), "b c a") << "sorted by more than its text";
    table.setRows({Line("10", "x", "0"), Line("9", "y", "0"), Line("11", "z", "0")});
    EXPECT_EQ(shown(0), "y x z") << "equal ones by the numbers that are their tags";
    rows.removeLast();
    table.setRows(rows);
    EXPECT_TRUE(table.CurrentTag().isEmpty()) << "its row is gone";
    EXPECT_GT(changes.size(), 3);
}

TEST(GesturesTest, ASwipeScrollsAndATouchSelects) {
    TouchTable table;
    table.resize(400, 300);
    table.setColumns({{"No", 1}}, 1);
    table.setRows(QList<TouchTable::Row>(100, Line("x", "1", {})));
    table.show();
    QWidget* view = table.viewport();
    const QPoint middle = view->rect().center();
    QTest::mousePress(view, Qt::LeftButton, {}, middle);
    for (const int moved : {8, 40, 96})
        QTest::mouseMove(view, middle - QPoint(0, moved));
    QTest::mouseRelease(view, Qt::LeftButton, {}, middle - QPoint(0, 96));
    EXPECT_EQ(table.verticalScrollBar()->value(), 96);
    EXPECT_EQ(table.CurrentRow(), -1) << "a swipe selects nothing";
    QTest::mouseClick(view, Qt::LeftButton, {}, middle);
    EXPECT_EQ(table.CurrentRow(), table.rowAt(middle.y()));
}

TEST(GesturesTest, TheArrowsOfABarStayAtItsEndsAndTakeNoTouch) {
    TouchTable table;
    table.setColumns({{"No", 1}}, 1);
    table.setRows(QList<TouchTable::Row>(100, Line("x", "1", QString())));
    table.resize(400, 300);
    table.show();
    QScrollBar* bar = table.verticalScrollBar();
    const auto ink = [&](int top) {
        const QImage square = bar->grab(QRect(0, top, bar->width(), bar->width()))
                                  .toImage()
                                  .convertToFormat(QImage::Format_RGB32);
        int count = 0;
        for (int i = 0; i < square.width() * square.height(); ++i)
            count += qGray(square.pixel(i % square.width(), i / square.width())) > 150 ? 1 : 0;
        return count;
    };
    for (const int height : {300, 500}) {
        table.resize(400, height);
        EXPECT_GT(ink(0), 10);
        EXPECT_GT(ink(bar->height() - bar->width()), 10);
    }
    table.setColumns({{"No", 1}}, 1);
    EXPECT_EQ(bar->findChildren<QWidget*>().size(), 1);
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(bar->width() / 2, bar->height() - 9));
    EXPECT_GT(bar->value(), 0);
}

TEST(GesturesTest, AKeptEditIsWorthItsOriginalOnly) {
    KeptEdit<int> kept;
    kept.Keep(1, 5);
    EXPECT_EQ(kept.Take(1), 5);
    EXPECT_EQ(kept.Take(1), std::nullopt) << "once";
    kept.Keep(1, 6);
    EXPECT_EQ(kept.Take(2), std::nullopt) << "the site holds something else now";
}
