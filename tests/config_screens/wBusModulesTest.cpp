// The list of the panels: its tiles and pages, the ways out of it, and the sheet of the channels.

#include "config_screens/panels/PanelTitle.h"
#include "screens/touch/Colours.h"
#include "support/ConfigScreensFixture.h"

namespace {

const QString Picker = FormNames::dlgFilePicker;
const QString Import = "imgImportExport_0";
const QString Export = "imgImportExport_1";

class BusModulesTest : public ConfigScreensTest {
protected:
    BusModulesTest()
        : ConfigScreensTest(FormNames::wBusModules) {}

    QString Text(const char* array, int tile) const { return TextOf(Form, Part(array, tile)); }
    void Turn(int way, int times = 1) const { Press("imgNavig", way, times); }
    /// The first number of the page, and which arrows are enabled.
    QString Page() const {
        const auto enabled = [&](int way) {
            return Child(Form, Part("imgNavig", way))->isEnabled() ? u'+' : u'-';
        };
        return enabled(1) + Text("lblNumPan", 0) + enabled(2);
    }
    void SaveAs(const QString& name) {
        script.On(Picker, [this, name] {
            Type(name);
            Tap(Picker, "imgName");
            Tap(Picker, "imgControl_1");
        });
        Tap(Form, Export);
    }
    void TakeSheet(const QString& name) {
        TakeFile(name);
        Tap(Form, Import);
    }
};

} // namespace

TEST_F(BusModulesTest, TilesShowThePanelsOfAPage) {
    PanelClass& panel = Site().Panel(18);
    panel.setModel(2);
    panel.setTitle("Pumps|north");
    Site().Panel(19).setActive(true);
    AddPanel(20, 1);
    Forms::Show(Form);
    Turn(1);
    EXPECT_EQ(Page(), "-01+");
    Turn(2);
    EXPECT_EQ(Page(), "+17+");
    EXPECT_EQ(Text("lblTypePan", 1), "Q6200XT");
    EXPECT_EQ(Text("lblLblPan", 1), "Pumps\nnorth");
    EXPECT_EQ(Text("lblTypePan", 2), "-----");
    for (const int tile : {1, 2, 3})
        EXPECT_EQ(Child(Form, Part("imgCroix", tile))->isHidden(), tile == 3)
            << "without a model or not active";
    Turn(2, 3);
    EXPECT_EQ(Page(), "+49-");
    EXPECT_EQ(Text("lblNumPan", 15), "64");
    // The keyboard turns as well, and so does the page of the settings.
    Type("20");
    QTest::keyClick(Screen(Form), Qt::Key_F12);
    EXPECT_EQ(Page(), "+17+");
    for (const auto& [setting, page] :
         {std::pair("33", "+33+"), {"64", "+49-"}, {"20", "+17+"}, {"0", "-01+"}, {"x", "-01+"}}) {
        Forms::Unload(Form);
        RemoveUnloaded();
        IniWrite("General", "PanelPage", setting);
        Forms::Show(Form);
        EXPECT_EQ(Page(), page) << setting;
    }
}

TEST_F(BusModulesTest, TitlesOfAnyColourAndLengthCanBeRead) {
    const qint32 colours[] = {0xFFFF, 0xFF0000, 0x808080, 0, 0xFF, 0x44372C, 0xFFFFFF};
    for (int tile = 0; tile < 7; ++tile) {
        Site().Panel(tile + 1).setTitle(QString(PanelClass::MaxTitle, u'W'));
        Site().Panel(tile + 1).setTitleColor(colours[tile]);
    }
    Site().Panel(8).setTitle("Main switchboard of the water treatment");
    Forms::Show(Form);
    for (int tile = 0; tile < 7; ++tile) {
        const auto* title = Find<PanelTitle>(Form, Part("lblLblPan", tile));
        EXPECT_EQ(title->Ink(), Colours::FromBgr(colours[tile]));
        EXPECT_GE(Colours::Contrast(title->Ink(), title->Ground()), 4.5) << tile;
        EXPECT_EQ(title->Lines().size(), 3);
        EXPECT_TRUE(title->Lines().last().endsWith(QChar(0x2026)));
    }
    EXPECT_EQ(Find<PanelTitle>(Form, Part("lblLblPan", 7))->Lines().join(u' '),
              Site().Panel(8).Title());
}

TEST_F(BusModulesTest, LeadsToThePanelTheMirrorsAndTheMenu) {
    using Case = std::pair<const char*, int>;
    for (const auto& [array, tile] :
         {Case{"imgPanneau", 0}, Case{"lblNumPan", 3}, Case{"lblTypePan", 7}, Case{"lblLblPan", 11},
          Case{"imgCroix", 15}}) {
        Forms::Show(Form);
        Turn(2);
        Tap(Form, Part(array, tile));
        EXPECT_EQ(TextOf(FormNames::wBusPanneau, "lblNumModule_0"), QString::number(17 + tile));
        EXPECT_EQ(NbInstances(Form), 0) << array;
        Forms::Unload(FormNames::wBusPanneau);
        RemoveUnloaded();
    }
    for (const auto& [control, form] : {std::pair("imgMiroirs", FormNames::wBusMiroirs),
                                        {"lblMiroirs", FormNames::wBusMiroirs},
                                        {"imgNavig_0", FormNames::wMain}}) {
        Forms::Show(Form);
        Tap(Form, control);
        EXPECT_TRUE(NbInstances(form) == 1 && NbInstances(Form) == 0) << control;
        Forms::Unload(form);
        RemoveUnloaded();
    }
}

TEST_F(BusModulesTest, ChannelsGoOutAndComeBack) {
    Site().Panel(5).Channel(6).setScreenText("Pump");
    Forms::Show(Form);
    SaveAs("channels");
    EXPECT_EQ(boxes.last(), GetText(300510).replace(u'$', "768"));
    QByteArray sheet = BytesOf("channels.txt");
    EXPECT_TRUE(sheet.contains("Pump\t"));
    Site().setModified(false);
    WriteFile("channels.txt", sheet.replace("Pump", QByteArray("Débit")));
    TakeSheet("channels.txt");
    EXPECT_EQ(Site().Panel(5).Channel(6).ScreenText(), "Débit");
    EXPECT_TRUE(Site().Modified() && !QFile::exists(CurrentConfigFile()));
    EXPECT_EQ(boxes.last(), GetText(300511).replace("$1", "768").replace("$2", "1") +
                                QStringLiteral("\r\n") + GetText(300513));
    // A text that the sheet can't give back is told at once.
    Site().Panel(7).Channel(8).setPrintText("a\tb");
    SaveAs("torn");
    EXPECT_TRUE(boxes.last().endsWith(GetText(300514).replace("$1", "7").replace("$2", "8")));
    EXPECT_EQ(styles.last(), Messages::Warning);
}

TEST_F(BusModulesTest, ABadLineIsReportedAndTold) {
    WriteFile("bad.txt", "1\t1\t1\t0\t0\t0\t5\t1\t0\t0\t0\t0\tPump\tPump\n"
                         "1\t2\t1\t0\t0\t0\t100\t1\t0\t0\t0\t0\tPump\tPump\n");
    Forms::Show(Form);
    TakeSheet("bad.txt");
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_EQ(styles.last(), Messages::Warning);
    EXPECT_TRUE(boxes[0].contains("Error Nr 380"));
    EXPECT_TRUE(boxes[1].endsWith(GetText(300512).replace("$1", "2").replace("$2", "Prio")));
    EXPECT_EQ(Site().Panel(1).Channel(1).AlmPrio(), 5);
    EXPECT_FALSE(Site().Panel(1).Channel(2).Modified());
}

TEST_F(BusModulesTest, AChoiceOfAFileIsGivenUpOrTakenAwayByAnAlarm) {
    for (const QString& image : {Import, Export}) {
        Forms::Show(Form);
        script.On(Picker, [] { Tap(Picker, "imgControl_0"); });
        Tap(Form, image);
        script.On(Picker, [] { AlarmComes(); });
        Tap(Form, image);
        EXPECT_EQ(NbInstances(Form) + NbInstances(Picker), 0);
        EXPECT_TRUE(boxes.isEmpty());
    }
}
