#include "screens/menu/wPollingScreen.h"
#include "support/ScreensFixture.h"

#include <QTableWidget>

namespace {
const QString Name = QStringLiteral("wPolling");
}

class wPollingScreenTest : public ScreensTest {
protected:
    wPollingScreenTest() { screen = dynamic_cast<wPollingScreen*>(Forms::Load(Name)); }

    const QTableWidget* Grid() const {
        return screen->findChild<QTableWidget*>(QStringLiteral("grdErrors"));
    }
    QString Counters(int panel) const { return Grid()->item(panel - 1, 1)->text(); }
    QString Link(int index) const {
        return TextOf(Name, QStringLiteral("lblBusConfig_%1").arg(index));
    }
    void TapControl(int index) const { Tap(Name, QStringLiteral("imgControl_%1").arg(index)); }

    wPollingScreen* screen = nullptr;
};

TEST_F(wPollingScreenTest, ShowsTheLinkWithTheWordOfItsParity) {
    link->setCommPort(3);
    const QList<QPair<QString, int>> parities{{QStringLiteral("N"), 100021},
                                              {QStringLiteral("e"), 100022},
                                              {QStringLiteral("O"), 100023},
                                              {QStringLiteral("M"), 100020}};
    for (const auto& [letter, text] : parities) {
        link->setSettings(QStringLiteral("4800,%1,7,2").arg(letter));
        screen->Show();
        EXPECT_EQ(Link(5), QStringLiteral("3"));
        EXPECT_EQ(Link(6), QStringLiteral("4800"));
        EXPECT_EQ(Link(7), GetText(text));
        EXPECT_EQ(Link(8), QStringLiteral("7"));
        EXPECT_EQ(Link(9), QStringLiteral("2"));
    }
}

TEST_F(wPollingScreenTest, OneOfStartAndStopIsVisibleAndActs) {
    screen->Show();
    const auto* stop = Child(Name, QStringLiteral("imgStopRun_0"));
    const auto* start = Child(Name, QStringLiteral("imgStopRun_1"));
    for (const bool run : {true, false, true}) {
        EXPECT_TRUE(start->isVisible() == run && stop->isVisible() != run);
        Tap(Name, run ? QStringLiteral("imgStopRun_1") : QStringLiteral("imgStopRun_0"));
        EXPECT_EQ(engine->Run(), run);
    }
    EXPECT_TRUE(stop->isVisible() && !start->isVisible());
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
    EXPECT_EQ(TextOf(Name, QStringLiteral("lblPanel")), QStringLiteral("7"));
    EXPECT_EQ(TextOf(Name, QStringLiteral("lblTime")), engine->LastRound());

    Tap(Name, QStringLiteral("imgReinit"));
    EXPECT_EQ(Site().Panel(7).ErrCptr(0), 0);
    Tap(Name, QStringLiteral("imgNavig_5"));
    EXPECT_FALSE(screen->Visible());
    EXPECT_EQ(NbInstances(Name), 1);
}

TEST_F(wPollingScreenTest, ScrollsByRowsTensAndPagesWithinThePanels) {
    screen->Show();
    EXPECT_EQ(Grid()->item(0, 0)->text(), QStringLiteral("01"));
    EXPECT_EQ(Grid()->item(63, 0)->text(), QStringLiteral("64"));
    EXPECT_EQ(Grid()->horizontalHeaderItem(1)->text(),
              QChar(0xA0) + QStringLiteral("N1     N2    N3    Next Poll"));
    EXPECT_EQ(screen->TopRow(), 1);
    TapControl(1);
    TapControl(0);
    EXPECT_EQ(screen->TopRow(), 1);
    TapControl(2);
    EXPECT_EQ(screen->TopRow(), 2);
    TapControl(3);
    EXPECT_EQ(screen->TopRow(), 12);
    TapControl(0);
    EXPECT_EQ(screen->TopRow(), 2);
    TapControl(6);
    TapControl(6);
    TapControl(5);
    EXPECT_EQ(screen->TopRow(), 3);
    TapControl(7);
    const int page = screen->TopRow() - 3;
    EXPECT_GE(page, 10);
    TapControl(4);
    EXPECT_EQ(screen->TopRow(), 3);
    for (int i = 0; i < 10; ++i)
        TapControl(3);
    EXPECT_LE(screen->TopRow(), 64);
    EXPECT_TRUE(Grid()->viewport()->rect().intersects(Grid()->visualItemRect(Grid()->item(63, 0))));
}

TEST_F(wPollingScreenTest, ItsEndIsTheEndOfTheEngine) {
    engine->setRun(true);
    ASSERT_TRUE(link->PortOpen());
    Forms::Unload(Name);
    EXPECT_TRUE(engine->IsClosing());
    EXPECT_FALSE(link->PortOpen());
}
