// The editor of a panel: what it shows and stores, its clipboard, the ways out of it.

#include "config_screens/panel/wBusPanneau.h"
#include "config_screens/panel/ChannelParameters.h"
#include "model/Models.h"
#include "screens/touch/Colours.h"
#include "screens/touch/ValueLabel.h"
#include "support/ConfigScreensFixture.h"

#include <QPushButton>

using namespace ChannelParameters;

namespace {

enum Place { OnScreen = 2, Kind = 4, Priority = 6, Delay = 11, ScreenText = 12 };

class BusPanneauTest : public ConfigScreensTest {
protected:
    enum Image { Back, On, Copy, Paste, Cut, Clear };

    BusPanneauTest()
        : ConfigScreensTest(FormNames::wBusPanneau, "imgNavig_5") {}

    void Open(int number) const {
        dynamic_cast<wBusPanneau*>(Forms::Load(Form))->setNumModule(qint16(number));
        Forms::Show(Form);
    }
    QString Value(int parameter) const { return TextOf(Form, Part("lblParamVal", parameter)); }
    void Touch(int image, int times = 1) const { Press("imgControl", image, times); }
    void GoTo(int channel) const {
        const int from = Value(Number).toInt();
        Touch(channel > from ? On : Back, qAbs(channel - from));
        EXPECT_EQ(Value(Number), QString::number(channel));
    }
    /// Changes a parameter by its button, from the list or with the keyboard.
    void Set(int parameter, const QString& value) {
        Press("lblParamVal", parameter);
        if (All()[parameter].list != nullptr) {
            Choose(Form, "imgModif", value);
            return;
        }
        Type(value);
        Tap(Form, "imgModif");
    }
    void Leave(int reply) {
        ConfigScreensTest::Leave(reply);
        Forms::Unload(FormNames::wBusModules);
        RemoveUnloaded();
    }
    bool Enabled(const char* array, int index) const {
        return Child(Form, Part(array, index))->isEnabled();
    }
};

} // namespace

// Those that are set on the road from a new site are left out.
TEST_F(BusPanneauTest, EachParameterIsStoredWhereItBelongs) {
    AddPanel(3, 1);
    Site().setBiblio(7, "Pumps");
    Open(3);
    GoTo(5);
    const QString yes = GetText(10002);
    const QString kind = GetText(300312, true);
    const QPair<int, QString> values[] = {{Kind, kind},     {Priority, "99"},      {7, yes},
                                          {Library, "7"},   {Instruction, "48"},   {10, yes},
                                          {Delay, "36:00"}, {ScreenText, "Pump 5"}};
    for (const auto& [parameter, value] : values)
        Set(parameter, value);
    GoTo(6);
    EXPECT_NE(Value(ScreenText), "Pump 5");
    GoTo(5);
    for (const auto& [parameter, value] : values)
        EXPECT_EQ(Value(parameter), value) << parameter;
    EXPECT_EQ(Find<QListWidget>(Form, "lstBiblio")->currentItem()->text(), "Pumps");
    const ChannelClass& channel = Site().Panel(3).Channel(5);
    EXPECT_EQ(channel.BibNum(), 0) << "nothing reaches the site before the answer";
    Leave(Messages::Yes);
    EXPECT_TRUE(channel.Histo() && channel.React());
    const QList<int> numbers{channel.TypeImp(), channel.AlmPrio(), channel.BibNum(),
                             channel.HelpNum()};
    EXPECT_EQ(numbers, QList<int>({2, 99, 7, 48}));
    EXPECT_EQ(ReactivTime(channel.ReactTpo()), "36:00");
    ConfigClass saved;
    EXPECT_EQ(saved.Read(CurrentConfigFile()), 0);
    EXPECT_EQ(saved.Panel(3).Channel(5).ScreenText(), "Pump 5");
}

TEST_F(BusPanneauTest, ThePointerStepsOverTheChannelNumber) {
    AddPanel(1, 1);
    Open(1);
    EXPECT_FALSE(Enabled("imgNavig", 1));
    Press("lblParamVal", Number);
    const auto isPointed = [this](int parameter) {
        return Find<ValueLabel>(Form, Part("lblParamVal", parameter))->IsPointed();
    };
    EXPECT_TRUE(isPointed(Title));
    Press("imgNavig", 2);
    EXPECT_TRUE(isPointed(OnScreen));
    Press("imgNavig", 1);
    EXPECT_TRUE(isPointed(Title));
    Press("lblParamVal", 13);
    EXPECT_FALSE(Enabled("imgNavig", 2));
}

TEST_F(BusPanneauTest, AChannelIsCarriedToAnotherPanel) {
    AddPanel(1, 1).Channel(2).setScreenText("Carried");
    AddPanel(2, 3).Channel(12).setScreenText("Old");
    Site().Panel(2).Channel(13).setScreenText("Beyond");
    Open(1);
    GoTo(2);
    Touch(Cut);
    Leave(Messages::No);
    EXPECT_EQ(Site().Panel(1).Channel(2).ScreenText(), "Carried");
    Open(2);
    Touch(On, 30);
    EXPECT_EQ(Value(Number), QString::number(Site().Panel(2).ChannelCount()));
    GoTo(12);
    Touch(Paste);
    EXPECT_EQ(Value(ScreenText), "Carried");
    Leave(Messages::Yes);
    EXPECT_EQ(Site().Panel(2).Channel(12).ScreenText(), "Carried");
    EXPECT_EQ(Site().Panel(2).Channel(13).ScreenText(), "Beyond");
}

TEST_F(BusPanneauTest, AnotherModelLeavesTheMirrorsAtOnce) {
    AddPanel(1, 1);
    for (const auto& [from, to] : {std::pair{1, 2}, std::pair{3, 1}, std::pair{3, 2}})
        Site().Mirrors().Add(qint16(from), 1, qint16(to), 1, 1);
    Open(1);
    answer = Messages::Cancel;
    Tap(Form, "imgModele");
    EXPECT_EQ(boxes.last(), GetText(30011));
    EXPECT_EQ(Site().Mirrors().Count(), 3);
    EXPECT_EQ(Shown("lblModele"), ModuleName(1));
    answer = Messages::Ok;
    Tap(Form, "imgModele");
    EXPECT_EQ(Shown("lblModele"), ModuleName(2));
    ASSERT_EQ(Site().Mirrors().Count(), 1);
    EXPECT_EQ(Site().Mirrors().Item(1).FromModule(), 3);
    const qsizetype asked = boxes.size();
    // Remote-controlled models have another way, and from the last back to none there is none.
    for (const auto& [taps, way] :
         {std::pair(1, GetText(300130)), {1, GetText(300131)}, {2, QString()}}) {
        for (int tap = 0; tap < taps; ++tap)
            Tap(Form, "imgModele");
        EXPECT_EQ(Child(Form, "lblVisuTcde")->isHidden(), way.isEmpty());
        EXPECT_TRUE(way.isEmpty() || Shown("lblVisuTcde") == way) << way.toStdString();
    }
    EXPECT_EQ(boxes.size(), asked) << "in no mirror any more";
    Leave(Messages::No);
    EXPECT_EQ(Site().Panel(1).Model() + Site().Mirrors().Count(), 2) << "what went is gone";
}

TEST_F(BusPanneauTest, WhatTheBusFoundOutMeanwhileStays) {
    PanelClass& panel = AddPanel(1, 1);
    panel.setActive(false);
    Open(1);
    Set(ScreenText, "Pump");
    panel.Channel(1).setState(5);
    panel.setPresent(false);
    panel.setActive(true);
    answer = Messages::Yes;
    Press("imgNavPanel", 2);
    EXPECT_EQ(panel.Channel(1).ScreenText(), "Pump");
    EXPECT_TRUE(panel.Channel(1).State() == 5 && !panel.Present() && panel.Active());
    EXPECT_EQ(Shown("lblNumModule_0"), "2");
}

TEST_F(BusPanneauTest, ClearAndUndoTouchTheDraftOnly) {
    AddPanel(64, 2).setTitle("Pumps");
    Open(64);
    EXPECT_FALSE(Enabled("imgNavPanel", 2));
    Tap(Form, "imgActive");
    EXPECT_EQ(Shown("lblActive"), GetText(300120));
    Tap(Form, "imgCancel");
    EXPECT_EQ(Shown("lblActive"), GetText(300121));
    Leave(Messages::Cancel);
    EXPECT_TRUE(boxes.isEmpty()) << "nothing differs";
    Open(64);
    Tap(Form, "imgClear");
    Leave(Messages::Cancel);
    EXPECT_EQ(Site().Panel(64).Model(), 2);
    Leave(Messages::Yes);
    EXPECT_EQ(Site().Panel(64).Model(), 0);
    EXPECT_EQ(Site().Panel(64).Numero(), 64) << "it stays the same panel";
}

TEST_F(BusPanneauTest, AnEditAnAlarmTookAwayComesBackOnItsPanel) {
    AddPanel(1, 1);
    AddPanel(2, 1);
    Open(1);
    Set(ScreenText, "Kept");
    AlarmComes();
    EXPECT_TRUE(boxes.isEmpty());
    Open(2);
    EXPECT_FALSE(TellsOfKept());
    Leave(Messages::No);
    Open(1);
    EXPECT_TRUE(TellsOfKept());
    Leave(Messages::Yes);
    EXPECT_EQ(Site().Panel(1).Channel(1).ScreenText(), "Kept");
    Open(1);
    Set(ScreenText, "Stale");
    AlarmComes();
    Site().Panel(1).Channel(1).setScreenText("Changed elsewhere");
    Open(1);
    EXPECT_FALSE(TellsOfKept());
    EXPECT_EQ(Value(ScreenText), "Changed elsewhere");
}

TEST_F(BusPanneauTest, ATitleTakesAColourOfThePaletteOnWhichItIsRead) {
    AddPanel(1, 1);
    Open(1);
    const QString palette = "dlgColour";
    script.On(palette, [palette] {
        auto* button = Find<QPushButton>(palette, "cmdColour_20");
        const QColor colour = button->grab().toImage().pixelColor(8, 8);
        EXPECT_GE(Colours::Contrast(colour, Colours::InkOn(colour)), 4.5);
        Tap(palette, "cmdColour_4");
        Tap(palette, "imgControl_1");
    });
    Tap(Form, "lblTitleColor");
    script.On(palette, [palette] {
        Tap(palette, "cmdColour_1");
        Tap(palette, "imgControl_0");
    });
    Tap(Form, "lblTitleColor");
    Leave(Messages::Yes);
    EXPECT_EQ(Site().Panel(1).TitleColor(), 0x0000FF) << "red in the low byte";
}
