#include "model/ConfigClass.h"

#include "core/Global.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "model/SiteBytes.h"

namespace {

TEST(Configuration, PanelsAreNumberedAndBounded) {
    ConfigClass config;
    EXPECT_EQ(config.Panel(1).Numero() * 100 + config.Panel(64).Numero(), 164);
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
    using Site = ConfigClass;
    ConfigClass config;
    const auto isMarked = [&] { return config.Modified(); };
    const auto takeAway = [&] { config.setModified(false); };
    ExpectMarks<Site>(config,
                      {Set(&Site::setAlarmPrioSound, 99, 3), Set(&Site::setAutoStart, true),
                       Set(&Site::setBusSettings, Text("COM9")), Set(&Site::setBusControl, 1),
                       Set(&Site::setBiblio, 64, Text("valve")),
                       Set(&Site::setConsigne, 48, Text("close it")),
                       Set(&Site::setInactivityTime, 30), Set(&Site::setOptionHisto, 4, true),
                       Set(&Site::setOptionKlaxon, 0, true), Set(&Site::setOptionPrinter, 7, true),
                       Set(&Site::setOptionScreen, 1, true)},
                      isMarked, takeAway);
    ExpectMarks<Site>(config,
                      {Set(&Site::setPrintBusResult, true), Set(&Site::setPrintMaxLen, 80),
                       Set(&Site::setPrinterName, Text("Matrix")),
                       Set(&Site::setPrinterInitCode, 7, Text("<27>")),
                       Set(&Site::setPrtSettings, Text("LPT9:")),
                       Set(&Site::setPrinterInitString, 0, Text("E")), Set(&Site::setUserCount, 3),
                       Set(&Site::setUserLevel, 1, 1), Set(&Site::setUserName, 1, Text("A")),
                       Set(&Site::setUserPwd, 1, Text("B"))},
                      isMarked, takeAway);
    config.Mirrors().Add(1, 1, 2, 2, 1).setModified(false);
    EXPECT_TRUE(config.Modified());
    takeAway();
    EXPECT_FALSE(config.Modified());
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
    config.setOptionScreen(7, true);
    config.setOptionScreen(0, false);
    for (int bit = -1; bit <= 40; ++bit)
        EXPECT_EQ(config.OptionScreen(bit), bit == 7) << bit;
    EXPECT_FALSE(config.OptionHisto(7) || config.OptionPrinter(7) || config.OptionKlaxon(7));
    EXPECT_EQ(ErrorNumberOf([&] { config.setOptionKlaxon(8, true); }), errors::Overflow);
}

TEST(Configuration, FixedTextsKeepTheirWidth) {
    ConfigClass config;
    EXPECT_EQ(config.Biblio(1), QString(24, QChar()));
    EXPECT_EQ(config.Consigne(48).size(), 1024);
    EXPECT_EQ(config.ConsigneText(48), QString());
    config.setBiblio(1, Text(" valve "));
    EXPECT_EQ(config.Biblio(1), Text(" valve                  "));
    EXPECT_EQ(config.BiblioText(1), Text("valve"));
    config.setBiblio(1, QString(30, u'x'));
    EXPECT_EQ(config.Biblio(1), QString(24, u'x'));
    config.setConsigne(2, Text("line\r\n"));
    EXPECT_EQ(config.ConsigneText(2), Text("line\r\n"));

    config.setModified(false);
    for (const int index : {-1, 0, 65}) {
        config.setBiblio(index, Text("x"));
        config.setConsigne(index, Text("x"));
        EXPECT_EQ(config.Biblio(index), QString());
        EXPECT_EQ(config.ConsigneText(index), QString());
    }
    EXPECT_FALSE(config.Modified());
}

TEST(Configuration, UserTablesGrowOneByOne) {
    ConfigClass config;
    EXPECT_EQ(config.UserCount(), 2);
    EXPECT_EQ(config.UserLevel(1) * 10 + config.UserLevel(2), 32);
    config.setUserName(5, Text("Eve"));
    EXPECT_EQ(config.UserCount(), 5);
    EXPECT_EQ(config.UserLevel(5), 0);
    EXPECT_EQ(config.UserPwd(5) + config.UserName(6), QString());
    config.setUserCount(1);
    EXPECT_EQ(config.UserCount(), 1);
    EXPECT_EQ(config.UserLevel(1), 3);
    EXPECT_EQ(config.UserName(5), QString());
    for (const int count : {0, -1})
        EXPECT_EQ(ErrorNumberOf([&] { config.setUserCount(qint16(count)); }), errors::Subscript);
    EXPECT_EQ(ErrorNumberOf([&] { config.setUserLevel(0, 1); }), errors::Subscript);
}

TEST(Models, NamesAndDelays) {
    for (const auto& [code, name] :
         {std::pair{0, "-----"}, {2, "Q6200XT"}, {5, "P5500"}, {-1, ""}, {6, ""}})
        EXPECT_EQ(ModuleName(code), Text(name)) << code;
    for (const auto& [index, time] : {std::pair{0, ""}, {1, "00:01"}, {9, "36:00"}})
        EXPECT_EQ(ReactivTime(index), Text(time)) << index;
    EXPECT_EQ(ReactivTime(Text(" 12:00 ")), 6);
    for (const char* text : {"", "@", "12:0"})
        EXPECT_EQ(ReactivTime(Text(text)), std::nullopt) << text;
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
