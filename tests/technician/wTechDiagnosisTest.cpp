// The diagnosis of the bus on its screen: counters, the frames that go by, and what is saved.

#include "technician/wTechDiagnosis.h"
#include "TechnicianFixture.h"
#include "bus/CommFunctions.h"
#include "technician/TraceGrid.h"

namespace {

const QString Picker = FormNames::dlgFilePicker;
const QString Hold = "imgHold";
const QString ThisPanel = "imgFilter_0";
const QString AllPanels = "imgFilter_1";

class TechDiagnosisTest : public TechnicianTest {
protected:
    TechDiagnosisTest()
        : TechnicianTest(FormNames::wTechDiagnosis) {
        modules[5][144] = 7;
        modules[5][145] = 0xFFFF;
        modules[9];
        Site().Panel(3).setActive(true);
        Site().Panel(3).setModel(1);
        Read(5);
        Forms::Show(Form);
    }
    void Read(int panel) {
        Words words(2);
        LitMots(*link, quint8(panel), 144, words);
    }
    void Refresh() const { dynamic_cast<wTechDiagnosis*>(Forms::Find(Form))->Refresh(); }
    /// What has gone by is shown.
    void Read(std::initializer_list<int> panels) {
        for (const int panel : panels)
            Read(panel);
        Refresh();
    }
    TouchTable& Table() const { return *Find<TouchTable>(Form, "tblPanels"); }
    TraceGrid& Trace() const { return *Find<TraceGrid>(Form, "grdTrace"); }
    QString Row(int row, int columns = 7) const {
        QStringList cells;
        for (int column = 0; column < columns; ++column)
            cells += Table().Cell(row, column);
        return cells.join(u' ');
    }
    /// The last frame without its time.
    QString Newest() const { return Trace().Lines().value(Trace().Count() - 1).mid(13); }
};

} // namespace

TEST_F(TechDiagnosisTest, ARowStandsForEachPanelOfTheSiteAndOfTheBus) {
    EXPECT_EQ(Row(0), "3 Q7100 0 0 0 0 0") << "active, never asked";
    EXPECT_EQ(Row(1, 10), "5 ----- 1 0 0 0 0 0 0.0 0");
    Read({5, 3, 9});
    EXPECT_EQ(Row(0, 10), "3 Q7100 1 1 0 0 0   ") << "no time without a reply";
    EXPECT_EQ(Row(1), "5 ----- 2 0 0 0 0");
    // The counters of the hour are those of the start until an hour is over.
    clock.Advance(3'600'000);
    Read(9);
    Tap(Form, "imgSpan_1");
    EXPECT_EQ(Row(1), "5 ----- 0 0 0 0 0");
    EXPECT_EQ(Row(2), "9 ----- 1 0 0 0 0");
    Tap(Form, "imgSpan_0");
    EXPECT_EQ(Row(2), "9 ----- 2 0 0 0 0");
}

TEST_F(TechDiagnosisTest, FramesAreDecoded) {
    EXPECT_EQ(Trace().Lines().value(0).left(16), "12:00:00.025\tTX\t");
    EXPECT_EQ(Newest(), "RX\t05 03 04 00 07 FF FF 0F 82\taddr 5  func 3  reg 144  = 7 65535");
    EcritMots(*link, 5, 25, {1, -1});
    Refresh();
    EXPECT_EQ(Trace().Lines().value(2).section(u'\t', 3),
              "addr 5  func 16  reg 25  words 2  = 1 65535");
    EXPECT_TRUE(Newest().endsWith("addr 5  func 16  reg 25  words 2"));
    EcritUnMot(*link, 5, 17, 3);
    Refresh();
    EXPECT_EQ(Newest().section(u'\t', 2), "addr 5  func 6  reg 17  = 3");
    // What comes from elsewhere has any form; none may harm.
    const QPair<QByteArray, QString> replies[] = {
        {WithCrc(FromHex("058302")), "addr 5  func 3  exception 2"},
        {WithCrc(FromHex("0A030200FF")), "addr 10  func 3  reg 144  = 255"},
        {WithCrc(FromHex("0503")), "addr 5  func 3"},
        {WithCrc(FromHex("050300900002")), "addr 5  func 3"},
        {FromHex("FF"), "not a frame, or bad CRC"},
        {QByteArray(900, 'x'), "not a frame, or bad CRC"},
    };
    for (const auto& [reply, text] : replies) {
        link->answer = [bytes = reply](const QByteArray&) { return bytes; };
        Read({5});
        EXPECT_EQ(Newest().section(u'\t', 2), text);
    }
    Screen(Form)->grab();
}

TEST_F(TechDiagnosisTest, TheTraceIsFilteredAndHeld) {
    EXPECT_FALSE(Child(Form, ThisPanel)->isEnabled()) << "none is chosen";
    Read({9, 5});
    EXPECT_EQ(Trace().Count(), 6);
    Table().SelectTag("9");
    Tap(Form, ThisPanel);
    EXPECT_EQ(Trace().Count(), 2);
    EXPECT_EQ(Shown("lblTrace"), "Frames of panel 9");
    Table().SelectTag("5");
    EXPECT_EQ(Trace().Count(), 4) << "goes along";

    Tap(Form, Hold);
    for (int i = 0; i < BusDiagnosis::FrameRing; ++i)
        Read(9);
    Refresh();
    EXPECT_EQ(Trace().Count(), 4);
    EXPECT_EQ(Shown("lblTrace"), "Frames of panel 5 - held");
    Tap(Form, AllPanels);
    EXPECT_EQ(Trace().Count(), 6) << "what was held, whatever is kept by now";
    Tap(Form, Hold);
    EXPECT_EQ(Trace().Count(), BusDiagnosis::FrameRing);
    EXPECT_EQ(Trace().Position().First() + Trace().Position().Page(), Trace().Count());
    // A look back stays where it is while frames come.
    QTest::keyClick(&Trace(), Qt::Key_Home);
    for (int page = 0; page < 3; ++page)
        QTest::keyClick(&Trace(), Qt::Key_PageDown);
    const int first = Trace().Position().First();
    Read({5});
    EXPECT_EQ(Trace().Position().First(), first - 2) << "on its rows";
}

TEST_F(TechDiagnosisTest, CountersAndFramesAreSavedAsTheyWere) {
    script.On(Picker, [this] {
        Read({9});
        Tap(Picker, "imgControl_1");
    });
    Site().Panel(3).setActualModel(Models::Q6200XT);
    Read({3});
    EXPECT_EQ(Row(0), "3 Q7100! 1 1 0 0 0");
    Table().SelectTag("3");
    EXPECT_EQ(Shown("lblTold"), "Panel 3: set up as Q7100, reports Q6200XT");
    Tap(Form, "imgSave");
    EXPECT_EQ(Shown("lblTold"), "Frames saved: 3");
    const QByteArray text = BytesOf("Bus20240315.txt");
    EXPECT_TRUE(text.startsWith("Bus diagnosis\t2024-03-15 12:00:01\r\n")) << text.constData();
    EXPECT_EQ(text.count("\r\n5\t-----\t1\t0\t0\t0\t0\t0\t0.0\t0\r\n"), 2) << text.constData();
    EXPECT_TRUE(text.contains("\r\n\r\nPanel 3: set up as Q7100, reports Q6200XT\r\n\r\n"));
    EXPECT_TRUE(text.endsWith("\taddr 3  func 3  reg 144  words 2\r\n"));
    EXPECT_FALSE(text.contains("addr 9"));
}
