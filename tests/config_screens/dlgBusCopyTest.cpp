// Copying a panel over another.

#include "support/ConfigScreensFixture.h"

namespace {

class BusCopyTest : public ConfigScreensTest {
protected:
    BusCopyTest()
        : ConfigScreensTest(FormNames::dlgBusCopy) {}

    bool CanCopy() const { return Child(Form, "cmdBoutons_1")->isEnabled(); }
};

} // namespace

TEST_F(BusCopyTest, TheTargetKeepsItsNumberAndWhatThePollingKnows) {
    PanelClass& source = AddPanel(2, 4);
    source.setTitle("Pumps|north");
    source.Channel(3).setScreenText("Pump 3");
    source.Channel(3).setState(1);
    Site().setModified(false);
    Forms::Show(FormNames::wBusModules);
    script.On(Form, [&] {
        Press("imgControl", 0);
        EXPECT_FALSE(CanCopy()) << "both are the first";
        Press("imgControl", 1);
        EXPECT_TRUE(CanCopy());
        EXPECT_EQ(Shown("lblPanelModel_0") + Shown("lblPanelModel_1"), "P5000-----");
        Press("imgControl", 3);
        EXPECT_FALSE(CanCopy()) << "onto itself";
        for (const int target : {3, 4}) {
            Press("imgControl", 3);
            Tap(Form, "cmdBoutons_1");
            EXPECT_EQ(Shown("lblPanelTitle_1"), "Pumps\nnorth");
            const PanelClass& copied = Site().Panel(target);
            EXPECT_EQ(copied.Numero(), target);
            EXPECT_EQ(copied.Channel(3).ScreenText(), "Pump 3");
            EXPECT_TRUE(copied.Active() && !copied.Present() && copied.Channel(3).State() == 0);
        }
        Press("imgControl", 3, 70);
        EXPECT_EQ(Shown("lblPanelNo_0") + Shown("lblPanelNo_1"), "0264");
        Tap(Form, "cmdBoutons_0");
    });
    Tap(FormNames::wBusModules, "imgCopyPanel");
    EXPECT_EQ(NbInstances(Form), 0);
    EXPECT_TRUE(boxes.isEmpty()) << "nothing is asked";
    EXPECT_EQ(TextOf(FormNames::wBusModules, "lblLblPan_2"), "Pumps\nnorth");
    ConfigClass saved;
    EXPECT_EQ(saved.Read(CurrentConfigFile()), 0);
    EXPECT_EQ(saved.Panel(4).Title(), "Pumps|north");
    EXPECT_TRUE(Site().Modified());
}
