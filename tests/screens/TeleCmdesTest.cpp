// The overview of the remote-controlled modules, worked by touches.

#include "model/Models.h"
#include "screens/remote/Telecommande.h"
#include "screens/remote/wTeleCmde.h"
#include "screens/touch/TouchImage.h"
#include "support/ScreensFixture.h"

namespace {

const QString Overview = "wTeleCmdes";

class TeleCmdesTest : public ScreensTest {
protected:
    /// Remote-controlled modules of both models from address `first` on.
    static void AddModules(int count, int first = 1) {
        for (int i = 0; i < count; ++i)
            AddPanel(first + i, i % 2 == 0 ? Models::P5000 : Models::P5500);
    }
    /// Numbers on the tiles as they stand from left to right and top to bottom.
    static QString Shown() {
        QList<Telecommande*> tiles;
        for (Telecommande* tile : Screen(Overview)->findChildren<Telecommande*>()) {
            if (tile->isVisible())
                tiles += tile;
        }
        std::sort(tiles.begin(), tiles.end(), [](const auto* a, const auto* b) {
            return std::pair(a->y(), a->x()) < std::pair(b->y(), b->x());
        });
        QStringList numbers;
        for (const Telecommande* tile : tiles)
            numbers += tile->findChild<QLabel*>("lblNumPan")->text();
        return numbers.join(u' ');
    }
    static bool Offers(const char* arrow) { return Child(Overview, arrow)->isVisible(); }
    static QWidget& Tile(int place) { return *Child(Overview, Part("Telecmde", place)); }
    static QColor Lamp(int place, int channel) {
        return Tile(place).findChild<Voyant*>(Part("lblVoyant", channel))->Colour();
    }
};

} // namespace

TEST_F(TeleCmdesTest, OnlyModulesInServiceThatTakeCommandsHaveATile) {
    AddPanel(64, Models::P5500).setTitle("Doors|east");
    AddPanel(3, Models::P5000);
    AddPanel(5, Models::P5000).setActive(false);
    for (const int model : {Models::Q7100, Models::Q6200XT, Models::Q7000})
        AddPanel(10 + model, model);
    Forms::Show(Overview);
    EXPECT_EQ(Shown(), "03 64");
    EXPECT_FALSE(Offers("lblNone"));
    EXPECT_FALSE(Offers("imgNavig_1"));
    EXPECT_FALSE(Offers("imgNavig_2"));
    for (const auto& [label, text] :
         {std::pair("lblTypePan", "P5500"), std::pair("lblPnlTitle", "Doors east")})
        EXPECT_EQ(Tile(2).findChild<QLabel*>(label)->text(), text);
    EXPECT_EQ(Tile(2).findChildren<Voyant*>().size(), 12);

    Forms::Unload(Overview);
    Site().Panel(3).setActive(false);
    Site().Panel(64).setActive(false);
    Forms::Show(Overview);
    EXPECT_EQ(Shown(), "");
    EXPECT_TRUE(Offers("lblNone"));
}

TEST_F(TeleCmdesTest, PagesOfTwelveLeadToEveryModule) {
    for (const int count : {12, 13, 24, 30}) {
        AddModules(count);
        Forms::Show(Overview);
        const int last = (count - 1) / 12;
        for (int visit = 0; visit <= 2 * last; ++visit) {
            SCOPED_TRACE(testing::Message() << count << " modules, visit " << visit);
            const int page = last - std::abs(last - visit);
            QStringList numbers;
            for (int number = page * 12 + 1; number <= qMin(count, page * 12 + 12); ++number)
                numbers += QString::number(number).rightJustified(2, u'0');
            EXPECT_EQ(Shown(), numbers.join(u' '));
            EXPECT_EQ(Offers("imgNavig_1"), page > 0);
            EXPECT_EQ(Offers("imgNavig_2"), page < last);
            if (visit < 2 * last)
                Tap(Overview, visit < last ? "imgNavig_2" : "imgNavig_1");
        }
        Forms::Unload(Overview);
        RemoveUnloaded();
    }
}

TEST_F(TeleCmdesTest, LampsFollowTheStatesAtEachTurnOfTheBus) {
    AddModules(2, 7);
    Site().Panel(7).Channel(12).setState(1);
    Forms::Show(Overview);
    EXPECT_EQ(Lamp(1, 12).name(), "#ff0000");
    EXPECT_EQ(Lamp(1, 1).name(), "#808080");
    EXPECT_EQ(Lamp(2, 12).name(), "#808080");
    const std::pair<int, const char*> colours[] = {
        {2, "#ff00ff"}, {4, "#ff00ff"}, {-1, "#ff00ff"}, {1, "#ff0000"}, {0, "#808080"}};
    for (const auto& [state, colour] : colours) {
        Site().Panel(8).Channel(1).setState(qint16(state));
        Q_EMIT engine->PollDone();
        EXPECT_EQ(Lamp(2, 1).name(), colour) << state;
    }
}

TEST_F(TeleCmdesTest, TileOpensItsModuleAndTheWayBackIsKept) {
    AddModules(13, 20);
    Forms::Show(Overview);
    Tap(Overview, "imgNavig_2");
    QTest::mouseClick(Tile(1).findChild<TouchImage*>(), Qt::LeftButton);
    ASSERT_EQ(NbInstances(FormNames::wTeleCmde), 1);
    EXPECT_EQ(dynamic_cast<wTeleCmde&>(*Forms::Find(FormNames::wTeleCmde)).Panel(),
              &Site().Panel(32));
    EXPECT_TRUE(Forms::Find(FormNames::wTeleCmde)->Visible());
    Tap(FormNames::wTeleCmde, "imgClose");
    EXPECT_EQ(NbInstances(FormNames::wTeleCmde), 0);
    EXPECT_TRUE(Forms::Find(Overview)->Visible());
    EXPECT_EQ(Shown(), "32") << "the operator lands on the page that he left";
}
