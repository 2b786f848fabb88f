// The editors of mirror rules: what a rule may be, and what becomes of the working lists.

#include "config_screens/mirrors/dlgEditMirror.h"
#include "config_screens/mirrors/wBusMiroirs.h"
#include "config_screens/mirrors/wBusMirrorOne.h"
#include "config_screens/panel/wBusPanneau.h"
#include "screens/touch/TouchTable.h"
#include "screens/touch/ValueLabel.h"
#include "support/ConfigScreensFixture.h"

namespace {

const QString One = FormNames::wBusMirrorOne;
const QString Dialog = FormNames::dlgEditMirror;
const QString Panel = FormNames::wBusPanneau;

class MirrorScreensTest : public ConfigScreensTest {
protected:
    enum Arrow { SourceDown, SourceUp, ChannelDown, ChannelUp, TargetDown, TargetUp, ToDown, ToUp };
    enum Answer { Cancel, Confirm };

    /// Panels 1 to 5 of models 1 to 5, panel 6 of none.
    MirrorScreensTest()
        : ConfigScreensTest(FormNames::wBusMiroirs) {
        for (int model = 1; model <= 5; ++model)
            AddPanel(model, model);
    }
    static void Add(int from, int fromChannel, int to, int toChannel, int kind = 1) {
        Site().Mirrors().Add(qint16(from), qint16(fromChannel), qint16(to), qint16(toChannel),
                             qint16(kind));
    }
    /// Opens the dialog by a button and does something there.
    void InDialog(const QString& form, const char* button, const std::function<void()>& act) {
        script.On(Dialog, act);
        Tap(form, button);
    }
    static void Press(int arrow, int times = 1) {
        while (times-- > 0)
            Tap(Dialog, Part("imgPlusMoins", arrow));
    }
    static void Reply(int reply) { Tap(Dialog, "imgControl", reply); }
    /// Source and target as the dialog shows them.
    static QString Shown() {
        QStringList texts;
        for (const char* label : {"lblSrceModNo", "lblSrceChnlNo", "lblDestModNo", "lblDestChnlNo"})
            texts += TextOf(Dialog, label);
        return texts.join(u'/');
    }
    static bool IsEnabled(const char* control) { return Child(Dialog, control)->isEnabled(); }
    /// Goes from an empty dialog, or from one that stands on lower panels, to both ends of a rule.
    static void Enter(int from, int fromChannel, int to, int toChannel) {
        const auto number = [](const char* label) {
            return Find<ValueLabel>(Dialog, label)->Number();
        };
        Press(SourceUp, from - number("lblSrceModNo"));
        Press(ChannelUp, fromChannel - number("lblSrceChnlNo"));
        Press(TargetUp, to - number("lblDestModNo"));
        Press(ToUp, toChannel - number("lblDestChnlNo"));
    }
    TouchTable* Rows() const { return Find<TouchTable>(Form, "lvwMirrors"); }
    static QString Ids() {
        QStringList ids;
        for (const MirrorClass& rule : Site().Mirrors())
            ids += rule.ID();
        return ids.join(u' ');
    }
    /// Opens the mirrors of a panel from its editor and does something there.
    void InMirrorsOf(int panel, const std::function<void()>& act) {
        if (Screen(Panel) == nullptr) {
            dynamic_cast<wBusPanneau*>(Forms::Load(Panel))->setNumModule(qint16(panel));
            Forms::Show(Panel);
        }
        script.On(One, [act] {
            act();
            Tap(One, "imgNavig_5");
        });
        Tap(Panel, "imgNavig_12");
        RemoveUnloaded();
    }
    static QStringList Lines(const char* list) {
        QStringList lines;
        auto* widget = Find<QListWidget>(One, list);
        for (int row = 0; row < widget->count(); ++row)
            lines += widget->item(row)->text();
        return lines;
    }
};

} // namespace

TEST_F(MirrorScreensTest, TheModelsDecideWhatARuleCanBe) {
    Forms::Show(Form);
    InDialog(Form, "imgNew", [&] {
        Press(ChannelUp);
        EXPECT_EQ(Shown(), "///") << "no panel, no channel";
        Reply(Confirm);
        EXPECT_EQ(boxes.last(), GetText(20006));
        Press(SourceUp);
        Press(ChannelUp, 30);
        Press(TargetUp, 2);
        Press(ToUp, 30);
        EXPECT_EQ(Shown(), "1/12/2/24");
        Press(ChannelDown, 30);
        EXPECT_FALSE(IsEnabled("frmType") || IsEnabled("frmDestChnl"));
        Press(SourceUp);
        EXPECT_EQ(Shown(), "2/All/2/") << "as a whole only";
        EXPECT_FALSE(IsEnabled("imgPlusMoins_2") || IsEnabled("imgPlusMoins_3"));
        Press(SourceUp);
        Press(ChannelUp);
        EXPECT_TRUE(IsEnabled("frmType") && IsEnabled("frmDestChnl"));
        Press(TargetUp, 2);
        EXPECT_EQ(Shown(), "3/1/4/---") << "no channel to address";
        boxes.clear();
        Reply(Confirm);
        EXPECT_EQ(boxes, QStringList{GetText(20006)});
        for (const int without : {4, 5, 6}) {
            Press(SourceUp);
            EXPECT_EQ(Shown(), QStringLiteral("%1//4/---").arg(without));
            Reply(Confirm);
        }
        EXPECT_EQ(boxes.size(), 4) << "no sources";
        Press(SourceDown, 4);
        EXPECT_EQ(Shown(), "2/All/4/---");
        Reply(Confirm);
    });
    EXPECT_EQ(Rows()->CurrentTag(), "02000400");
    Leave(Messages::Yes);
    EXPECT_EQ(Ids(), "02000400");
    EXPECT_EQ(Site().Mirrors().Item(1).MirrorType(), MirrorClass::NoKind);
}

TEST_F(MirrorScreensTest, ARefusedRuleIsAskedForAgain) {
    Add(1, 1, 2, 1);
    Add(2, 1, 3, 1);
    Site().Panel(2).setModel(1);
    Forms::Show(Form);
    InDialog(Form, "imgNew", [&] {
        Enter(1, 1, 2, 1);
        Tap(Dialog, "optType_2");
        script.Next(Dialog, [&] {
            EXPECT_EQ(boxes.takeLast(), GetText(20005)) << "another kind is the same rule";
            EXPECT_EQ(Shown(), "1/1/2/1");
            Enter(3, 1, 1, 1);
            Press(TargetDown);
            Press(ToUp);
            script.Next(Dialog, [&] {
                EXPECT_EQ(boxes.takeLast(), GetText(20010)) << "a circle";
                Press(ToUp);
                Reply(Confirm);
            });
            Reply(Confirm);
        });
        Reply(Confirm);
    });
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(Rows()->RowCount(), 3);
    InDialog(Form, "imgModif", [&] {
        EXPECT_EQ(Shown(), "3/1/1/2");
        Tap(Dialog, "optType_2");
        Reply(Confirm);
    });
    EXPECT_TRUE(boxes.isEmpty()) << "the same end points with another kind, of the rule itself";
    Leave(Messages::Yes);
    ASSERT_EQ(Ids(), "01010201 02010301 03010102");
    EXPECT_EQ(Site().Mirrors().Item(3).MirrorType(), MirrorClass::Pulse);
}

TEST_F(MirrorScreensTest, TheTableIsAWorkingListOfItsOwn) {
    Add(1, 0, 2, 0, 0);
    Add(1, 7, 2, 8);
    Forms::Show(Form);
    const char* rows[] = {"Q7100/1/---/Q6200XT/2//", "Q7100/1/7/Q6200XT/2/8/"};
    for (int row = 0; row < 2; ++row) {
        QString cells;
        for (int column = 0; column < 6; ++column)
            cells += Rows()->Cell(row, column) + u'/';
        EXPECT_EQ(cells + Rows()->Cell(row, 6), rows[row] + GetText(510300 + row));
    }
    Tap(Form, "imgDelete");
    EXPECT_EQ(boxes.takeLast(), GetText(30004));
    Rows()->SelectTag("01000200");
    EXPECT_FALSE(Child(Form, "imgNavig_1")->isEnabled());
    Tap(Form, "imgNavig_2");
    EXPECT_FALSE(Child(Form, "imgNavig_2")->isEnabled());
    for (const int reply : {Messages::Cancel, Messages::Ok}) {
        answer = reply;
        Tap(Form, "imgDelete");
        EXPECT_EQ(Rows()->RowCount(), reply == Messages::Ok ? 1 : 2);
    }
    EXPECT_EQ(Site().Mirrors().Count(), 2);
    InDialog(Form, "imgNew", [&] {
        Enter(1, 3, 2, 4);
        AlarmComes();
    });
    RemoveUnloaded();
    Forms::Show(Form);
    EXPECT_EQ(Rows()->RowCount(), 1) << "an alarm loses no edit";
    InDialog(Form, "imgNew", [&] {
        EXPECT_EQ(Shown(), "1/3/2/4") << "nor what was being entered";
        Reply(Cancel);
    });
    EXPECT_TRUE(TellsOfKept());
    Tap(Form, "imgCancel");
    EXPECT_EQ(Rows()->RowCount(), 2);
    boxes.clear();
    Leave(Messages::Cancel);
    EXPECT_TRUE(boxes.isEmpty()) << "nothing differs";
    EXPECT_EQ(Ids(), "01000200 01070208");
}

TEST_F(MirrorScreensTest, AChannelShowsBothItsSides) {
    Site().Panel(2).setTitle("Display");
    Add(1, 1, 2, 9, 2);
    Add(1, 0, 4, 0, 0);
    Add(3, 11, 1, 1);
    InMirrorsOf(1, [&] {
        EXPECT_EQ(Lines("lstTo"), QStringList{"I-P02-C09  Display"});
        EXPECT_EQ(Lines("lstFrom"), QStringList{"P-P03-C11  "});
        Tap(One, "imgControl_0");
        EXPECT_EQ(Lines("lstTo"), QStringList{"M-P04-All  "});
        EXPECT_EQ(TextOf(One, "lblChannel"), "All");
        Tap(One, "imgControl_1");
        Tap(One, "imgControl_1");
        EXPECT_EQ(TextOf(One, "lblChannel"), "2");
        EXPECT_TRUE(Lines("lstTo").isEmpty() && Lines("lstFrom").isEmpty());
    });
    Forms::Unload(Panel);
    InMirrorsOf(4, [&] {
        InDialog(One, "imgNew", [&] {
            Press(TargetUp);
            Press(ToUp);
            Reply(Confirm);
            EXPECT_EQ(boxes.takeLast(), GetText(20006)) << "no source";
            Reply(Cancel);
        });
    });
    Forms::Unload(Panel);
    InMirrorsOf(2, [&] {
        EXPECT_EQ(TextOf(One, "lblChannel"), "All");
        EXPECT_FALSE(Child(One, "imgControl_1")->isEnabled());
    });
}

TEST_F(MirrorScreensTest, RulesOfAChannelReachTheSiteWithItsPanel) {
    Add(1, 1, 2, 1);
    InMirrorsOf(1, [&] {
        Tap(One, "imgDelete");
        EXPECT_EQ(boxes.takeLast(), GetText(30006).replace("$$$", GetText(520120)));
        InDialog(One, "imgNew", [&] {
            EXPECT_TRUE(Child(Dialog, "imgPlusMoins_0")->isHidden());
            Enter(1, 1, 2, 1);
            Reply(Confirm);
        });
        EXPECT_EQ(boxes.takeLast(), GetText(20005));
        EXPECT_EQ(Forms::Find(Dialog), nullptr) << "refused, it is gone";
    });
    script.On(One, [&] {
        InDialog(One, "imgNew", [] {
            Enter(1, 1, 3, 12);
            AlarmComes();
        });
    });
    Tap(Panel, "imgNavig_12");
    RemoveUnloaded();
    InMirrorsOf(1, [&] {
        InDialog(One, "imgNew", [&] {
            EXPECT_EQ(Shown(), "1/1/3/12") << "an alarm loses no entry";
            Reply(Confirm);
        });
        ASSERT_EQ(Lines("lstTo").size(), 2);
        Find<QListWidget>(One, "lstTo")->setCurrentRow(0);
        Tap(One, "imgDelete");
        EXPECT_EQ(Lines("lstTo").size(), 1);
    });
    EXPECT_EQ(Ids(), "01010201") << "the site's own list waits for the answer";
    answer = Messages::Yes;
    Tap(Panel, "imgNavig_5");
    EXPECT_EQ(boxes.last(), GetText(30010));
    EXPECT_EQ(Ids(), "01010312");
}
