// The live front of a module: what it reads, how it blinks, what its buttons write, and that it
// leaves nothing behind.

#include "technician/wTechEtatModule.h"
#include "TechnicianFixture.h"
#include "technician/FrontTiles.h"

namespace {

const QString Front = "wTechEtatModule";
constexpr int PanelAddress = 9;
constexpr int HornRegister = 64;

class wTechEtatModuleTest : public TechnicianTest {
protected:
    wTechEtatModuleTest()
        : TechnicianTest(Front) {
        SetOptions(0, 0, 0, 0);
        AddPanel(PanelAddress, Models::Q7100)
            .setNextPoll(DateTimes::Now() + 3600 * platform::OneSecond);
        link->answer = [this](const QByteArray& frame) {
            if (onFrame)
                onFrame(int(link->sent.size()));
            return silent.contains(int(link->sent.size())) ? QByteArray() : modules.Answer(frame);
        };
        modules[PanelAddress];
    }

    wTechEtatModule& Open(int model = Models::Q7100) {
        Site().Panel(PanelAddress).setModel(quint8(model));
        auto* form = dynamic_cast<wTechEtatModule*>(Forms::Load(Front));
        form->MiseEnFormeModule(Site().Panel(PanelAddress));
        form->EnableTimers(true);
        form->Show();
        // The test lets the lamps blink.
        form->findChild<QTimer*>(QStringLiteral("tmrClign"))->stop();
        return *form;
    }
    /// First registers of the frames sent, a write as "register=value".
    QString Sent() const {
        QStringList sent;
        for (const QByteArray& frame : link->sent) {
            const QString first = QString::number(FakeModules::WordAt(frame, 2));
            sent += frame[1] == 6 ? first + u'=' + QString::number(FakeModules::WordAt(frame, 4))
                                  : first;
        }
        return sent.join(u' ');
    }
    /// Letter of a lamp's colour.
    static QChar Lamp(const QString& name) {
        const auto colour = Find<FrontLamp>(Front, name)->FillColor();
        return colour == LampColours::Grey ? u'.' : colour == LampColours::Red ? u'R' : u'?';
    }
    static QString Lamps(int count = 12) {
        QString lamps;
        for (int channel = 1; channel <= count; ++channel)
            lamps += Lamp(Part("shpVoyant", channel));
        return lamps;
    }
    static QChar Horn() { return Lamp("shpKlaxon"); }

    QSet<int> silent;                 // frames that get no reply, from 1 on
    std::function<void(int)> onFrame; // a frame leaves
};

} // namespace

TEST_F(wTechEtatModuleTest, LampsBlinkAsTheWordsSayWithThePollingStopped) {
    const quint16 words[] = {0, 1, 2, 3, 4, 5, 0xFFFF};
    for (int i = 0; i < 7; ++i)
        modules[PanelAddress][1 + i] = words[i];
    modules[PanelAddress][HornRegister] = 7;
    wTechEtatModule& form = Open();
    EXPECT_EQ(Lamps() + Horn() + Shown("lblCommResult"), QString(13, u'?'));
    form.tmrPoll_Timer();
    EXPECT_EQ(Sent(), "1 64");
    EXPECT_EQ(FakeModules::WordAt(link->sent[0], 4), 12);
    EXPECT_EQ(Shown("lblCommResult"), GetText(830102));
    EXPECT_EQ(Horn(), u'R');
    const char* ticks[] = {".R...??", ".R.R.??", ".R.R.??", ".RR.R??", ".R..R??",
                           ".R.RR??", ".R.RR??", ".RR..??", ".R...??"};
    for (const char* tick : ticks) {
        form.tmrClign_Timer();
        EXPECT_EQ(Lamps(7), QString::fromLatin1(tick));
    }
    modules[PanelAddress][HornRegister] = 0;
    form.tmrPoll_Timer();
    EXPECT_EQ(Horn(), u'.');
}

TEST_F(wTechEtatModuleTest, NothingIsKnownAfterThreeFailures) {
    wTechEtatModule& form = Open();
    form.tmrPoll_Timer();
    form.tmrClign_Timer();
    EXPECT_EQ(Lamps() + Horn(), QString(13, u'.'));
    link->sent.clear();
    modules.Remove(PanelAddress);
    form.tmrPoll_Timer();
    EXPECT_EQ(Sent(), "1 1 1 64 64 64");
    EXPECT_EQ(Lamps() + Shown("lblCommResult"), QString(12, u'?') + GetText(830103));
    form.tmrClign_Timer();
    EXPECT_EQ(Lamps() + Horn(), QString(13, u'?'));
}

TEST_F(wTechEtatModuleTest, ADeadModuleIsReadRarelyWhileTheOthersArePolled) {
    engine->setRun(true);
    Site().Panel(PanelAddress).setNextPoll(DateTimes::Now() + 3600 * platform::OneSecond);
    wTechEtatModule& form = Open();
    auto* timer = form.findChild<QTimer*>("tmrPoll");
    modules.Remove(PanelAddress);
    link->sent.clear();
    form.tmrPoll_Timer();
    EXPECT_EQ(Sent(), "1 1 1 64 64 64");
    for (const int seconds : {2, 4, 8, 16, 32, 60, 60}) {
        EXPECT_EQ(timer->interval(), seconds * 1000);
        link->sent.clear();
        form.tmrPoll_Timer();
        EXPECT_EQ(Sent(), "1 64");
    }
    // The polling finds it again, or it answers.
    engine->TraitePanelMove(PanelAddress, false);
    engine->TraitePanelMove(PanelAddress, true);
    EXPECT_EQ(timer->interval(), 1000);
    form.tmrPoll_Timer();
    EXPECT_EQ(timer->interval(), 2000);
    modules[PanelAddress];
    form.tmrPoll_Timer();
    EXPECT_EQ(timer->interval(), 1000);
    EXPECT_EQ(Horn(), u'.');
}

TEST_F(wTechEtatModuleTest, AfterAFailureTheRegisterIsReadUntilTheCountHasComeRound) {
    silent = {1, 5, 6, 7, 10, 11};
    modules[PanelAddress][1] = 1;
    wTechEtatModule& form = Open();
    QStringList lamp;
    onFrame = [&](int) {
        form.tmrClign_Timer();
        lamp += Lamp("shpVoyant_1");
    };
    form.tmrPoll_Timer();
    EXPECT_EQ(Sent(), "1 1 1 1 1 1 64 64 64 64 64");
    EXPECT_EQ(lamp.join(QString()), "??RRRR?????");
    EXPECT_EQ(Horn(), u'?');
}

// A tap and an event at each exchange of a tick, of a module that answers and of one that doesn't,
// and where one failure has the form read without end.
TEST_F(wTechEtatModuleTest, AnEndDuringAReadLeavesNothingBehind) {
    enum Line { Sound, Dead, OneFails };
    const int exchanges[] = {2, 6, 8};
    const std::function<void()> ends[] = {[] { Tap(Front, "imgClose"); }, [] { AlarmComes(); },
                                          [this] { engine->Form_Unload(); }};
    for (const int line : {Sound, Dead, OneFails}) {
        for (int end = 0; end < 3; ++end) {
            for (int exchange = 1; exchange <= exchanges[line]; ++exchange) {
                if (engine->IsClosing())
                    engine->Form_Load();
                link->setPortOpen(true);
                link->sent.clear();
                silent = line == OneFails ? QSet<int>{1} : QSet<int>{};
                modules[PanelAddress];
                if (line == Dead)
                    modules.Remove(PanelAddress);
                onFrame = [&](int frame) {
                    if (frame == exchange)
                        QTimer::singleShot(0, qApp, ends[end]);
                };
                script.On(Front, [] {
                    auto* form = dynamic_cast<wTechEtatModule*>(Forms::Find(Front));
                    form->tmrPoll_Timer();
                    Forms::Unload(Front);
                });
                dynamic_cast<ModuleFront*>(Forms::Load(Front))->Present(Site().Panel(PanelAddress));
                EXPECT_EQ(link->sent.size(), exchange) << line << " " << end;
                EXPECT_EQ(Forms::Find(Front), nullptr);
                RemoveUnloaded();
            }
        }
    }
}

TEST_F(wTechEtatModuleTest, ReadsKeepOutOfARoundAndOutOfEachOther) {
    wTechEtatModule& form = Open();
    onFrame = [&](int) { QTimer::singleShot(0, &form, &wTechEtatModule::tmrPoll_Timer); };
    form.tmrPoll_Timer();
    EXPECT_EQ(Sent(), "1 64");
    engine->setRun(true);
    link->sent.clear();
    for (const qint16 value : {1, 2})
        engine->SendCommand(std::make_shared<CommandClass>(PanelAddress, 200, Words{value}));
    engine->RunComm();
    EXPECT_EQ(Sent(), "200=1 200=2 144");
    onFrame = {};
    EXPECT_EQ(form.findChild<QTimer*>("tmrPoll")->interval(), 50)
        << "the tick that was put off comes again long before a second is over";
    EXPECT_TRUE(Comes([&] { return Sent().endsWith("1 64"); }));
}

TEST_F(wTechEtatModuleTest, ButtonsWriteAndTellWhatBecameOfIt) {
    wTechEtatModule& form = Open();
    const char* labels[] = {"lblTestLeds", "lblAckCL", "lbAckKL",
                            "lblKlOn",     "lblKlOff", "lblEffDEf"};
    const auto tells = [&](int text, int button) {
        return Shown("lblCommand") == GetText(text).replace(u'$', Shown(labels[button - 1]));
    };
    for (int button = 1; button <= 6; ++button) {
        Press("cmdBoutons", button);
        EXPECT_TRUE(tells(830012, button));
    }
    Tap(Front, "lblKlOff");
    EXPECT_EQ(Sent(), "66=1 67=2 67=1 64=1 64=0 67=3 64=0");
    link->sent.clear();
    modules.Remove(PanelAddress);
    Tap(Front, "cmdBoutons_1");
    EXPECT_EQ(Sent(), "66=1 66=1 66=1 66=1");
    EXPECT_TRUE(tells(830013, 1));
    modules[PanelAddress];
    engine->setRun(true);
    link->sent.clear();
    // Held off while a command is sent, as it was behind it.
    Tap(Front, "cmdBoutons_4");
    EXPECT_TRUE(tells(830011, 4));
    EXPECT_TRUE(Comes([&] { return tells(830012, 4); }));
    EXPECT_TRUE(Sent().startsWith("64=1"));
    form.tmrPoll_Timer();
    EXPECT_TRUE(Sent().endsWith("1 64"));
    form.EnableTimers(false);
    Tap(Front, "cmdBoutons_1");
    link->sent.clear();
    form.tmrPoll_Timer();
    EXPECT_EQ(Sent(), QString());
}

// A large module has two columns of tall tiles, the others one column of low ones, and all texts
// are readable at both sizes of display.
TEST_F(wTechEtatModuleTest, TilesOfBothKindsFitBothDisplays) {
    Site().setBiblio(1, "Circuit breaker");
    for (int i = 1; i <= 24; ++i) {
        Site().Panel(PanelAddress).Channel(i).setBibNum(1);
        Site().Panel(PanelAddress).Channel(i).setScreenText("Transformer north");
    }
    Site().Panel(PanelAddress).Channel(2).setScreenText(QString(40, u'W'));
    for (const QSize display : {QSize(800, 600), QSize(1280, 1024)}) {
        Global::Get().noResize = false;
        OverrideScreenSize(display);
        QMap<int, int> heights;
        for (const int model : {Models::Q6200XT, Models::Q7100}) {
            Open(model);
            const int count = Site().Panel(PanelAddress).ChannelCount();
            QSet<int> columns;
            QRect before;
            for (int i = 1; i <= count; ++i) {
                const auto of = [i](const char* array) {
                    return Child(Front, Part(array, i))->geometry();
                };
                const auto* text = Find<QLabel>(Front, Part("lblVoyant", i));
                const QRect tile = of("shpBkLed") | of("shpBkTxt");
                EXPECT_TRUE(Child(Front, "fraVoyants")->rect().contains(tile));
                EXPECT_FALSE(of("lblNum").intersects(of("lblVoyant")));
                const QSize needed = text->fontMetrics().size(0, text->text());
                EXPECT_EQ(needed.boundedTo(text->size()), needed) << i;
                EXPECT_GE(text->font().pixelSize() * 600, 15 * display.height());
                EXPECT_FALSE(tile.intersects(before)) << i;
                before = tile;
                columns += tile.left();
            }
            EXPECT_EQ(columns.size(), count == 24 ? 2 : 1);
            heights[count] = before.height();
            EXPECT_EQ(Shown("lblVoyant_1"), count == 24 ? "Circuit breaker -\nTransformer north"
                                                        : "Circuit breaker - Transformer north");
            EXPECT_TRUE(Shown("lblVoyant_2").endsWith(QChar(0x2026)));
            Forms::Unload(Front);
            RemoveUnloaded();
        }
        EXPECT_GT(heights[24], heights[12]);
    }
}
