// A plant set up with a finger alone, from a new site to the first printed alarm.

#include "core/FormNames.h"
#include "core/SLVfonctions.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/touch/ValueLabel.h"
#include "support/PipePrinter.h"
#include "support/Road.h"
#include "support/Script.h"

#include <QDir>

namespace {

enum Parameter {
    OnScreen = 2,
    Printed,
    Horn = 5,
    Priority,
    Library = 8,
    ScreenText = 12,
    PrintText
};

class SetupRoad : public Road, public ::testing::WithParamInterface<int> {
protected:
    SetupRoad()
        : Road({"1=Q7100", "2=Q6200XT"}, false)
        , printer(folder.Path("printer")) {
        printer.SwitchOn();
        IniWrite("Ports", "LPT1", folder.Path("printer"));
        Global::Get().language = GetParam();
        Global::ReadMarks();
        Forms::Show(FormNames::wMain);
    }

    static void TapArray(const QString& form, const QString& array, int index) {
        Tap(form, array + u'_' + QString::number(index));
    }
    /// Taps an arrow until a value is reached.
    static void StepTo(const QString& form, const QString& arrow, const QString& label,
                       const QString& value) {
        for (int taps = 0; taps < 100; ++taps) {
            const auto* shown = Find<QLabel>(form, label);
            if (shown == nullptr || shown->text() == value)
                return;
            Tap(form, arrow);
        }
        ADD_FAILURE() << label.toStdString() << " never shows " << value.toStdString();
    }
    void Choose(const QString& value) {
        script.On(FormNames::dlgListInput, [value] {
            dynamic_cast<dlgListInput*>(Forms::Find(FormNames::dlgListInput))->Choose(value);
            TapArray(FormNames::dlgListInput, "imgControl", 2);
        });
    }
    void Type(const QString& text) {
        script.On(FormNames::dlgKeyboard, [text] {
            dynamic_cast<dlgKeyboard*>(Forms::Find(FormNames::dlgKeyboard))->setText(text);
            TapArray(FormNames::dlgKeyboard, "imgControl", 1);
        });
    }
    /// Leads from the main menu into a submenu's screen.
    void OpenBySubmenu(int tile, const QString& menu, int button) {
        script.On(menu, [menu, button] { TapArray(menu, "cmdButtons", button); });
        TapArray(FormNames::wMain, "imgMenu", tile);
    }

    void SetParameter(int parameter, const QString& value) {
        TapArray(FormNames::wBusPanneau, "lblParamVal", parameter);
        if (parameter >= ScreenText)
            Type(value);
        else
            Choose(value);
        Tap(FormNames::wBusPanneau, "imgModif");
    }
    void SetModel(int model) {
        for (int i = 0; i < model; ++i)
            Tap(FormNames::wBusPanneau, "imgModele");
        Tap(FormNames::wBusPanneau, "imgActive");
    }

    void SetUpPanels() {
        const QString form = FormNames::wBusPanneau;
        const QString yes = GetText(10002);
        TapArray(FormNames::wMain, "imgMenu", 0);
        TapArray(FormNames::wBusModules, "imgPanneau", 0);
        SetModel(Models::Q7100);
        StepTo(form, "imgControl_1", "lblParamVal_1", "7");
        for (const int parameter : {int(OnScreen), int(Printed), int(Horn)})
            SetParameter(parameter, yes);
        SetParameter(Priority, "5");
        SetParameter(Library, "2");
        SetParameter(ScreenText, "Pump 7");
        SetParameter(PrintText, "Paper 7");
        TapArray(form, "imgNavPanel", 2);
        SetModel(Models::Q6200XT);
        TapArray(form, "imgNavig", 5);
    }
    void SetUpMirrors() {
        const QString form = FormNames::dlgEditMirror;
        Tap(FormNames::wBusModules, "imgMiroirs");
        script.On(form, [form] {
            StepTo(form, "imgPlusMoins_1", "lblSrceModNo", "1");
            StepTo(form, "imgPlusMoins_3", "lblSrceChnlNo", "7");
            StepTo(form, "imgPlusMoins_5", "lblDestModNo", "2");
            StepTo(form, "imgPlusMoins_7", "lblDestChnlNo", "20");
            Tap(form, "optType_1");
            TapArray(form, "imgControl", 1);
        });
        Tap(FormNames::wBusMiroirs, "imgNew");
        TapArray(FormNames::wBusMiroirs, "imgNavig", 0);
    }
    void SetUpTexts() {
        OpenBySubmenu(1, FormNames::dlgMenuParams, 2);
        TapArray(FormNames::wParamBiblio, "imgControl", 3);
        Type("High water");
        TapArray(FormNames::wParamBiblio, "imgControl", 10);
        TapArray(FormNames::wParamBiblio, "imgNavig", 0);
    }
    void SetUpRouting() {
        OpenBySubmenu(1, FormNames::dlgMenuParams, 3);
        for (const char* column : {"lblAffich", "lblHisto", "lblPrint", "lblKlaxon"}) {
            const QString cell = QLatin1String(column) + QStringLiteral("_0");
            if (const auto* label = Find<QLabel>(FormNames::wParamEcran, cell);
                label != nullptr && label->text().isEmpty())
                Tap(FormNames::wParamEcran, cell);
        }
        TapArray(FormNames::wParamEcran, "imgNavig", 0);
    }
    void SetUpSounds() {
        const QString form = FormNames::wSysConfSon;
        OpenBySubmenu(2, FormNames::dlgMenuSystem, 2);
        StepTo(form, "imgControl_9", "lblSoundPrio", "5");
        StepTo(form, "imgControl_1", "lblSoundNum", "3");
        TapArray(form, "imgControl", 5);
        TapArray(form, "imgNavig", 0);
    }
    void SetUpPrinter() {
        const QString form = FormNames::wParamPrinter;
        OpenBySubmenu(1, FormNames::dlgMenuParams, 4);
        TapArray(form, "lblPort", 1);
        TapArray(form, "imgNavig", 0);
    }
    QString SaveSite() {
        script.On(FormNames::dlgFilePicker,
                  [] { TapArray(FormNames::dlgFilePicker, "imgControl", 1); });
        TapArray(FormNames::wMain, "imgNavig", 8);
        const QStringList saved = QDir(folder.Path(QString())).entryList({"*.kv2"}, QDir::Files);
        return saved.isEmpty() ? QString() : folder.Path(saved.first());
    }

    PipePrinter printer;
    Script script;
};

} // namespace

TEST_P(SetupRoad, FromANewSiteToTheFirstPrintedAlarm) {
    TapArray(FormNames::wMain, "imgNavig", 11);
    SetUpPanels();
    SetUpMirrors();
    SetUpTexts();
    SetUpRouting();
    SetUpSounds();
    SetUpPrinter();

    // What was saved holds all of it.
    auto site = std::make_unique<ConfigClass>();
    ASSERT_EQ(site->Read(SaveSite()), ConfigClass::ReadDone);
    Global::setConfiguration(std::move(site));

    TapArray(FormNames::wMain, "imgMenu", 3);
    engine->setRun(true);
    simulator.Do("active 1 7");
    const QString marks = GetText(50011);
    const QString origin = marks[0] + QStringLiteral("01-") + marks[1] + QStringLiteral("07");
    ASSERT_TRUE(Until([&] { return !Rows().filter(origin).isEmpty(); }));
    const QString row = Rows().filter(origin).first();
    EXPECT_TRUE(row.contains("Pump 7") && row.contains("High water")) << row.toStdString();
    EXPECT_EQ(folder.History().filter(origin).size(), 1);
    const auto& horn = static_cast<const platform::SilentSound&>(*Global::Get().sound);
    EXPECT_TRUE(horn.playing.endsWith("AlarmSound3")) << horn.playing.toStdString();
    EXPECT_TRUE(Until([&] { return printer.Paper().contains("Paper 7"); }));
    EXPECT_TRUE(Until([&] { return Shown(2, "states").mid(19, 1) == "1"; })) << "the mirror";
}

INSTANTIATE_TEST_SUITE_P(EachLanguage, SetupRoad, ::testing::Range(0, 4));
