#include "model/PanelClass.h"

#include "model/SiteBytes.h"

namespace {

TEST(Panel, IndicesAreBounded) {
    PanelClass panel;
    for (const int index : {-1, 25})
        EXPECT_EQ(ErrorNumberOf([&] { panel.Channel(index); }), errors::Subscript);
    EXPECT_EQ(ErrorNumberOf([&] { panel.ErrCptr(3); }), errors::Subscript);
}

TEST(Panel, IdentityMarksEveryChannel) {
    PanelClass panel;
    EXPECT_EQ(panel.TitleColor(), 65535);
    ExpectMarks<PanelClass>(
        panel,
        {Set(&PanelClass::setNumero, 9), Set(&PanelClass::setModel, 3),
         Set(&PanelClass::setTitle, Text("Boiler")), Set(&PanelClass::setTitleColor, 255)},
        [&] {
            return panel.Modified() && panel.Channel(1).Modified() && panel.Channel(24).Modified();
        },
        [&] {
            EXPECT_FALSE(panel.Channel(0).Modified());
            panel.setModified(false);
            EXPECT_FALSE(panel.Channel(1).Modified() || panel.Channel(24).Modified());
        });
    panel.setActive(true);
    EXPECT_TRUE(panel.Modified());
    for (int i = 0; i <= 24; ++i)
        EXPECT_FALSE(panel.Channel(i).Modified()) << i;
    for (const int model : {0, 1, 2, 3, 4, 5, 200}) {
        panel.setModel(quint8(model));
        EXPECT_EQ(panel.ChannelCount(), model == 2 ? 24 : 12) << model;
    }
}

TEST(Panel, EachChannelSettingMarks) {
    PanelClass panel;
    ChannelClass& channel = panel.Channel(13);
    ExpectMarks<ChannelClass>(
        channel,
        {Set(&ChannelClass::setAlmPrio, 98), Set(&ChannelClass::setBibNum, 1),
         Set(&ChannelClass::setHelpNum, 1), Set(&ChannelClass::setHisto, false),
         Set(&ChannelClass::setKlaxon, true), Set(&ChannelClass::setPrintText, Text("p")),
         Set(&ChannelClass::setPrtAlm, true), Set(&ChannelClass::setReact, true),
         Set(&ChannelClass::setReactTpo, 1), Set(&ChannelClass::setScreenText, Text("s")),
         Set(&ChannelClass::setScrAlm, true), Set(&ChannelClass::setTypeImp, 1)},
        [&] { return channel.Modified() && panel.Modified(); },
        [&] { channel.setModified(false); });
    EXPECT_FALSE(panel.Modified());
}

TEST(Panel, CopyTakesValuesAndLeavesPollingFacts) {
    PanelClass source;
    source.setActualModel(3);
    source.setPresent(true);
    source.setErrCptr(1, 4);
    source.setNextPoll(45000);
    source.Channel(0).setBibNum(9);
    source.Channel(24).setState(2);
    source.Channel(24).setMirrorType(1);
    source.Channel(24).setOutOfOrder(true);
    EXPECT_FALSE(source.Modified()) << "none of that is an edit";
    source.setNumero(5);
    source.setModel(2);
    source.setTitle(Text("Tank"));
    source.setActive(true);
    source.Channel(24).setScreenText(Text("Level"));

    PanelClass target;
    target.Copy(source);
    EXPECT_TRUE(target.Present() && target.Modified());
    EXPECT_EQ(target.ActualModel(), 3);
    EXPECT_EQ(target.ErrCptr(1) + target.NextPoll() + target.Channel(0).BibNum(), 0);
    EXPECT_EQ(target.Channel(24).State() * 10 + target.Channel(24).MirrorType(), 21);
    EXPECT_FALSE(target.Channel(24).OutOfOrder());

    target.setModified(false);
    target.Copy(source);
    EXPECT_FALSE(target.Modified()) << "the same values again";
    EXPECT_EQ(Saved(target), Saved(source));
}

} // namespace
