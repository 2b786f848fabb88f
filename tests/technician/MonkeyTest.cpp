// Somebody taps anywhere on the screens of the configuration and of the technician, the bus running
// or not: whatever the order, the program goes on and the site can be saved and read.

#include "support/Monkey.h"
#include "TechnicianFixture.h"

#include <QRegularExpression>

namespace {

class MonkeyTest : public TechnicianTest, public ::testing::WithParamInterface<const char*> {
protected:
    MonkeyTest() {
        const QString texts(40, u'W');
        for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
            PanelClass& panel = Site().Panel(number);
            panel.setModel(quint8(number % 6));
            panel.setActive(number % 3 != 0);
            panel.setTitle(texts);
            for (int channel = 1; channel <= PanelClass::MaxChannel; ++channel)
                panel.Channel(channel).setScreenText(texts);
            Site().setBiblio(number, texts);
            if (number % 5 != 0)
                modules[number][132] = quint16(1 + number % 2);
        }
        for (int rule = 1; rule <= 20; ++rule)
            Site().Mirrors().Add(qint16(rule), qint16(rule % 12), 30, 1, 1);
        QFile::copy(QStringLiteral(KORVANELLE_SOURCE_DIR "/data/printers/escp.prt"),
                    Path("escp.prt"));
    }
};

class EveryForm : public TechnicianTest {};

} // namespace

// No button leads nowhere.
TEST_F(EveryForm, ThatHasANameIsThere) {
    QFile names(QStringLiteral(KORVANELLE_SOURCE_DIR "/src/core/FormNames.h"));
    ASSERT_TRUE(names.open(QIODevice::ReadOnly));
    static const QRegularExpression Name("QStringLiteral\\(\"(\\w+)\"\\)");
    auto found = Name.globalMatch(QString::fromUtf8(names.readAll()));
    // Those that only their callers make.
    const QStringList made{FormNames::dlgMessage, FormNames::dlgPortDevice};
    ASSERT_TRUE(found.hasNext());
    while (found.hasNext()) {
        const QString name = found.next().captured(1);
        EXPECT_TRUE(made.contains(name) || Forms::Names().contains(name)) << name.toStdString();
    }
}

TEST_P(MonkeyTest, NoTapsHarmTheProgramOrTheSite) {
    const QString form = QString::fromLatin1(GetParam());
    ASSERT_TRUE(Forms::Names().contains(form));
    for (const QString& other : {FormNames::wMain, FormNames::wBusModules, FormNames::wBusPanneau,
                                 FormNames::wBusMiroirs, FormNames::wHelp, FormNames::wRunAlarms}) {
        if (other != form)
            Forms::Register(other, [other] { return new Elsewhere(other); });
    }
    AnswerAtRandom();
    Monkey monkey(form, 20240315);
    monkey.Run(MonkeyTaps());
    RemoveUnloaded();
    engine->setRun(false);
    const QString file = Path("monkey.kv2");
    ASSERT_EQ(Site().Save(file), ConfigClass::Saved);
    ConfigClass again;
    EXPECT_EQ(again.Read(file), 0);
    EXPECT_EQ(again.Panel(1).Model(), Site().Panel(1).Model());
    EXPECT_EQ(again.Panel(1).Title(), Site().Panel(1).Title().trimmed());
    EXPECT_EQ(again.Mirrors().Count(), Site().Mirrors().Count());
}

INSTANTIATE_TEST_SUITE_P(EachScreen, MonkeyTest,
                         ::testing::Values("wBusModules", "wBusPanneau", "wBusMiroirs",
                                           "wParamBiblio", "wParamConsignes", "wParamEcran",
                                           "wSysComm", "wSysConfSon", "dlgSysTime", "wParamPrinter",
                                           "wTechnician", "wTechFindPanels", "wTechEtatModule",
                                           "wTechConsignations", "wTechDiagnosis"),
                         [](const auto& screen) { return std::string(screen.param); });
