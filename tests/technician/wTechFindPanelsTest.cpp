// The search for panels: what it finds and why not, whom it lets through, and what is taken of it.

#include "TechnicianFixture.h"

#include <QRegularExpression>
#include <QScrollBar>

namespace {

const QString Unasked = "?????";

class TechFindPanelsTest : public TechnicianTest {
protected:
    TechFindPanelsTest()
        : TechnicianTest(FormNames::wTechFindPanels) {
        link->answer = [this](const QByteArray& frame) {
            asked = quint8(frame[0]);
            if (during)
                during();
            return modules.Answer(frame);
        };
        AddPanel(2, 3).setTitle("Pumps|north");
        Site().Panel(5).setActive(true);
        Site().setModified(false);
    }

    TouchTable* Grid() const { return Find<TouchTable>(Form, "grdPanels"); }
    QString Found(int panel) const { return Grid()->Cell(panel - 1, 4); }
    QString Row(int panel) const {
        QStringList cells;
        for (int column = 0; column < 4; ++column)
            cells += Grid()->Cell(panel - 1, column);
        return cells.join(u'/');
    }
    void Press(const char* name) const { Tap(Form, name); }
    bool IsShown(const char* name) const { return Child(Form, name)->isVisible(); }
    void Search() const { Press("imgFind_1"); }
    void Touch(int panel) const {
        QTest::mouseClick(Grid()->viewport(), Qt::LeftButton, {},
                          QPoint(20, Grid()->rowViewportPosition(panel - 1) + 10));
    }
    /// A touch that comes while an address is asked and so is let through before the next one.
    void While(int panel, std::function<void()> touch) {
        during = [this, panel, touch = std::move(touch)] {
            if (asked != panel)
                return;
            QTimer::singleShot(0, engine.get(), touch);
            during = nullptr;
        };
    }

    std::function<void()> during;
    int asked = 0;
};

} // namespace

TEST_F(TechFindPanelsTest, TellsTheModelAtEachAddress) {
    modules[2][132] = 2;
    modules[3][132] = 1;
    modules[4] = {{132, 1}, {133, 2}};
    modules[6][132] = 7;
    modules[64][132] = 1;
    // A module without its second register.
    link->answer = [this](const QByteArray& frame) {
        const bool refused = frame[0] == 64 && FakeModules::WordAt(frame, 2) == 133;
        return refused ? WithCrc("\x40\x83\x02") : modules.Answer(frame);
    };
    Forms::Show(Form);
    EXPECT_EQ(Row(2), "2/Pumps north/Q7000/Yes");
    EXPECT_EQ(Found(2), Unasked);
    QString line;
    for (int label = 5; label <= 9; ++label)
        line += TextOf(Form, Part("lblBusConfig", label));
    EXPECT_EQ(line, "19600None81");
    Search();
    using Case = std::pair<int, const char*>;
    for (const auto& [panel, model] : {Case{1, "-----"}, Case{2, "Q6200XT"}, Case{3, "Q7100"},
                                       Case{4, "P5500"}, Case{6, "-----"}, Case{64, "Q7000"}})
        EXPECT_EQ(Found(panel), QString::fromLatin1(model)) << panel;
    EXPECT_EQ(Shown("lblFrames_1"), "Panel 64") << "the selection went along";
    EXPECT_EQ(Shown("lblProgress"), "64 of 64 addresses asked, modules found: 4");
    EXPECT_TRUE(IsShown("imgFind_1"));
}

TEST_F(TechFindPanelsTest, TellsWhyNothingWasFound) {
    modules[6][132] = 7;
    const QHash<int, QByteArray> replies = {{2, FromHex("02030200010000")},
                                            {3, WithCrc(FromHex("038302"))},
                                            {4, WithCrc(FromHex("0503020001"))}};
    link->answer = [this, replies](const QByteArray& frame) {
        link->setPortOpen(frame[0] != 7);
        return replies.value(frame[0], modules.Answer(frame));
    };
    Forms::Show(Form);
    Search();
    int panel = 0;
    for (const char* reason : {"no answer", "answer with a bad CRC", "answer is a Modbus exception",
                               "answer from another address", "no answer",
                               "answers, but as no known model", "the bus port is closed"}) {
        Grid()->SelectTag(QString::number(++panel));
        EXPECT_EQ(Shown("lblReason"), QStringLiteral("Panel %1: %2").arg(panel).arg(reason));
        EXPECT_EQ(Found(panel), "-----");
    }
}

TEST_F(TechFindPanelsTest, StopActsBeforeTheNextAddress) {
    Site().Panel(2).setActive(false); // its loss would take the screen away
    engine->setRun(true);
    Forms::Show(Form);
    While(9, [this] {
        EXPECT_EQ(Found(9), "-----");
        EXPECT_EQ(Shown("lblFrames_1"), "Panel 9");
        // Eight absent ones took a second each.
        const QRegularExpression progress("^Address 9 of 64, about (0:5|1:)");
        EXPECT_TRUE(Shown("lblProgress").contains(progress)) << Shown("lblProgress").toStdString();
        EXPECT_TRUE(IsShown("frmWarning") && !IsShown("imgFind_1"));
        Press("imgFind_0");
        EXPECT_FALSE(IsShown("frmWarning"));
        // A start from inside the search must not nest.
        QTest::mouseClick(Child(Form, "imgFind_1"), Qt::LeftButton);
    });
    Search();
    EXPECT_EQ(Found(9) + Found(10), "-----" + Unasked);
    Touch(10);
    Press("imgCommand_2");
    EXPECT_EQ(Grid()->Cell(9, 2), "-----") << "nothing to take over";
    engine->setRun(false);
    Search();
    EXPECT_NE(Found(64), Unasked) << "a search after a stop goes through";
    EXPECT_FALSE(IsShown("frmWarning"));
}

TEST_F(TechFindPanelsTest, ATouchGoesToTheRowThatWasTouched) {
    for (int panel = 1; panel <= 20; ++panel)
        modules[panel][132] = 2;
    Forms::Show(Form);
    const int inSight = Grid()->viewport()->height() / Grid()->rowHeight(0);
    // The search is about to turn the page.
    While(inSight, [this] {
        Touch(3);
        Press("imgCommand_2");
    });
    Search();
    EXPECT_EQ(Row(3), "3//Q6200XT/No");
    EXPECT_EQ(Grid()->verticalScrollBar()->value(), 0);
    EXPECT_EQ(Found(64), "-----") << "the search went on";
    // Left alone, the next search takes the selection along again, until the arrows are touched.
    While(10, [this] { Press("imgControl_5"); });
    Search();
    EXPECT_EQ(Shown("lblFrames_1"), "Panel 9");
}

TEST_F(TechFindPanelsTest, CommandsChangeTheCopyAlone) {
    modules[7][132] = modules[64][132] = 1;
    Forms::Show(Form);
    Search();
    Touch(64);
    Press("imgControl_4");
    EXPECT_NE(Shown("lblFrames_1"), "Panel 64");
    const auto on = [this](int panel, const char* command) {
        Grid()->SelectTag(QString::number(panel));
        Press(command);
        return Row(panel);
    };
    EXPECT_EQ(on(5, "lblCommand_1"), "5//-----/Yes") << "active, without a model";
    EXPECT_EQ(on(5, "lblCommand_0"), "5//-----/No");
    EXPECT_EQ(on(5, "imgCommand_1"), "5//-----/No");
    EXPECT_EQ(on(7, "lblCommand_2"), "7//Q7100/No");
    EXPECT_EQ(on(7, "imgCommand_1"), "7//Q7100/Yes");
    EXPECT_EQ(on(2, "imgCommand_2"), "2/Pumps north/-----/Yes") << "no answer";
    EXPECT_EQ(on(64, "imgCommand_2"), "64//Q7100/No");
    EXPECT_FALSE(Site().Modified());
    // What the bus finds out meanwhile stays.
    Site().Panel(2).setPresent(false);
    Site().Panel(2).Channel(4).setState(1);
    Site().Panel(20).setActive(true);
    Leave(Messages::Cancel);
    EXPECT_NE(Screen(Form), nullptr);
    EXPECT_EQ(boxes.last(), GetText(50003));
    Forms::Show(FormNames::wBusModules);
    Leave(Messages::Yes);
    EXPECT_EQ(TextOf(FormNames::wBusModules, "lblTypePan_6"), "Q7100");
    EXPECT_EQ(Site().Panel(64).Model(), 1);
    EXPECT_TRUE(Site().Panel(7).Active());
    EXPECT_FALSE(Site().Panel(2).Present());
    EXPECT_EQ(Site().Panel(2).Channel(4).State(), 1);
    EXPECT_TRUE(Site().Panel(20).Active()) << "came back by itself";
    EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
}

TEST_F(TechFindPanelsTest, AsksForAnyPanelButTheLast) {
    for (const int panel : {64, 63}) {
        AddPanel(panel, 1);
        Forms::Show(Form);
        Grid()->SelectTag(QString::number(panel));
        Press("imgCommand_0");
        Leave(Messages::No);
        EXPECT_EQ(boxes.size(), panel == 64 ? 0 : 1);
        EXPECT_TRUE(Site().Panel(panel).Active());
    }
}

TEST_F(TechFindPanelsTest, LeavingEndsTheSearch) {
    Forms::Show(Form);
    While(4, [this] { Leave(Messages::No); });
    Search();
    EXPECT_EQ(asked, 4);
    EXPECT_EQ(Screen(Form), nullptr);
}

TEST_F(TechFindPanelsTest, AnAlarmEndsTheSearchAndKeepsTheEdit) {
    Forms::Show(Form);
    Press("imgControl_6");
    Press("imgCommand_0");
    While(4, [] { AlarmComes(); });
    Search();
    EXPECT_EQ(asked, 4);
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_TRUE(Site().Panel(2).Active());
    Forms::Show(Form);
    EXPECT_EQ(Row(2), "2/Pumps north/Q7000/No");
    EXPECT_TRUE(TellsOfKept());
    Leave(Messages::No);
    Forms::Show(Form);
    EXPECT_FALSE(TellsOfKept());
}
