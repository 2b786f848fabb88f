#include "model/PanelClass.h"

#include "model/SiteBytes.h"

namespace {

TEST(Panel, IndicesAreBounded) {
    PanelClass panel;
    for (const int index : {-1, 25})
        EXPECT_EQ(ErrorNumberOf([&] { panel.Channel(index); }), errors::Subscript);
    EXPECT_EQ(ErrorNumberOf([&] { panel.ErrCptr(3); }), errors::Subscript);
}

TEST(Panel, IdentityMarksEveryChannelThatCounts) {
    PanelClass panel;
    EXPECT_EQ(panel.TitleColor(), 65535);
    panel.setActive(true);
    EXPECT_TRUE(panel.Modified());
    EXPECT_FALSE(panel.Channel(1).Modified()) << "it is the same panel";
    panel.setTitle(Text("Boiler"));
    for (int i = 0; i <= 24; ++i)
        EXPECT_EQ(panel.Channel(i).Modified(), i > 0) << i;
    for (const int model : {0, 1, 2, 3, 4, 5, 200}) {
        panel.setModel(quint8(model));
        EXPECT_EQ(panel.ChannelCount(), model == 2 ? 24 : 12) << model;
    }
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
