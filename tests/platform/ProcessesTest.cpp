#include "platform/Processes.h"

#include "support/PrintText.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <array>
#include <gtest/gtest.h>

TEST(ProcessesTest, KillEndsEveryProcessOfTheNameAndNoOther) {
    const QTemporaryDir folder;
    const QString own = QString::number(QCoreApplication::applicationPid());
    const QString name = Text("sleeper") + own;
    // Longer than what the system keeps of a name.
    const QString longName = Text("a-screen-keyboard-") + own;
    std::array<QProcess, 4> sleepers;
    const QString names[] = {name, name, longName + u'a', longName + u'b'};
    for (size_t i = 0; i < sleepers.size(); ++i) {
        const QString program = folder.filePath(names[i]);
        ASSERT_TRUE(QFile::exists(program) || QFile::copy(Text("/bin/sleep"), program));
        sleepers[i].start(program, {Text("60")});
        ASSERT_TRUE(sleepers[i].waitForStarted());
    }
    for (const QString& killed : {name, longName + u'a', QString(), name.chopped(1)})
        EXPECT_FALSE(platform::KillProcess(killed)) << "always";
    for (const size_t ended : {0, 1, 2})
        EXPECT_TRUE(sleepers[ended].waitForFinished(60000)) << ended;
    EXPECT_FALSE(sleepers[3].waitForFinished(100));
    sleepers[3].kill();
    sleepers[3].waitForFinished();
}

TEST(ProcessesTest, StartTellsWhetherThereIsSuchAProgram) {
    EXPECT_TRUE(platform::StartProcess(Text("/bin/true --now")));
    EXPECT_FALSE(platform::StartProcess(Text("/nowhere/keyboard")));
    EXPECT_FALSE(platform::StartProcess(QString()));
}
