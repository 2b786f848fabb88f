// The technician's console: which commands a module takes, what becomes of them, and the copying of
// the traces.

#include "technician/wTechnician.h"
#include "TechnicianFixture.h"
#include "core/SLVfonctions.h"
#include "platform/FileCopy.h"
#include "platform/RunTimeError.h"
#include "support/FakeModules.h"
#include "technician/TraceCopy.h"

#include <QDir>

namespace {

class wTechnicianTest : public TechnicianTest {
protected:
    wTechnicianTest() {
        for (int model = 1; model <= 5; ++model)
            AddPanel(model, model);
        link->answer = [this](const QByteArray& frame) { return modules.Answer(frame); };
        Forms::Show(FormNames::wTechnician);
    }

    static wTechnician& Console() {
        return *dynamic_cast<wTechnician*>(Screen(FormNames::wTechnician));
    }
    static QString Shown() { return TextOf(FormNames::wTechnician, "lblNumero"); }
    static void Step(int index) {
        Tap(FormNames::wTechnician, QStringLiteral("imgControl_%1").arg(index));
    }
    /// Which of state, reset, counter and LEDs a module takes.
    static QString Takes(int number) {
        Console().setNumero(number);
        QString marks;
        for (const char* button : {"cmdPanelState", "cmdPanelReset", "cmdRazCptr", "cmdTestLeds"})
            marks += Child(FormNames::wTechnician, button)->isEnabled() ? u'+' : u'-';
        return marks;
    }
    static QString Outcome(const char* label) { return TextOf(FormNames::wTechnician, label); }
    static QString CopyLine() { return TextOf(FormNames::wTechnician, "lblCopy"); }
    void Named(const QString& histories) const { IniWrite("Files", "Histo", histories); }
    QString TraceFile(const QString& name, int size) const {
        QDir(Path(QString())).mkpath("Trace");
        QFile file(Path(QStringLiteral("Trace/") + name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(size, 't'));
        return file.fileName();
    }

    FakeModules modules;
};

} // namespace

TEST_F(wTechnicianTest, TheModelDecidesWhichCommandsThereAre) {
    EXPECT_EQ(Takes(0), "--++") << "all modules";
    EXPECT_EQ(Takes(1), "++++");
    EXPECT_EQ(Takes(2), "+--+");
    EXPECT_EQ(Takes(3), "++++");
    EXPECT_EQ(Takes(4), "+--+");
    EXPECT_EQ(Takes(5), "+--+");
    EXPECT_EQ(Takes(6), "----") << "no model";
}

TEST_F(wTechnicianTest, TheModuleIsSteppedToAndRemembered) {
    EXPECT_EQ(Shown(), GetText(10101));
    Step(2);
    EXPECT_EQ(Shown(), "1");
    EXPECT_EQ(TextOf(FormNames::wTechnician, "lblPanelType"), "Q7100");
    Console().setNumero(60);
    Step(3);
    EXPECT_EQ(Shown(), "64");
    Console().setNumero(5);
    Step(0);
    EXPECT_EQ(Shown(), GetText(10101));
    EXPECT_EQ(TextOf(FormNames::wTechnician, "lblPanelType"), QString());
    for (const char* kept : {"7", "All"}) {
        Console().setNumero(QString::fromLatin1(kept).toInt());
        Forms::Unload(FormNames::wTechnician);
        RemoveUnloaded();
        EXPECT_EQ(IniRead("General", "TechPanel", QString()), QLatin1String(kept));
        Forms::Show(FormNames::wTechnician);
        EXPECT_EQ(Shown(), QLatin1String(kept));
    }
}

TEST_F(wTechnicianTest, ACommandTellsWhatBecameOfIt) {
    modules[1];
    Console().setNumero(1);
    answer = Messages::Cancel;
    Tap(FormNames::wTechnician, "cmdPanelReset");
    EXPECT_EQ(boxes.takeLast(), GetText(810055));
    EXPECT_EQ(styles.takeLast(), 33);
    EXPECT_EQ(Outcome("lblReset"), QString());
    answer = Messages::Ok;
    Tap(FormNames::wTechnician, "cmdPanelReset");
    EXPECT_EQ(modules[1].value(67), 2);
    EXPECT_EQ(Outcome("lblReset"), GetText(810142));
    Tap(FormNames::wTechnician, "cmdRazCptr");
    EXPECT_EQ(boxes.last(), GetText(810052));
    EXPECT_EQ(link->sent.last().left(6), QByteArray("\x01\x06\x01\x21\x00\x00", 6));

    Console().setNumero(3);
    link->sent.clear();
    Tap(FormNames::wTechnician, "cmdTestLeds");
    EXPECT_EQ(link->sent.size(), 4) << "an absent module";
    EXPECT_EQ(Outcome("lblTestLeds"), GetText(810143));

    Console().setNumero(0);
    EXPECT_EQ(Outcome("lblTestLeds"), QString()) << "that was of another module";
    Tap(FormNames::wTechnician, "cmdTestLeds");
    EXPECT_EQ(link->sent.last().left(6), QByteArray("\x00\x06\x00\x42\x00\x01", 6));
    EXPECT_EQ(Outcome("lblTestLeds"), GetText(810144));
}

TEST_F(wTechnicianTest, WhileTheBusRunsTheQueueTakesTheCommand) {
    modules[1];
    Tap(FormNames::wTechnician, "imgStopRun_1");
    EXPECT_TRUE(engine->Run());
    EXPECT_TRUE(Child(FormNames::wTechnician, "imgStopRun_1")->isHidden());
    Console().setNumero(1);
    link->sent.clear();
    Tap(FormNames::wTechnician, "cmdTestLeds");
    EXPECT_TRUE(link->sent.isEmpty());
    EXPECT_EQ(Outcome("lblTestLeds"), GetText(810141));
    for (int round = 0; round < 5; ++round) {
        clock.Advance(1000);
        engine->RunComm();
    }
    EXPECT_TRUE(Comes([&] { return Outcome("lblTestLeds") == GetText(810142); }));
    EXPECT_EQ(modules[1].value(66), 1);
    const bool beat = Child(FormNames::wTechnician, "imgComm_0")->isHidden();
    Q_EMIT engine->PollDone();
    EXPECT_NE(Child(FormNames::wTechnician, "imgComm_0")->isHidden(), beat);
    Tap(FormNames::wTechnician, "imgStopRun_0");
    EXPECT_FALSE(engine->Run());
}

TEST_F(wTechnicianTest, MidnightTellsHowFarItIs) {
    QStringList told;
    Messages::InstallNotice([&](const QString& text) {
        told += text;
        return Messages::ShownNotice{[&] { told += QStringLiteral("gone"); },
                                     [&](const QString& changed) {
                                         EXPECT_FALSE(Console().isEnabled());
                                         told += changed;
                                     }};
    });
    Tap(FormNames::wTechnician, "cmdSynchroMinuit");
    ASSERT_GE(told.size(), 4);
    EXPECT_EQ(told.first(), GetText(30022));
    EXPECT_TRUE(told[1].endsWith(GetText(30023).replace("$1", "1").replace("$2", "5")))
        << told[1].toStdString();
    EXPECT_TRUE(told[2].contains(" s ")) << told[2].toStdString();
    EXPECT_EQ(told.last(), "gone");
    EXPECT_TRUE(Console().isEnabled());
}

TEST_F(wTechnicianTest, TracesAreCopiedWholeOrNotAtAll) {
    Named(Path(QString()));
    Tap(FormNames::wTechnician, "cmdCopyTraces");
    EXPECT_TRUE(CopyLine().isEmpty()) << "onto themselves";
    Named("/media/no such stick/histories");
    Tap(FormNames::wTechnician, "cmdCopyTraces");
    EXPECT_EQ(boxes.takeLast(), GetText(30016));
    Named("/dev/null");
    Tap(FormNames::wTechnician, "cmdCopyTraces");
    EXPECT_EQ(boxes.takeLast(), GetText(30018));

    const QString big = TraceFile("big.trc", 900000);
    TraceFile("small.trc", 10);
    const QDir stick(Path("stick/deep/Trace"));
    Named(Path("stick/deep"));
    Tap(FormNames::wTechnician, "cmdCopyTraces");
    EXPECT_TRUE(Comes([&] { return QFile::exists(stick.filePath("small.trc")); }));
    EXPECT_TRUE(Comes([&] { return Child(FormNames::wTechnician, "cmdStopCopy")->isHidden(); }));
    EXPECT_TRUE(CopyLine().contains(stick.path())) << CopyLine().toStdString();
    QFile copied(stick.filePath("big.trc"));
    ASSERT_TRUE(copied.open(QIODevice::ReadOnly));
    EXPECT_EQ(copied.readAll(), QByteArray(900000, 't'));
    EXPECT_EQ(QFileInfo(copied).lastModified(), QFileInfo(big).lastModified());

    EXPECT_TRUE(copied.remove());
    Tap(FormNames::wTechnician, "cmdCopyTraces");
    Tap(FormNames::wTechnician, "cmdStopCopy");
    EXPECT_TRUE(Child(FormNames::wTechnician, "cmdStopCopy")->isHidden());
    EXPECT_EQ(stick.entryList({"*.tmp", "big*"}), QStringList());
}

TEST_F(wTechnicianTest, AStickThatIsPulledOutIsTold) {
    TraceFile("a.trc", 10);
    TraceFile("b.trc", 900000);
    Named(Path("stick"));
    const QString target = Path("stick/Trace");
    Tap(FormNames::wTechnician, "cmdCopyTraces");
    EXPECT_TRUE(Comes([&] { return QFile::exists(target + QStringLiteral("/a.trc")); }));
    QDir(target).removeRecursively();
    EXPECT_TRUE(Comes([&] { return Child(FormNames::wTechnician, "cmdStopCopy")->isHidden(); }));
    EXPECT_TRUE(CopyLine().startsWith("b.trc")) << CopyLine().toStdString();

    EXPECT_THROW(platform::FileCopy(Path("no"), Path("x")), platform::RunTimeError);
}
