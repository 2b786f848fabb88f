#include "screens/menu/wPollingScreen.h"
#include "support/ScreensFixture.h"

#include <QTableWidget>

namespace {
const QString Name = "wPolling";
}

class wPollingScreenTest : public ScreensTest {
protected:
    wPollingScreenTest() { screen = dynamic_cast<wPollingScreen*>(Forms::Load(Name)); }

    const QTableWidget* Grid() const { return screen->findChild<QTableWidget*>("grdErrors"); }
    QString Counters(int panel) const { return Grid()->item(panel - 1, 1)->text(); }
    void TapControl(int index) const { Tap(Name, "imgControl", index); }

    wPollingScreen* screen = nullptr;
};

TEST_F(wPollingScreenTest, ShowsTheLinkWithTheWordOfItsParity) {
    link->setCommPort(3);
    for (const auto& [letter, text] : {std::pair("N", 100021), std::pair("e", 100022),
                                       std::pair("O", 100023), std::pair("M", 100020)}) {
        link->setSettings(QStringLiteral("4800,%1,7,2").arg(letter));
        screen->Show();
        QStringList shown;
        for (const int index : {5, 6, 7, 8, 9})
            shown += TextOf(Name, Part("lblBusConfig", index));
        EXPECT_EQ(shown, (QStringList{"3", "4800", GetText(text), "7", "2"}));
    }
}

TEST_F(wPollingScreenTest, OneOfStartAndStopIsVisibleAndActs) {
    screen->Show();
    for (const bool run : {true, false, true}) {
        EXPECT_EQ(Child(Name, "imgStopRun_1")->isVisible(), run);
        EXPECT_EQ(Child(Name, "imgStopRun_0")->isVisible(), !run);
        Tap(Name, "imgStopRun", run);
        EXPECT_EQ(engine->Run(), run);
    }
}

TEST_F(wPollingScreenTest, FollowsTheRoundsOnlyWhileItIsVisibleAndCatchesUp) {
    AddPanel(7, 1);
    engine->setRun(true);
    Site().Panel(7).setNextPoll(0);
    engine->RunComm();
    EXPECT_TRUE(Counters(7).isEmpty());
    EXPECT_FALSE(engine->ErrorText(7).isEmpty());
    screen->Show();
    EXPECT_EQ(Counters(7), engine->ErrorText(7));
    const QString before = Counters(7);
    Site().Panel(7).setNextPoll(0);
    engine->RunComm();
    EXPECT_NE(Counters(7), before);
    EXPECT_EQ(Counters(7), engine->ErrorText(7));
    EXPECT_EQ(TextOf(Name, "lblPanel"), "7");
    EXPECT_EQ(TextOf(Name, "lblTime"), engine->LastRound());

    Tap(Name, "imgReinit");
    EXPECT_EQ(Site().Panel(7).ErrCptr(0), 0);
    Tap(Name, "imgNavig_5");
    EXPECT_TRUE(!screen->Visible() && NbInstances(Name) == 1);
}

TEST_F(wPollingScreenTest, ScrollsByRowsTensAndPagesWithinThePanels) {
    screen->Show();
    EXPECT_EQ(Grid()->item(0, 0)->text(), "01");
    EXPECT_EQ(Grid()->item(63, 0)->text(), "64");
    EXPECT_EQ(Grid()->horizontalHeaderItem(1)->text(),
              u'\u00A0' + QStringLiteral("N1     N2    N3    Next Poll"));
    EXPECT_EQ(screen->TopRow(), 1);
    const std::pair<int, int> steps[] = {{1, 1}, {0, 1}, {2, 2}, {3, 12},
                                         {0, 2}, {6, 3}, {6, 4}, {5, 3}};
    for (const auto& [control, top] : steps) {
        TapControl(control);
        EXPECT_EQ(screen->TopRow(), top) << control;
    }
    TapControl(7);
    EXPECT_GE(screen->TopRow(), 13) << "a page";
    TapControl(4);
    EXPECT_EQ(screen->TopRow(), 3);
    for (int i = 0; i < 10; ++i)
        TapControl(3);
    EXPECT_LE(screen->TopRow(), 64);
    EXPECT_TRUE(Grid()->viewport()->rect().intersects(Grid()->visualItemRect(Grid()->item(63, 0))));
}
