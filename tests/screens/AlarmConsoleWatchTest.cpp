// What the console says of the watch itself, and that no touch does what the operator didn't mean.

#include "events/Klaxon.h"
#include "screens/AlarmConsoleFixture.h"
#include "screens/console/FaultBand.h"
#include "screens/console/RowShapes.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/touch/Colours.h"

#include <QImage>
#include <QPainter>

using Faults::Kind;

namespace {

class ConsoleWatchTest : public ConsoleTest {
protected:
    void Watch(const ConsoleHead::Watch& watch) {
        ConsoleHead::OverrideWatch(watch);
        Q_EMIT engine->StateChanged();
    }
    QString Words() const { return Text("txtNoAlarm"); }
    QString Picture() const { return Child<AlarmMark>("imgNoAlarm").Picture(); }
    int Commands() const { return engine->Commands().Count(); }
    /// A touch without a look at what has changed.
    void Tap(const char* name) { QTest::mouseClick(&Child(name), Qt::LeftButton); }
};

QImage ShapeOf(RowState state) {
    QImage image(24, 24, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    RowShapes::Draw(painter, image.rect(), state, Qt::black, Qt::white);
    return image;
}

int DifferentPixels(const QImage& one, const QImage& other) {
    int count = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            count += std::abs(qGray(one.pixel(x, y)) - qGray(other.pixel(x, y))) > 128 ? 1 : 0;
    return count;
}

} // namespace

TEST_F(ConsoleWatchTest, TheGreenTickStandsOnlyWhileAllAreWatched) {
    Load();
    EXPECT_EQ(Words(), GetText(710009)) << "the engine itself, which nobody has started";
    const ConsoleHead::Watch calm{BusState::Running, {}, false};
    const std::pair<ConsoleHead::Watch, int> cases[] = {
        {calm, 710006},
        {{BusState::Stopped, {}, false}, 710009},
        {{BusState::WaitsForPort, {}, false}, 714071},
        {{BusState::FirstReading, {}, false}, 714070},
        {{BusState::PortLost, {}, false}, 714072},
        {{BusState::Running, {3}, false}, 714073},
        {{BusState::Running, {}, false, false}, 710012},
        {{BusState::PortLost, {1, 2}, true}, 714075},
        {calm, 710006},
    };
    for (const auto& [watch, words] : cases) {
        Watch(watch);
        EXPECT_EQ(Picture() == "console_calm", words == 710006) << words;
        EXPECT_TRUE(Words().startsWith(GetText(words))) << Words().toStdString();
    }
    Faults::Set(Kind::RoundStopped);
    EXPECT_EQ(Picture(), "console_fault");
    ConsoleHead::OverrideWatch(std::nullopt);
    EXPECT_TRUE(ConsoleHead::Look().anyPanel);
    Global::setConfiguration(nullptr);
    EXPECT_FALSE(ConsoleHead::Look().anyPanel) << "an empty site";
    Global::Configuration().Panel(1).setActive(true);
    Global::Configuration().Panel(1).setModel(Models::P5500 + 1);
    EXPECT_FALSE(ConsoleHead::Look().anyPanel) << "nobody can poll that one";
}

TEST_F(ConsoleWatchTest, TheBandShowsWhatStandsAndGivesItsRoomBack) {
    Load();
    auto& band = Child<FaultBand>("lblFaults");
    const QRect whole = Grid().geometry();
    EXPECT_TRUE(band.isHidden());
    Faults::Set(Kind::PrinterNotReached, "17");
    EXPECT_FALSE(band.isHidden());
    EXPECT_GT(Grid().geometry().top(), band.geometry().bottom());
    EXPECT_EQ(Grid().geometry().bottom(), whole.bottom());
    Click("lblFaults");
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_TRUE(boxes[0].contains(GetText(714009) + " 17"));
    // Somebody's unread box comes first, and the touch brings it back.
    QStringList shown;
    Boxes::Install([&](const QString& text, int) { shown += text; });
    Boxes::Post("unread", Messages::Critical);
    Click("lblFaults");
    EXPECT_EQ(shown, QStringList({"unread", "unread"}));
    Boxes::Read();
    Faults::Clear(Kind::PrinterNotReached);
    EXPECT_TRUE(band.isHidden());
    EXPECT_EQ(Grid().geometry(), whole);
}

TEST_F(ConsoleWatchTest, EveryFaultHasItsPictureAndItsWordsFit) {
    Load();
    auto& band = Child<FaultBand>("lblFaults");
    for (qint16 language = 0; language < 4; ++language) {
        Global::Get().language = language;
        for (int kind = 0; kind < Faults::KindCount; ++kind) {
            const auto which = Faults::Kind(kind);
            const Faults::Fault fault{which, Faults::HasDetail(which) ? "64" : QString(), 0};
            const QString words = ConsoleHead::TextOf(fault);
            band.Present({fault, fault, fault});
            EXPECT_FALSE(Theme::Picture(FaultBand::PictureOf(which), 32).isNull()) << kind;
            EXPECT_LE(band.fontMetrics().horizontalAdvance(words), band.WordsArea(0).width() * 1.2)
                << words.toStdString();
        }
    }
}

// Whoever sees no colours tells them by their shapes.
TEST_F(ConsoleWatchTest, StatesDifferByShapeForEveryEye) {
    QList<QImage> shapes;
    for (int state = 0; state < RowStateCount; ++state) {
        shapes += ShapeOf(RowState(state));
        for (int other = 0; other < state; ++other) {
            EXPECT_GT(DifferentPixels(shapes[state], shapes[other]), 40)
                << state << ' ' << other << ", of 576 pixels";
        }
    }
}

TEST_F(ConsoleWatchTest, TheFrameOfTheSelectionStandsOutFromEveryColour) {
    Load();
    Bus(1, 1, 1, 3);
    for (int state = 0; state < RowStateCount; ++state) {
        Grid().Rows().SetColour(0, AlarmRows::ColourOf(RowState(state)));
        const QImage row = Grid().grab().toImage();
        EXPECT_EQ(row.pixelColor(row.width() / 2, 1), QColor(Qt::black)) << state;
        EXPECT_EQ(row.pixelColor(row.width() / 2, 4), QColor(Qt::white)) << state;
    }
}

TEST_F(ConsoleWatchTest, CountsRowsAndThoseThatWait) {
    Load();
    Bus(1, 1, 1, 3);
    Bus(1, 2, 1, 1);
    Bus(1, 3, 1, 4);
    EXPECT_EQ(Text("lblCount"), "3 of 3, 2 not acknowledged");
    Site().Panel(2).setTitle("Fire|water");
    Bus(2, 255, 1, 0);
    const AlarmRow& lost = Grid().Rows().Row(0);
    EXPECT_TRUE(AlarmGrid::PaintedText(lost).endsWith(" Fire water"));
    EXPECT_FALSE(lost.text.contains("Fire"));
}

// The console came up, or the selection jumped, under a finger that was down or on its way to the
// screen that an event took away.
TEST_F(ConsoleWatchTest, ATouchMeantForSomethingElseIsNotTaken) {
    Load();
    Bus(1, 1, 1, 4);
    EventClass known(1, 1, 1, 4);
    for (const char* other : {"wTeleCmde", "wPolling"}) {
        Forms::Show(other);
        ASSERT_TRUE(Comes([&] { return Screen(other)->isActiveWindow(); }));
        Look();
        engine->SendEvent(known);
        ASSERT_TRUE(Comes([&] { return console->isActiveWindow(); }));
        Tap("imgAcquit");
        EXPECT_EQ(Commands(), 0) << "came up over " << other;
    }
    ASSERT_EQ(NbInstances("wTeleCmde"), 0);
    Look();
    engine->SendEvent(known);
    EXPECT_TRUE(Screen("wPolling")->Visible()) << "left open behind the console";
    QTest::mousePress(&Child("imgAcquit"), Qt::LeftButton);
    EXPECT_TRUE(Child<QAbstractButton>("imgAcquit").isDown());
    Alarme(5);
    Bus(1, 7, 1, 3);
    ASSERT_EQ(SelectedPlace(), "P01-C07") << "jumped";
    Tap("imgArretKlaxon");
    EXPECT_EQ(horn->playing, "") << "the horn is the same whatever is selected";
    QTest::mouseRelease(&Child("imgAcquit"), Qt::LeftButton);
    EXPECT_EQ(Commands(), 0);
    EXPECT_FALSE(Child<QAbstractButton>("imgAcquit").isDown());
    Tap("imgAcquit");
    console->grab();
    clock.Advance(TouchGuard::HoldMs - 1);
    Tap("imgAcquit");
    EXPECT_EQ(Commands(), 0);
    clock.Advance(1);
    Tap("imgAcquit");
    EXPECT_EQ(Commands(), 1);
    EXPECT_GE(engine->Commands().Item(1)->SendTime(), clock.Now() - platform::OneSecond);
}

TEST_F(ConsoleWatchTest, ATouchMeantForAnInstructionDropsNoOffer) {
    Load();
    Bus(1, 1, 1, 4);
    auto* read = new dlgConsigne;
    read->Show();
    Look();
    EventClass known(1, 1, 1, 4);
    engine->SendEvent(known);
    const auto offered = [this] { return Child("fraReadOn").isVisible(); };
    ASSERT_TRUE(offered());
    Tap("imgDrop");
    EXPECT_TRUE(offered());
    Click("imgDrop");
    EXPECT_FALSE(offered());
}

TEST_F(ConsoleWatchTest, AcknowledgesOnlyWhatIsSeenAndOnceATouch) {
    Load();
    for (qint16 i = 0; i < 40; ++i)
        Bus(qint16(1 + i / 20), qint16(1 + i % 20), 1, 4);
    Look();
    const QPoint middle = Grid().rect().center();
    const QPoint above = middle - QPoint(0, 120);
    const int before = Grid().Rows().First();
    QTest::mousePress(&Grid(), Qt::LeftButton, {}, middle);
    QMouseEvent swipe(QEvent::MouseMove, above, above, Qt::NoButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&Grid(), &swipe);
    QTest::mouseRelease(&Grid(), Qt::LeftButton, {}, above);
    EXPECT_NE(Grid().Rows().First(), before) << "a swipe scrolls";
    EXPECT_EQ(SelectedPlace(), "P01-C01") << "and selects nothing";
    Grid().Rows().Position().ScrollTo(0);
    Click("imgAcquit");
    EXPECT_EQ(Commands(), 0) << "out of sight: brought there";
    EXPECT_TRUE(Grid().Rows().Position().InSight());
    EXPECT_EQ(SelectedPlace(), "P01-C01");
    Tap("imgAcquit");
    EXPECT_EQ(Commands(), 0) << "the finger bounced";
    Click("imgAcquit");
    EXPECT_EQ(Commands(), 1);
}
