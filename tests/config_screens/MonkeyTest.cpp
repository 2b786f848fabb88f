// Somebody taps anywhere: whatever the order, the program goes on and the site can be saved and
// read.

#include "support/Monkey.h"
#include "ConfigScreensFixture.h"
#include "platform/Ports.h"

namespace {

class MonkeyTest : public ConfigScreensTest, public ::testing::WithParamInterface<const char*> {
protected:
    MonkeyTest() {
        platform::Ports::Override(
            platform::PortRoots{Path(QString()), Path(QString()), Path(QString()),
                                [] { return QList<platform::PortDevice>(); }});
        const QString texts(40, u'W');
        for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
            PanelClass& panel = Site().Panel(number);
            panel.setModel(quint8(number % 6));
            panel.setActive(number % 3 != 0);
            panel.setTitle(texts);
            for (int channel = 1; channel <= PanelClass::MaxChannel; ++channel)
                panel.Channel(channel).setScreenText(texts);
            Site().setBiblio(number, texts);
        }
        for (int rule = 1; rule <= 20; ++rule)
            Site().Mirrors().Add(qint16(rule), qint16(rule % 12), 30, 1, 1);
        QFile::copy(QStringLiteral(KORVANELLE_SOURCE_DIR "/data/printers/escp.prt"),
                    Path("escp.prt"));
    }
    ~MonkeyTest() override { platform::Ports::Override(std::nullopt); }
    MonkeyTest(const MonkeyTest&) = delete;
    MonkeyTest& operator=(const MonkeyTest&) = delete;
};

} // namespace

TEST_P(MonkeyTest, NoTapsHarmTheProgramOrTheSite) {
    const QString form = QString::fromLatin1(GetParam());
    ASSERT_TRUE(Forms::Names().contains(form));
    for (const QString& other : {FormNames::wMain, FormNames::wBusModules, FormNames::wBusPanneau,
                                 FormNames::wBusMiroirs, FormNames::wHelp}) {
        if (other != form)
            Forms::Register(other, [other] { return new Elsewhere(other); });
    }
    AnswerAtRandom();
    Monkey monkey(form, 20240315);
    monkey.Run(MonkeyTaps());
    RemoveUnloaded();
    const QString file = Path("monkey.kv2");
    ASSERT_EQ(Site().Save(file), ConfigClass::Saved);
    ConfigClass again;
    EXPECT_EQ(again.Read(file), 0);
    EXPECT_EQ(again.Panel(1).Title(), Site().Panel(1).Title().trimmed());
    EXPECT_EQ(again.Mirrors().Count(), Site().Mirrors().Count());
}

INSTANTIATE_TEST_SUITE_P(EachScreen, MonkeyTest,
                         ::testing::Values("wBusModules", "wBusPanneau", "wBusMiroirs",
                                           "wParamBiblio", "wParamConsignes", "wParamEcran",
                                           "wSysComm", "wSysConfSon", "dlgSysTime",
                                           "wParamPrinter"),
                         [](const auto& screen) { return std::string(screen.param); });
