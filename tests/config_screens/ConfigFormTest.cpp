// How a screen of the configuration is left: by question, by an alarm.

#include "config_screens/ConfigForm.h"
#include "ConfigScreensFixture.h"

#include <gtest/gtest.h>

namespace {

struct Log {
    bool differs = true;
    bool takes = true;
    QStringList calls;
};

class Editor : public ConfigForm {
public:
    explicit Editor(Log& log)
        : ConfigForm("wEditor")
        , log_(log) {}
    using ConfigForm::Leave;

protected:
    bool Differs() const override { return log_.differs; }
    bool Take() override {
        log_.calls += QStringLiteral("take");
        return log_.takes;
    }
    void Drop() override { log_.calls += QStringLiteral("drop"); }
    void Keep() override { log_.calls += QStringLiteral("keep"); }
    void Closing() override { log_.calls += QStringLiteral("closing"); }

private:
    Log& log_;
};

class ConfigFormTest : public ConfigScreensTest {
protected:
    /// Leaves with an answer; true when the form went.
    bool Left(int reply) {
        answer = reply;
        log.calls.clear();
        auto* form = new Editor(log);
        form->Show();
        const bool left = form->Leave();
        if (!left)
            Forms::Find("wEditor")->Hide();
        log.differs = left && log.differs;
        Forms::UnloadAllBut({FormNames::wMain});
        RemoveUnloaded();
        log.differs = true;
        return left;
    }

    Log log;
};

} // namespace

TEST_F(ConfigFormTest, LeavingAsksOnlyForWhatDiffers) {
    EXPECT_TRUE(Left(Messages::Yes));
    EXPECT_EQ(boxes.last(), GetText(30010));
    EXPECT_EQ(styles.last(), 35);
    EXPECT_EQ(log.calls.join(u' '), "take closing");
    EXPECT_NE(Screen(FormNames::wMain), nullptr);
    EXPECT_TRUE(Left(Messages::No));
    EXPECT_EQ(log.calls.join(u' '), "drop closing");
    EXPECT_FALSE(Left(Messages::Cancel));
    EXPECT_FALSE(Left(Messages::Closed)) << "no answer is none";
    log.takes = false;
    EXPECT_FALSE(Left(Messages::Yes)) << "what is refused stays on the screen";
    const qsizetype asked = boxes.size();
    log.differs = false;
    EXPECT_TRUE(Left(Messages::No));
    EXPECT_EQ(boxes.size(), asked);
}

TEST_F(ConfigFormTest, AnAlarmDropsNothingThatDiffers) {
    (new Editor(log))->Show();
    AlarmComes();
    EXPECT_EQ(log.calls.join(u' '), "keep closing");
}
