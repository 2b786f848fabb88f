// Copying a panel over another.

#include "ConfigScreensFixture.h"
#include "support/Script.h"

namespace {

const QString ConfirmCopy = "cmdBoutons_1";

class BusCopyTest : public ConfigScreensTest {
protected:
    /// Opens the dialog from the list of the panels and does something there, then closes it.
    void InDialog(const std::function<void()>& act) {
        Forms::Show(FormNames::wBusModules);
        script.On(FormNames::dlgBusCopy, [act] {
            act();
            Tap(FormNames::dlgBusCopy, "cmdBoutons_0");
        });
        Tap(FormNames::wBusModules, "imgCopyPanel");
        EXPECT_EQ(NbInstances(FormNames::dlgBusCopy), 0);
    }
    static void Arrow(int index, int times = 1) {
        while (times-- > 0)
            Tap(FormNames::dlgBusCopy, QStringLiteral("imgControl_%1").arg(index));
    }
    static QString Shown() {
        return TextOf(FormNames::dlgBusCopy, "lblPanelNo_0") + u' ' +
               TextOf(FormNames::dlgBusCopy, "lblPanelNo_1");
    }
    static bool CanCopy() { return Child(FormNames::dlgBusCopy, ConfirmCopy)->isEnabled(); }

    Script script;
};

} // namespace

TEST_F(BusCopyTest, ShowsBothPanelsAndCopiesOnlyOntoAnother) {
    PanelClass& source = AddPanel(2, 4);
    source.setTitle("Pumps|north");
    InDialog([] {
        EXPECT_EQ(Shown(), "01 01");
        EXPECT_FALSE(CanCopy());
        Arrow(0);
        EXPECT_EQ(Shown(), "01 01");
        Arrow(1);
        EXPECT_TRUE(CanCopy());
        EXPECT_EQ(TextOf(FormNames::dlgBusCopy, "lblPanelModel_0"), "P5000");
        EXPECT_EQ(TextOf(FormNames::dlgBusCopy, "lblPanelTitle_0"), "Pumps\nnorth");
        EXPECT_EQ(TextOf(FormNames::dlgBusCopy, "lblPanelModel_1"), "-----");
        Arrow(3);
        EXPECT_FALSE(CanCopy());
        Arrow(3, 70);
        EXPECT_EQ(Shown(), "02 64");
    });
    EXPECT_EQ(Site().Panel(1).Model(), 0);
}

TEST_F(BusCopyTest, TheTargetKeepsItsNumberAndWhatThePollingKnows) {
    PanelClass& source = AddPanel(2, 4);
    source.setTitle("Pumps");
    source.Channel(3).setScreenText("Pump 3");
    source.Channel(3).setState(1);
    Site().setModified(false);
    InDialog([] {
        Arrow(1);
        for (const int target : {3, 4}) {
            Arrow(3, target == 3 ? 2 : 1);
            Tap(FormNames::dlgBusCopy, ConfirmCopy);
            EXPECT_EQ(TextOf(FormNames::dlgBusCopy, "lblPanelTitle_1"), "Pumps");
            EXPECT_FALSE(TextOf(FormNames::dlgBusCopy, "lblCopied").isEmpty());
            const PanelClass& copied = Site().Panel(target);
            EXPECT_EQ(copied.Numero(), target);
            EXPECT_EQ(copied.Channel(3).ScreenText(), "Pump 3");
            EXPECT_TRUE(copied.Active());
            EXPECT_FALSE(copied.Present());
            EXPECT_EQ(copied.Channel(3).State(), 0);
        }
    });
    EXPECT_TRUE(boxes.isEmpty()) << "nothing is asked";
    EXPECT_EQ(TextOf(FormNames::wBusModules, "lblLblPan_2"), "Pumps");
    ConfigClass saved;
    EXPECT_EQ(saved.Read(CurrentConfigFile()), 0);
    EXPECT_EQ(saved.Panel(4).Title(), "Pumps");
    EXPECT_EQ(saved.Panel(4).Numero(), 4);
    EXPECT_TRUE(Site().Modified());
}
