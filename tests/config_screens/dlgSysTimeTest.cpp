// The clock is set on a machine that only notes it.

#include "core/ErrorHandling.h"
#include "support/ConfigScreensFixture.h"

namespace {

using platform::SystemClock;

class NotedClock : public LockedClock {
public:
    Result Set(const QDateTime& when) override {
        set += when;
        return answer;
    }

    QList<QDateTime> set;
    Result answer;
};

class SysTimeTest : public ConfigScreensTest {
protected:
    SysTimeTest()
        : ConfigScreensTest(FormNames::dlgSysTime) {
        clock.Set(2024, 3, 30, 23, 59, 58);
        Forms::Show(Form);
    }

    QString Fields() {
        QStringList fields;
        for (int field = 0; field < 6; ++field)
            fields += TextOf(Form, Part("lblDate", field));
        return fields.join(u' ');
    }
    QTimer& Timer() { return *Screen(Form)->findChild<QTimer*>("tmrTimeUpdate"); }
    void Set() { Tap(Form, "cmdBoutons_1"); }

    NotedClock machine;
};

} // namespace

TEST_F(SysTimeTest, RunsUntilAFieldIsTouched) {
    EXPECT_EQ(Fields(), "30 03 2024 23 59 58");
    EXPECT_EQ(Shown("lblTimeZone"), machine.TimeZone());
    clock.Advance(9000);
    QMetaObject::invokeMethod(&Timer(), "timeout");
    Press("imgControl", 1, 3);
    Press("imgControl", 8, 2);
    EXPECT_EQ(Fields(), "31 03 2024 00 00 07") << "no field wraps around";
    EXPECT_TRUE(Timer().isActive()) << "nor is the clock's own tick an edit";
    Press("imgControl", 3);
    Press("imgControl", 4);
    EXPECT_FALSE(Timer().isActive());
    Set();
    EXPECT_EQ(machine.set.value(0), QDateTime(QDate(2023, 5, 1), QTime(0, 0, 7)))
        << "a day that April doesn't have";
    EXPECT_TRUE(Timer().isActive());
    EXPECT_EQ(Fields(), "31 03 2024 00 00 07") << "what the clock then says";
}

TEST_F(SysTimeTest, ARefusalSaysWhatToDo) {
    Press("imgControl", 6);
    machine.answer = {SystemClock::Outcome::KeptByNetwork, "words"};
    Set();
    EXPECT_EQ(boxes, QStringList(GetText(630210)));
    machine.answer.outcome = SystemClock::Outcome::Refused;
    Set();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_EQ(boxes[1], ErrorHandling::ErrorText("dlgSysTime.cmdBoutons_Click",
                                                 platform::errors::PermissionDenied));
    EXPECT_EQ(Shown("lblNote"), GetText(630211));
    machine.answer.outcome = SystemClock::Outcome::Failed;
    Set();
    EXPECT_TRUE(Shown("lblNote").contains("words"));
    EXPECT_FALSE(Timer().isActive()) << "what was entered stays";
    EXPECT_EQ(Fields(), "30 03 2024 22 59 58");
}
