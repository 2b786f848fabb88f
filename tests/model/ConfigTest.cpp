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
    config.InitPanel(5);
    EXPECT_EQ(config.Panel(5).Numero(), 5);
    EXPECT_TRUE(config.Modified() && !config.Panel(5).Modified());
}

TEST(Configuration, AnotherPanelObjectMarksEverything) {
    ConfigClass config;
    const auto panel = std::make_shared<PanelClass>();
    config.setPanel(5, panel);
    EXPECT_EQ(&config.Panel(5), panel.get());
    EXPECT_TRUE(config.Panel(64).Channel(24).Modified());
    config.setModified(false);
    config.setPanel(5, panel);
    EXPECT_FALSE(config.Modified()) << "the same object is no change";
    EXPECT_NE(ErrorNumberOf([&] { config.setPanel(5, nullptr); }), 0);
}

/// A call of a setter.
template <class Object, class... Parameters, class... Values>
std::function<void()> Set(Object& object, void (Object::*setter)(Parameters...), Values... values) {
    return [=, &object] { (object.*setter)(values...); };
}

TEST(Configuration, EachSettingMarksTheSiteUnlessItIsTheSameAgain) {
    using Site = ConfigClass;
    using Chnl = ChannelClass;
    Site site;
    PanelClass& panel = site.Panel(13);
    Chnl& chnl = panel.Channel(24);
    MirrorClass& rule = site.Mirrors().Add(0, 0, 0, 0, 0);
    const std::vector<std::function<void()>> settings[] = {
        {Set(site, &Site::setAlarmPrioSound, 99, 3), Set(site, &Site::setAutoStart, true),
         Set(site, &Site::setBusSettings, Text("COM9")), Set(site, &Site::setBusControl, 1),
         Set(site, &Site::setBiblio, 64, Text("valve")),
         Set(site, &Site::setConsigne, 48, Text("close")), Set(site, &Site::setInactivityTime, 30),
         Set(site, &Site::setOptionHisto, 4, true), Set(site, &Site::setOptionKlaxon, 0, true),
         Set(site, &Site::setOptionPrinter, 7, true), Set(site, &Site::setOptionScreen, 1, true),
         Set(site, &Site::setPrintBusResult, true)},
        {Set(site, &Site::setPrintMaxLen, 80), Set(site, &Site::setPrinterName, Text("Matrix")),
         Set(site, &Site::setPrinterInitCode, 7, Text("<27>")),
         Set(site, &Site::setPrtSettings, Text("LPT9:")),
         Set(site, &Site::setPrinterInitString, 0, Text("E")), Set(site, &Site::setUserCount, 3),
         Set(site, &Site::setUserLevel, 1, 1), Set(site, &Site::setUserName, 1, Text("A")),
         Set(site, &Site::setUserPwd, 1, Text("B"))},
        {Set(panel, &PanelClass::setNumero, 9), Set(panel, &PanelClass::setModel, 3),
         Set(panel, &PanelClass::setTitle, Text("Boiler")),
         Set(panel, &PanelClass::setTitleColor, 255), Set(panel, &PanelClass::setActive, true)},
        {Set(chnl, &Chnl::setAlmPrio, 98), Set(chnl, &Chnl::setBibNum, 1),
         Set(chnl, &Chnl::setHelpNum, 1), Set(chnl, &Chnl::setHisto, false),
         Set(chnl, &Chnl::setKlaxon, true), Set(chnl, &Chnl::setPrintText, Text("p")),
         Set(chnl, &Chnl::setPrtAlm, true), Set(chnl, &Chnl::setReact, true),
         Set(chnl, &Chnl::setReactTpo, 1), Set(chnl, &Chnl::setScreenText, Text("s")),
         Set(chnl, &Chnl::setScrAlm, true), Set(chnl, &Chnl::setTypeImp, 1)},
        {Set(rule, &MirrorClass::setFromModule, 1), Set(rule, &MirrorClass::setFromChannel, 1),
         Set(rule, &MirrorClass::setToModule, 1), Set(rule, &MirrorClass::setToChannel, 1),
         Set(rule, &MirrorClass::setMirrorType, 1)}};
    for (const auto& ofOne : settings) {
        for (const auto& set : ofOne) {
            SCOPED_TRACE(testing::Message() << &ofOne - settings << '/' << &set - ofOne.data());
            for (const bool first : {true, false}) {
                site.setModified(false);
                EXPECT_FALSE(site.Modified());
                set();
                EXPECT_EQ(site.Modified(), first);
            }
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
    EXPECT_EQ(config.Biblio(1), Text(" valve").leftJustified(24));
    EXPECT_EQ(config.BiblioText(1), Text("valve"));
    config.setBiblio(1, QString(30, u'x'));
    EXPECT_EQ(config.Biblio(1), QString(24, u'x'));
    config.setConsigne(2, Text("line\r\n"));
    EXPECT_EQ(config.ConsigneText(2), Text("line\r\n"));

    config.setModified(false);
    for (const int index : {-1, 0, 65}) {
        config.setBiblio(index, Text("x"));
        config.setConsigne(index, Text("x"));
        EXPECT_EQ(config.Biblio(index) + config.ConsigneText(index), QString());
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
