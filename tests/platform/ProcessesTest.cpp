#include "platform/Processes.h"

#include "support/PrintText.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// A name that no other process has.
QString OwnName(const char* head) {
    return QString::fromLatin1(head) + QString::number(QCoreApplication::applicationPid());
}

} // namespace

class ProcessesTest : public ::testing::Test {
protected:
    /// A sleeper under a name of its own.
    void Start(QProcess& process, const QString& name) const {
        const QString program = folder_.filePath(name);
        ASSERT_TRUE(QFile::exists(program) || QFile::copy(Text("/bin/sleep"), program));
        process.start(program, {Text("60")});
        ASSERT_TRUE(process.waitForStarted());
    }

private:
    QTemporaryDir folder_;
};

TEST_F(ProcessesTest, KillEndsEveryProcessOfTheNameAndNoOther) {
    const QString name = OwnName("sleeper");
    const QString longName = OwnName("a-screen-keyboard-");
    QProcess first, second, third, other;
    Start(first, name);
    Start(second, name);
    Start(third, longName + u'a');
    Start(other, longName + u'b');
    EXPECT_FALSE(platform::KillProcess(name)) << "always";
    EXPECT_TRUE(first.waitForFinished(60000));
    EXPECT_TRUE(second.waitForFinished(60000));
    EXPECT_FALSE(platform::KillProcess(longName + u'a'));
    EXPECT_TRUE(third.waitForFinished(60000));
    EXPECT_FALSE(platform::KillProcess(QString()));
    EXPECT_FALSE(platform::KillProcess(name.chopped(1)));
    EXPECT_FALSE(other.waitForFinished(100));
    other.kill();
    other.waitForFinished();
}

TEST_F(ProcessesTest, StartTellsWhetherThereIsSuchAProgram) {
    EXPECT_TRUE(platform::StartProcess(Text("/bin/true --now")));
    EXPECT_FALSE(platform::StartProcess(Text("/nowhere/keyboard")));
    EXPECT_FALSE(platform::StartProcess(QString()));
}
