#include "model/ConfigClass.h"

#include "core/Global.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "model/SiteBytes.h"
#include "platform/RunTimeError.h"

namespace errors = platform::errors;

namespace {

TEST(Configuration, PanelsAreNumberedAndBounded) {
    ConfigClass config;
    EXPECT_EQ(config.Panel(1).Numero(), 1);
    EXPECT_EQ(config.Panel(64).Numero(), 64);
    EXPECT_FALSE(config.Modified());
    for (const int index : {-1, 0, 65}) {
        EXPECT_EQ(ErrorNumberOf([&] { config.Panel(index); }), errors::Subscript);
        EXPECT_NO_THROW(config.InitPanel(index));
    }
    EXPECT_FALSE(config.Modified());
}

TEST(Configuration, AnotherPanelObjectMarksEverything) {
    ConfigClass config;
    const auto panel = std::make_shared<PanelClass>();
    config.setPanel(5, panel);
    config.setModified(false);
    config.setPanel(5, panel);
    EXPECT_FALSE(config.Modified()) << "the same object is no change";
    config.setPanel(6, std::make_shared<PanelClass>());
    EXPECT_EQ(&config.Panel(5), panel.get());
    EXPECT_TRUE(config.Panel(64).Channel(24).Modified());
    EXPECT_NE(ErrorNumberOf([&] { config.setPanel(5, nullptr); }), 0);

    config.setModified(false);
    config.InitPanel(5);
    EXPECT_NE(&config.Panel(5), panel.get());
    EXPECT_EQ(config.Panel(5).Numero(), 5);
    EXPECT_TRUE(config.Modified());
    EXPECT_FALSE(config.Panel(5).Modified() || config.Panel(6).Modified());
}

TEST(Configuration, EachSettingMarks) {
    const std::function<void(ConfigClass&)> changes[] = {
        [](ConfigClass& c) { c.setAlarmPrioSound(99, 3); },
        [](ConfigClass& c) { c.setAutoStart(true); },
        [](ConfigClass& c) { c.setBiblio(64, QStringLiteral("valve")); },
        [](ConfigClass& c) { c.setBusSettings(QStringLiteral("COM9:1200,N,8,1")); },
        [](ConfigClass& c) { c.setBusControl(1); },
        [](ConfigClass& c) { c.setConsigne(48, QStringLiteral("close it")); },
        [](ConfigClass& c) { c.setInactivityTime(30); },
        [](ConfigClass& c) { c.setOptionHisto(4, true); },
        [](ConfigClass& c) { c.setOptionKlaxon(0, true); },
        [](ConfigClass& c) { c.setOptionPrinter(7, true); },
        [](ConfigClass& c) { c.setOptionScreen(1, true); },
        [](ConfigClass& c) { c.setPrintBusResult(true); },
        [](ConfigClass& c) { c.setPrintMaxLen(80); },
        [](ConfigClass& c) { c.setPrinterName(QStringLiteral("Matrix")); },
        [](ConfigClass& c) { c.setPrinterInitCode(7, QStringLiteral("<27>")); },
        [](ConfigClass& c) { c.setPrinterInitString(0, QStringLiteral("\u001B")); },
        [](ConfigClass& c) { c.setPrtSettings(QStringLiteral("LPT9:")); },
        [](ConfigClass& c) { c.setUserCount(3); },
        [](ConfigClass& c) { c.setUserLevel(1, 1); },
        [](ConfigClass& c) { c.setUserName(1, QStringLiteral("A")); },
        [](ConfigClass& c) { c.setUserPwd(1, QStringLiteral("B")); },
        [](ConfigClass& c) { c.Mirrors().Add(1, 1, 2, 2, 1).setModified(false); },
    };
    ConfigClass config;
    for (size_t i = 0; i < std::size(changes); ++i) {
        changes[i](config);
        EXPECT_TRUE(config.Modified()) << i;
        config.setModified(false);
        EXPECT_FALSE(config.Modified()) << i;
        if (i + 1 < std::size(changes)) {
            changes[i](config);
            EXPECT_FALSE(config.Modified()) << i << ": the same value again";
        }
    }
}

TEST(Configuration, SoundsAndBitsStayInTheirPlaces) {
    ConfigClass config;
    EXPECT_EQ(config.AlarmPrioSound(1), 1);
    config.setAlarmPrioSound(0, 5);
    config.setAlarmPrioSound(100, 5);
    EXPECT_FALSE(config.Modified());
    for (const int index : {-1, 0, 100})
        EXPECT_EQ(config.AlarmPrioSound(index), 0);

    config.setOptionScreen(0, true);
    config.setOptionScreen(3, true);
    config.setOptionScreen(0, false);
    for (int bit = -1; bit <= 40; ++bit)
        EXPECT_EQ(config.OptionScreen(bit), bit == 3) << bit;
    EXPECT_FALSE(config.OptionHisto(3) || config.OptionPrinter(3) || config.OptionKlaxon(3));
    EXPECT_EQ(ErrorNumberOf([&] { config.setOptionKlaxon(8, true); }), errors::Overflow);
}

TEST(Configuration, FixedTextsKeepTheirWidth) {
    ConfigClass config;
    EXPECT_EQ(config.Biblio(1), QString(24, QChar()));
    EXPECT_EQ(config.Consigne(48).size(), 1024);
    EXPECT_EQ(config.ConsigneText(48), QString());
    config.setBiblio(1, QStringLiteral(" valve "));
    EXPECT_EQ(config.Biblio(1), QStringLiteral(" valve                  "));
    EXPECT_EQ(config.BiblioText(1), QStringLiteral("valve"));
    config.setBiblio(1, QString(30, u'x'));
    EXPECT_EQ(config.Biblio(1), QString(24, u'x'));
    config.setConsigne(2, QStringLiteral("line\r\n"));
    EXPECT_EQ(config.ConsigneText(2), QStringLiteral("line\r\n"));

    config.setModified(false);
    for (const int index : {-1, 0, 65}) {
        config.setBiblio(index, QStringLiteral("x"));
        config.setConsigne(index, QStringLiteral("x"));
        EXPECT_EQ(config.Biblio(index), QString());
        EXPECT_EQ(config.ConsigneText(index), QString());
    }
    EXPECT_FALSE(config.Modified());
}

TEST(Configuration, UserTablesGrowOneByOne) {
    ConfigClass config;
    EXPECT_EQ(config.UserCount(), 2);
    EXPECT_EQ(config.UserLevel(1), 3);
    EXPECT_EQ(config.UserLevel(2), 2);
    config.setUserName(5, QStringLiteral("Eve"));
    EXPECT_EQ(config.UserCount(), 5);
    EXPECT_EQ(config.UserLevel(5), 0);
    EXPECT_EQ(config.UserPwd(5), QString());
    EXPECT_EQ(config.UserName(6), QString());
    config.setUserCount(1);
    EXPECT_EQ(config.UserCount(), 1);
    EXPECT_EQ(config.UserLevel(1), 3);
    EXPECT_EQ(config.UserName(5), QString());
    for (const int count : {0, -1})
        EXPECT_EQ(ErrorNumberOf([&] { config.setUserCount(qint16(count)); }), errors::Subscript);
    EXPECT_EQ(ErrorNumberOf([&] { config.setUserLevel(0, 1); }), errors::Subscript);
}

TEST(Models, NamesAndDelays) {
    EXPECT_EQ(ModuleName(0), QStringLiteral("-----"));
    EXPECT_EQ(ModuleName(2), QStringLiteral("Q6200XT"));
    EXPECT_EQ(ModuleName(5), QStringLiteral("P5500"));
    for (const int code : {-1, 6})
        EXPECT_EQ(ModuleName(code), QString());
    EXPECT_EQ(ReactivTime(0), QString());
    EXPECT_EQ(ReactivTime(1), QStringLiteral("00:01"));
    EXPECT_EQ(ReactivTime(9), QStringLiteral("36:00"));
    EXPECT_EQ(ReactivTime(QStringLiteral(" 12:00 ")), 6);
    for (const QString& text : {QString(), QStringLiteral("@"), QStringLiteral("12:0")})
        EXPECT_EQ(ReactivTime(text), std::nullopt);
}

TEST(Access, IsOpenUntilAnOperatorIsDefined) {
    Global::setConfiguration(nullptr);
    Global::Get().userLevel = 0;
    EXPECT_TRUE(AccessOk(3)) << "the two default users guard nothing";
    ConfigClass& config = Global::Configuration();
    config.setUserLevel(3, 1);
    EXPECT_FALSE(AccessOk(1));
    EXPECT_TRUE(AccessOk(0));
    Global::Get().userLevel = 2;
    EXPECT_TRUE(AccessOk(2));
    EXPECT_FALSE(AccessOk(3));
    config.setUserLevel(3, 4);
    EXPECT_TRUE(AccessOk(3));
    Global::Get().userLevel = 0;
    Global::setConfiguration(nullptr);
}

} // namespace
