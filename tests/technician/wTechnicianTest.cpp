// The technician's console: which commands a module takes, what becomes of them, and the copying of
// the traces.

#include "technician/wTechnician.h"
#include "TechnicianFixture.h"
#include "core/SLVfonctions.h"
#include "platform/FileCopy.h"
#include "platform/RunTimeError.h"
#include "technician/TraceCopy.h"

#include <QDir>

namespace {

class wTechnicianTest : public TechnicianTest {
protected:
    wTechnicianTest()
        : TechnicianTest(FormNames::wTechnician) {
        for (int model = 1; model <= 5; ++model)
            AddPanel(model, model);
        Forms::Show(Form);
    }

    wTechnician& Console() const { return *dynamic_cast<wTechnician*>(Screen(Form)); }
    QString Module() const { return Shown("lblNumero"); }
    void Step(int index) const { Press("imgControl", index); }
    void Touch(const char* button) const { Tap(Form, button); }
    bool IsHidden(const char* control) const { return Child(Form, control)->isHidden(); }
    /// Which of state, reset, counter and LEDs a module takes.
    QString Takes(int number) const {
        Console().setNumero(number);
        QString marks;
        for (const char* button : {"cmdPanelState", "cmdPanelReset", "cmdRazCptr", "cmdTestLeds"})
            marks += Child(Form, button)->isEnabled() ? u'+' : u'-';
        return marks;
    }
    void Named(const QString& histories) const { IniWrite("Files", "Histo", histories); }
    QString TraceFile(const QString& name, int size) const {
        WriteFile("Trace/" + name, QByteArray(size, 't'));
        return Path("Trace/" + name);
    }
};

} // namespace

TEST_F(wTechnicianTest, TheModelDecidesWhichCommandsThereAre) {
    // All modules, the five models, none.
    const char* takes[] = {"--++", "++++", "+--+", "++++", "+--+", "+--+", "----"};
    for (int model = 0; model <= 6; ++model)
        EXPECT_EQ(Takes(model), takes[model]) << model;
}

TEST_F(wTechnicianTest, TheModuleIsSteppedToAndRemembered) {
    EXPECT_EQ(Module(), GetText(10101));
    Step(2);
    EXPECT_EQ(Module() + Shown("lblPanelType"), "1Q7100");
    Console().setNumero(60);
    Step(3);
    EXPECT_EQ(Module(), "64");
    Console().setNumero(5);
    Step(0);
    EXPECT_EQ(Module() + Shown("lblPanelType"), GetText(10101));
    for (const char* kept : {"7", "All"}) {
        Console().setNumero(QString::fromLatin1(kept).toInt());
        Forms::Unload(Form);
        RemoveUnloaded();
        EXPECT_EQ(IniRead("General", "TechPanel", QString()), QLatin1String(kept));
        Forms::Show(Form);
        EXPECT_EQ(Module(), QLatin1String(kept));
    }
}

TEST_F(wTechnicianTest, ACommandTellsWhatBecameOfIt) {
    modules[1];
    Console().setNumero(1);
    answer = Messages::Cancel;
    Touch("cmdPanelReset");
    EXPECT_EQ(boxes.takeLast(), GetText(810055));
    EXPECT_EQ(Shown("lblReset"), QString());
    answer = Messages::Ok;
    Touch("cmdPanelReset");
    EXPECT_EQ(modules[1].value(67), 2);
    EXPECT_EQ(Shown("lblReset"), GetText(810142));
    Touch("cmdRazCptr");
    EXPECT_EQ(boxes.last(), GetText(810052));
    EXPECT_EQ(link->sent.last().left(6), QByteArray("\x01\x06\x01\x21\x00\x00", 6));

    Console().setNumero(3);
    link->sent.clear();
    Touch("cmdTestLeds");
    EXPECT_EQ(link->sent.size(), 4) << "an absent module";
    EXPECT_EQ(Shown("lblTestLeds"), GetText(810143));

    Console().setNumero(0);
    EXPECT_EQ(Shown("lblTestLeds"), QString()) << "that was of another module";
    Touch("cmdTestLeds");
    EXPECT_EQ(link->sent.last().left(6), QByteArray("\x00\x06\x00\x42\x00\x01", 6));
    EXPECT_EQ(Shown("lblTestLeds"), GetText(810144));
}

TEST_F(wTechnicianTest, WhileTheBusRunsTheQueueTakesTheCommand) {
    // No loss of a panel brings the console.
    SetOptions(0, 0, 0, 0);
    modules[1];
    Touch("imgStopRun_1");
    EXPECT_TRUE(engine->Run());
    EXPECT_TRUE(IsHidden("imgStopRun_1"));
    Console().setNumero(1);
    link->sent.clear();
    Touch("cmdTestLeds");
    EXPECT_TRUE(link->sent.isEmpty());
    EXPECT_EQ(Shown("lblTestLeds"), GetText(810141));
    for (int round = 0; round < 5; ++round) {
        clock.Advance(1000);
        engine->RunComm();
    }
    EXPECT_TRUE(Comes([&] { return Shown("lblTestLeds") == GetText(810142); }));
    EXPECT_EQ(modules[1].value(66), 1);
    Touch("cmdTestLeds");
    modules[3];
    Console().setNumero(3);
    Touch("cmdPanelReset");
    for (int round = 0; round < 5; ++round) {
        clock.Advance(1000);
        engine->RunComm();
    }
    EXPECT_TRUE(Comes([&] { return Shown("lblReset") == GetText(810142); }));
    EXPECT_EQ(Shown("lblTestLeds"), QString()) << "of a module that isn't shown any more";
    const bool beat = IsHidden("imgComm_0");
    Q_EMIT engine->PollDone();
    EXPECT_NE(IsHidden("imgComm_0"), beat);
    Touch("imgStopRun_0");
    EXPECT_FALSE(engine->Run());
}

TEST_F(wTechnicianTest, MidnightTellsHowFarItIs) {
    QStringList told;
    const auto tell = [&](const QString& text) {
        EXPECT_FALSE(Console().isEnabled());
        told += text;
    };
    Messages::InstallNotice([&](const QString& text) {
        told += text;
        return Messages::ShownNotice{[&] { told += "gone"; }, tell};
    });
    Touch("cmdSynchroMinuit");
    ASSERT_GE(told.size(), 4);
    EXPECT_EQ(told.first(), GetText(30022));
    EXPECT_TRUE(told[1].endsWith(GetText(30023).replace("$1", "1").replace("$2", "5")))
        << told[1].toStdString();
    EXPECT_TRUE(told[2].contains(" s ") && !told[2].contains('|')) << told[2].toStdString();
    EXPECT_EQ(told.last(), "gone");
    EXPECT_TRUE(Console().isEnabled());
}

TEST_F(wTechnicianTest, TracesAreCopiedWholeOrNotAtAll) {
    Named(Path(QString()));
    Touch("cmdCopyTraces");
    EXPECT_TRUE(Shown("lblCopy").isEmpty()) << "onto themselves";
    Named(QStringLiteral("/media/stick %1/histories").arg(QCoreApplication::applicationPid()));
    Touch("cmdCopyTraces");
    EXPECT_EQ(boxes.takeLast(), GetText(30016));
    Named("/dev/null");
    Touch("cmdCopyTraces");
    EXPECT_EQ(boxes.takeLast(), GetText(30018));

    const QString big = TraceFile("big.trc", 900000);
    TraceFile("small.trc", 10);
    const QDir stick(Path("stick/deep/Trace"));
    Named(Path("stick/deep"));
    Touch("cmdCopyTraces");
    EXPECT_TRUE(Comes([&] { return QFile::exists(stick.filePath("small.trc")); }));
    EXPECT_TRUE(Comes([&] { return IsHidden("cmdStopCopy"); }));
    EXPECT_TRUE(Shown("lblCopy").contains(stick.path())) << Shown("lblCopy").toStdString();
    QFile copied(stick.filePath("big.trc"));
    ASSERT_TRUE(copied.open(QIODevice::ReadOnly));
    EXPECT_EQ(copied.readAll(), QByteArray(900000, 't'));
    EXPECT_EQ(QFileInfo(copied).lastModified(), QFileInfo(big).lastModified());

    EXPECT_TRUE(copied.remove());
    Touch("cmdCopyTraces");
    Touch("cmdStopCopy");
    EXPECT_TRUE(IsHidden("cmdStopCopy"));
    EXPECT_EQ(stick.entryList({"*.tmp", "big*"}), QStringList());
}

TEST_F(wTechnicianTest, AStickThatIsPulledOutIsTold) {
    TraceFile("a.trc", 10);
    TraceFile("b.trc", 900000);
    Named(Path("stick"));
    Touch("cmdCopyTraces");
    EXPECT_TRUE(Comes([&] { return QFile::exists(Path("stick/Trace/a.trc")); }));
    QDir(Path("stick/Trace")).removeRecursively();
    EXPECT_TRUE(Comes([&] { return IsHidden("cmdStopCopy"); }));
    EXPECT_TRUE(Shown("lblCopy").startsWith("b.trc")) << Shown("lblCopy").toStdString();

    EXPECT_THROW(platform::FileCopy(Path("no"), Path("x")), platform::RunTimeError);
}
