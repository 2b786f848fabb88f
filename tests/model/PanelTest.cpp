#include "model/PanelClass.h"

#include "model/SiteBytes.h"
#include "platform/RunTimeError.h"

namespace errors = platform::errors;

namespace {

TEST(Panel, IsNewWithItsDefaults) {
    const PanelClass panel;
    EXPECT_EQ(panel.TitleColor(), 65535);
    EXPECT_FALSE(panel.Active());
    EXPECT_FALSE(panel.Modified());
    EXPECT_EQ(panel.Channel(0).AlmPrio(), 99);
    EXPECT_TRUE(panel.Channel(24).Histo());
}

TEST(Panel, ChannelCountFollowsTheModel) {
    PanelClass panel;
    for (const int model : {0, 1, 2, 3, 4, 5, 200}) {
        panel.setModel(quint8(model));
        EXPECT_EQ(panel.ChannelCount(), model == 2 ? 24 : 12) << model;
    }
}

TEST(Panel, IndicesAreBounded) {
    PanelClass panel;
    for (const int index : {-1, 25})
        EXPECT_EQ(ErrorNumberOf([&] { panel.Channel(index); }), errors::Subscript);
    for (const int index : {-1, 3}) {
        EXPECT_EQ(ErrorNumberOf([&] { panel.ErrCptr(index); }), errors::Subscript);
        EXPECT_EQ(ErrorNumberOf([&] { panel.setErrCptr(index, 1); }), errors::Subscript);
    }
}

TEST(Panel, IdentityMarksEveryChannel) {
    const std::function<void(PanelClass&)> changes[] = {
        [](PanelClass& panel) { panel.setNumero(9); },
        [](PanelClass& panel) { panel.setModel(3); },
        [](PanelClass& panel) { panel.setTitle(QStringLiteral("Boiler")); },
        [](PanelClass& panel) { panel.setTitleColor(255); },
    };
    PanelClass panel;
    for (const auto& change : changes) {
        change(panel);
        EXPECT_TRUE(panel.Modified());
        EXPECT_TRUE(panel.Channel(1).Modified() && panel.Channel(24).Modified());
        EXPECT_FALSE(panel.Channel(0).Modified());
        panel.setModified(false);
        EXPECT_FALSE(panel.Channel(24).Modified());
        change(panel);
        EXPECT_FALSE(panel.Modified()) << "the same value again";
    }
}

TEST(Panel, ActiveMarksThePanelAlone) {
    PanelClass panel;
    panel.setActive(true);
    EXPECT_TRUE(panel.Modified());
    for (int i = 0; i <= 24; ++i)
        EXPECT_FALSE(panel.Channel(i).Modified());
    panel.setActive(true);
    EXPECT_TRUE(panel.Modified());
}

TEST(Panel, RunTimeFactsMarkNothing) {
    PanelClass panel;
    panel.setActualModel(4);
    panel.setPresent(true);
    panel.setErrCptr(2, 3);
    panel.setNextPoll(45000.5);
    panel.Channel(1).setState(3);
    panel.Channel(1).setMirrorType(1);
    panel.Channel(1).setOutOfOrder(true);
    panel.Channel(0).setAlmPrio(1);
    EXPECT_FALSE(panel.Modified());
}

TEST(Panel, EachChannelSettingMarks) {
    const std::function<void(ChannelClass&)> changes[] = {
        [](ChannelClass& channel) { channel.setAlmPrio(98); },
        [](ChannelClass& channel) { channel.setBibNum(1); },
        [](ChannelClass& channel) { channel.setHelpNum(1); },
        [](ChannelClass& channel) { channel.setHisto(false); },
        [](ChannelClass& channel) { channel.setKlaxon(true); },
        [](ChannelClass& channel) { channel.setPrintText(QStringLiteral("p")); },
        [](ChannelClass& channel) { channel.setPrtAlm(true); },
        [](ChannelClass& channel) { channel.setReact(true); },
        [](ChannelClass& channel) { channel.setReactTpo(1); },
        [](ChannelClass& channel) { channel.setScreenText(QStringLiteral("s")); },
        [](ChannelClass& channel) { channel.setScrAlm(true); },
        [](ChannelClass& channel) { channel.setTypeImp(1); },
    };
    PanelClass panel;
    ChannelClass& channel = panel.Channel(13);
    for (const auto& change : changes) {
        change(channel);
        EXPECT_TRUE(channel.Modified() && panel.Modified());
        channel.setModified(false);
        change(channel);
        EXPECT_FALSE(panel.Modified());
    }
}

TEST(Panel, CopyTakesValuesAndLeavesPollingFacts) {
    PanelClass source;
    source.setNumero(5);
    source.setModel(2);
    source.setActualModel(3);
    source.setTitle(QStringLiteral("Tank"));
    source.setActive(true);
    source.setPresent(true);
    source.setErrCptr(1, 4);
    source.setNextPoll(45000);
    source.Channel(0).setBibNum(9);
    source.Channel(24).setScreenText(QStringLiteral("Level"));
    source.Channel(24).setState(2);
    source.Channel(24).setMirrorType(1);
    source.Channel(24).setOutOfOrder(true);

    PanelClass target;
    target.Copy(source);
    EXPECT_EQ(target.Numero(), 5);
    EXPECT_EQ(target.Model(), 2);
    EXPECT_EQ(target.ActualModel(), 3);
    EXPECT_EQ(target.Title(), QStringLiteral("Tank"));
    EXPECT_TRUE(target.Active() && target.Present() && target.Modified());
    EXPECT_EQ(target.ErrCptr(1), 0);
    EXPECT_EQ(target.NextPoll(), 0);
    EXPECT_EQ(target.Channel(0).BibNum(), 0);
    EXPECT_EQ(target.Channel(24).ScreenText(), QStringLiteral("Level"));
    EXPECT_EQ(target.Channel(24).State(), 2);
    EXPECT_EQ(target.Channel(24).MirrorType(), 1);
    EXPECT_FALSE(target.Channel(24).OutOfOrder());

    target.setModified(false);
    target.Copy(source);
    EXPECT_FALSE(target.Modified()) << "the same values again";
}

} // namespace
