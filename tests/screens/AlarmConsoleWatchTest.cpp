// What the console says of the watch itself, and that no touch does what the operator didn't mean.

#include "core/Boxes.h"
#include "core/Faults.h"
#include "screens/AlarmConsoleFixture.h"
#include "screens/console/ConsoleHead.h"
#include "screens/console/FaultBand.h"
#include "screens/console/RowShapes.h"
#include "screens/remote/wTeleCmde.h"
#include "screens/touch/Colours.h"
#include "screens/touch/Theme.h"

#include <QImage>
#include <QPainter>
#include <cmath>

using Faults::Kind;

namespace {

class ConsoleWatchTest : public ConsoleTest {
protected:
    ~ConsoleWatchTest() override { ConsoleHead::OverrideWatch(std::nullopt); }
    ConsoleWatchTest() = default;
    ConsoleWatchTest(const ConsoleWatchTest&) = delete;
    ConsoleWatchTest& operator=(const ConsoleWatchTest&) = delete;

    void Watch(const ConsoleHead::Watch& watch) {
        ConsoleHead::OverrideWatch(watch);
        Q_EMIT engine->StateChanged();
    }
    QString Words() const { return Child<QLabel>("txtNoAlarm").text(); }
    QString Picture() const { return Child<AlarmMark>("imgNoAlarm").Picture(); }
    AlarmGrid& Grid() const { return Child<AlarmGrid>("grdAlarms"); }
    int Commands() const { return engine->Commands().Count(); }
    /// A touch without a look at what has changed.
    void Tap(const char* name) { QTest::mouseClick(&Child(name), Qt::LeftButton); }
};

/// A colour as someone sees it who lacks one kind of cones wholly. Matrices for linear sRGB from
/// Machado, Oliveira and Fernandes, "A Physiologically-based Model for Simulation of Color Vision
/// Deficiency", 2009, severity 1.
using Matrix = std::array<std::array<double, 3>, 3>;
constexpr Matrix Protanopia{{{0.152286, 1.052583, -0.204868},
                             {0.114503, 0.786281, 0.099216},
                             {-0.003882, -0.048116, 1.051998}}};
constexpr Matrix Deuteranopia{{{0.367322, 0.860646, -0.227968},
                               {0.280085, 0.672501, 0.047413},
                               {-0.011820, 0.042940, 0.968881}}};

/// Place of a colour in CIELAB under D65.
std::array<double, 3> Lab(const QColor& colour, const Matrix& eye) {
    const auto linear = [](double c) {
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    const std::array in{linear(colour.redF()), linear(colour.greenF()), linear(colour.blueF())};
    std::array<double, 3> seen{};
    for (size_t i = 0; i < 3; ++i)
        seen[i] = std::clamp(eye[i][0] * in[0] + eye[i][1] * in[1] + eye[i][2] * in[2], 0.0, 1.0);
    const auto f = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116; };
    const double x = f((0.4124 * seen[0] + 0.3576 * seen[1] + 0.1805 * seen[2]) / 0.95047);
    const double y = f(0.2126 * seen[0] + 0.7152 * seen[1] + 0.0722 * seen[2]);
    const double z = f((0.0193 * seen[0] + 0.1192 * seen[1] + 0.9505 * seen[2]) / 1.08883);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double Distance(const QColor& one, const QColor& other, const Matrix& eye) {
    const auto a = Lab(one, eye);
    const auto b = Lab(other, eye);
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

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
    Watch({BusState::Running, {}, false});
    EXPECT_EQ(Picture(), QStringLiteral("console_calm"));
    EXPECT_EQ(Words(), GetText(710006));
    const struct {
        ConsoleHead::Watch watch;
        int words;
    } cases[] = {
        {{BusState::Stopped, {}, false}, 710009},
        {{BusState::WaitsForPort, {}, false}, 714071},
        {{BusState::FirstReading, {}, false}, 714070},
        {{BusState::PortLost, {}, false}, 714072},
        {{BusState::Running, {3}, false}, 714073},
        {{BusState::PortLost, {1, 2}, true}, 714075},
    };
    for (const auto& [watch, words] : cases) {
        Watch(watch);
        EXPECT_NE(Picture(), QStringLiteral("console_calm")) << words;
        EXPECT_TRUE(Words().startsWith(GetText(words))) << Words().toStdString();
    }
    Watch({BusState::Running, {}, false});
    Faults::Set(Kind::RoundStopped);
    EXPECT_EQ(Picture(), QStringLiteral("console_fault"));
    Faults::Clear(Kind::RoundStopped);
    EXPECT_EQ(Picture(), QStringLiteral("console_calm"));
    // The engine itself, which nobody has started.
    ConsoleHead::OverrideWatch(std::nullopt);
    Q_EMIT engine->StateChanged();
    EXPECT_EQ(Words(), GetText(710009));
}

TEST_F(ConsoleWatchTest, TheBandShowsWhatStandsAndGivesItsRoomBack) {
    Load();
    auto& band = Child<FaultBand>("lblFaults");
    const QRect whole = Grid().geometry();
    EXPECT_TRUE(band.isHidden());
    Faults::Set(Kind::PrinterNotReached, QStringLiteral("17"));
    EXPECT_FALSE(band.isHidden());
    EXPECT_GT(Grid().geometry().top(), band.geometry().bottom());
    EXPECT_EQ(Grid().geometry().bottom(), whole.bottom());
    Click("lblFaults");
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages[0].text.contains(GetText(714009) + QStringLiteral(" 17")));
    // Somebody's unread box comes first, and the touch brings it back.
    QStringList shown;
    Boxes::Install([&](const QString& text, int) { shown += text; });
    Boxes::Post(QStringLiteral("unread"), Messages::Critical);
    shown.clear();
    Click("lblFaults");
    EXPECT_EQ(shown, QStringList(QStringLiteral("unread")));
    Boxes::Read();
    Faults::Clear(Kind::PrinterNotReached);
    EXPECT_TRUE(band.isHidden());
    EXPECT_EQ(Grid().geometry(), whole);
}

TEST_F(ConsoleWatchTest, EveryFaultHasItsPictureAndItsWordsFit) {
    Load();
    for (int language = 0; !GetLanguage(language).isEmpty(); ++language) {
        Global::Get().language = qint16(language);
        for (int kind = 0; kind < Faults::KindCount; ++kind) {
            const auto which = Faults::Kind(kind);
            const Faults::Fault fault{
                which, Faults::HasDetail(which) ? QStringLiteral("64") : QString(), 0};
            auto& band = Child<FaultBand>("lblFaults");
            band.Present({fault, fault, fault});
            EXPECT_FALSE(Theme::Picture(FaultBand::PictureOf(which), 32).isNull()) << kind;
            EXPECT_LE(band.fontMetrics().horizontalAdvance(ConsoleHead::TextOf(fault)),
                      band.WordsArea(0).width() * 1.2)
                << ConsoleHead::TextOf(fault).toStdString();
        }
    }
    Global::Get().language = 0;
}

TEST_F(ConsoleWatchTest, StatesDifferByShapeOrColourForEveryEye) {
    std::vector<QImage> shapes;
    shapes.reserve(RowStateCount);
    for (int state = 0; state < RowStateCount; ++state)
        shapes.push_back(ShapeOf(RowState(state)));
    for (int one = 0; one < RowStateCount; ++one) {
        for (int other = 0; other < one; ++other) {
            const auto colour = [](int state) {
                return Colours::FromBgr(AlarmRows::ColourOf(RowState(state)));
            };
            const double nearest = std::min(Distance(colour(one), colour(other), Protanopia),
                                            Distance(colour(one), colour(other), Deuteranopia));
            const int pixels = DifferentPixels(shapes[size_t(one)], shapes[size_t(other)]);
            EXPECT_TRUE(nearest > 25 || pixels > 40)
                << one << ' ' << other << ": " << nearest << ", " << pixels << " of 576 pixels";
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
    EXPECT_EQ(Child<QLabel>("lblCount").text(), QStringLiteral("3 of 3, 2 not acknowledged"));
    Site().Panel(2).setTitle(QStringLiteral("Fire water"));
    Bus(2, 255, 1, 0);
    const AlarmRow& lost = Grid().Rows().Row(0);
    EXPECT_TRUE(AlarmGrid::PaintedText(lost).endsWith(QStringLiteral(" Fire water")));
    EXPECT_FALSE(lost.text.contains(QStringLiteral("Fire")));
}

// The console came up, or the selection jumped, under a finger that was already on its way.
TEST_F(ConsoleWatchTest, ATouchMeantForSomethingElseIsNotTaken) {
    Load();
    Bus(1, 1, 1, 4);
    Look();
    Bus(1, 7, 1, 3);
    ASSERT_EQ(SelectedPlace(), QStringLiteral("P01-C07")) << "jumped";
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

// An event brings the console over the remote control, whose release lies where the console
// acknowledges.
TEST_F(ConsoleWatchTest, AReleaseUnderTheFingerBecomesNoAcknowledgement) {
    Load();
    Bus(1, 1, 1, 4);
    auto* remote = new wTeleCmde;
    {
        const Operator::Acting acting;
        remote->Show();
    }
    Look();
    const auto* release = remote->findChild<QWidget*>(QStringLiteral("ImgTcmde_0"));
    const QPoint finger = release->mapTo(remote, release->rect().center());
    ASSERT_TRUE(Child("imgAcquit").geometry().contains(finger));
    EventClass alarm(2, 255, 1, 0);
    engine->SendEvent(alarm);
    ASSERT_EQ(NbInstances(QStringLiteral("wTeleCmde")), 0);
    const int rows = console->RowCount();
    QTest::mouseClick(console->childAt(finger), Qt::LeftButton);
    EXPECT_EQ(console->RowCount(), rows);
    Look();
    QTest::mouseClick(console->childAt(finger), Qt::LeftButton);
    EXPECT_EQ(console->RowCount(), rows - 1);
}

TEST_F(ConsoleWatchTest, ADownedButtonIsLetGoWhenTheSelectionJumps) {
    Load();
    Bus(1, 1, 1, 4);
    Look();
    QTest::mousePress(&Child("imgAcquit"), Qt::LeftButton);
    Bus(1, 7, 1, 3);
    QTest::mouseRelease(&Child("imgAcquit"), Qt::LeftButton);
    EXPECT_EQ(Commands(), 0);
    EXPECT_FALSE(Child<QAbstractButton>("imgAcquit").isDown());
}

TEST_F(ConsoleWatchTest, AcknowledgesOnlyWhatIsSeenAndOnceATouch) {
    Load();
    for (int i = 0; i < 40; ++i)
        Bus(qint16(1 + i / 20), qint16(1 + i % 20), 1, 4);
    Look();
    const QPoint middle = Grid().rect().center();
    const int before = Grid().Rows().First();
    QTest::mousePress(&Grid(), Qt::LeftButton, {}, middle);
    QMouseEvent swipe(QEvent::MouseMove, middle - QPoint(0, 120), middle - QPoint(0, 120),
                      Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&Grid(), &swipe);
    QTest::mouseRelease(&Grid(), Qt::LeftButton, {}, middle - QPoint(0, 120));
    EXPECT_NE(Grid().Rows().First(), before) << "a swipe scrolls";
    EXPECT_EQ(SelectedPlace(), QStringLiteral("P01-C01")) << "and selects nothing";
    Grid().Rows().Position().ScrollTo(0);
    const QString selected = SelectedPlace();
    ASSERT_EQ(selected, QStringLiteral("P01-C01"));
    Click("imgAcquit");
    EXPECT_EQ(Commands(), 0) << "out of sight: brought there";
    EXPECT_TRUE(Grid().Rows().Position().InSight());
    EXPECT_EQ(SelectedPlace(), selected);
    Tap("imgAcquit");
    EXPECT_EQ(Commands(), 0) << "the finger bounced";
    Click("imgAcquit");
    EXPECT_EQ(Commands(), 1);
}
