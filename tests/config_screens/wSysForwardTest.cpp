// Where events are forwarded to: what is edited, kept and refused. The road to a server is walked
// in tests/system.

#include "events/ForwardSettings.h"
#include "support/ConfigScreensFixture.h"

#include <QAbstractButton>

namespace {

class SysForwardTest : public ConfigScreensTest {
protected:
    SysForwardTest()
        : ConfigScreensTest(FormNames::wSysForward) {
        Forms::Show(Form);
    }
    bool IsOpen(const char* control) const { return Child(Form, control)->isEnabled(); }
};

} // namespace

TEST_F(SysForwardTest, WhatIsEditedIsKeptOverAnAlarmAndInUseOnlyWhenItIsTaken) {
    EXPECT_FALSE(IsOpen("txtServer") || IsOpen("chkTls") || IsOpen("imgTest"));
    Tap(Form, "chkSyslog");
    EXPECT_TRUE(IsOpen("txtServer") && IsOpen("txtAuthority")) << "encrypted unless told otherwise";
    Type("127.0.0.1");
    Tap(Form, "txtServer");
    Type("70000");
    Tap(Form, "lblPort");
    EXPECT_EQ(Shown("lblPort"), "6514");
    Type("9");
    Tap(Form, "lblPort");
    Tap(Form, "chkTls");
    EXPECT_EQ(Shown("lblTls"), GetText(717011));
    EXPECT_FALSE(IsOpen("txtAuthority") || IsOpen("imgTest"));
    AlarmComes();
    EXPECT_EQ(ForwardSettings::Read(), ForwardSettings());
    Forms::Show(Form);
    EXPECT_TRUE(TellsOfKept());
    EXPECT_EQ(Shown("txtServer"), "127.0.0.1");
    Leave(Messages::Yes);
    ForwardSettings taken;
    taken.syslog = true;
    taken.server = {"127.0.0.1", 9, false, {}, {}};
    EXPECT_EQ(ForwardSettings::Read(), taken);
    EXPECT_NE(engine->Forwarder().Present().phase, EventForwarder::Phase::Off);

    Forms::Show(Form);
    Tap(Form, "imgTest");
    EXPECT_TRUE(Shown("lblState").endsWith("1")) << Shown("lblState").toStdString();
    Tap(Form, "chkSyslog");
    Press("imgControl", 0);
    EXPECT_TRUE(Find<QAbstractButton>(Form, "chkSyslog")->isChecked());
    for (const char* folder : {"a", "b"}) {
        QDir().mkpath(Path(folder));
        QFile file(Path(folder) + "/x.pem");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(folder);
    }
    taken.server.authority = Path("a/x.pem");
    taken.server.certificate = Path("b/x.pem");
    taken.KeepFiles();
    EXPECT_NE(taken.server.authority, taken.server.certificate) << "of one name";
    EXPECT_EQ(QFileInfo(taken.server.certificate).path(), Path("Certificates"));
    Tap(Form, "chkSyslog");
    Press("imgControl", 1);
    EXPECT_EQ(Shown("lblState"), GetText(717020));
    EXPECT_FALSE(ForwardSettings::Read().syslog);
}
