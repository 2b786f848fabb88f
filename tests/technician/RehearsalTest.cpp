// A rehearsal on the screens: its mark, and how it is begun.

#include "core/Rehearsal.h"
#include "technician/TechnicianFixture.h"

namespace {

class RehearsalTest : public TechnicianTest {
protected:
    ~RehearsalTest() override {
        Forms::UnloadAllBut({});
        RemoveUnloaded();
        Rehearsal::Override(false);
        Rehearsal::OverrideSimulator(QString());
    }
};

} // namespace

// At the design's size, which leaves no room, and scaled.
TEST_F(RehearsalTest, EveryWindowBearsItsMarkAndNothingLiesBeneath) {
    Rehearsal::Override(true);
    for (const auto& [noResize, display] :
         {std::pair{true, QSize(800, 600)}, {false, QSize(1280, 800)}}) {
        Global::Get().noResize = noResize;
        OverrideScreenSize(display);
        for (const QString& name : Forms::Names()) {
            SCOPED_TRACE(name.toStdString());
            auto* form = dynamic_cast<ScreenForm*>(Forms::Load(name));
            if (form == nullptr)
                continue;
            const auto* mark = form->findChild<QWidget*>("lblRehearsal");
            ASSERT_NE(mark, nullptr);
            EXPECT_GE(mark->height(), 44);
            EXPECT_EQ(mark->geometry().bottomRight(), form->rect().bottomRight());
            EXPECT_LE(form->width(), display.width());
            EXPECT_LE(form->height(), display.height());
            for (const QWidget* control :
                 form->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
                const bool beneath = control != mark && !control->isWindow() &&
                                     control->geometry().intersects(mark->geometry());
                EXPECT_FALSE(beneath) << control->objectName().toStdString();
            }
            Forms::UnloadAllBut({});
            RemoveUnloaded();
        }
    }
}

TEST_F(RehearsalTest, TheButtonNeedsTheSimulator) {
    const QString form = FormNames::wTechnician;
    const auto canBegin = [&](const QString& simulator) {
        Rehearsal::OverrideSimulator(simulator);
        Forms::Show(form);
        const bool can = Child(form, "cmdRehearse")->isEnabled();
        EXPECT_NE(Child(form, "lblRehearse")->isVisible(), can);
        if (can)
            Tap(form, "cmdRehearse");
        Forms::Unload(form);
        RemoveUnloaded();
        return can;
    };
    EXPECT_FALSE(canBegin("/nowhere/korvanelle-sim"));
    EXPECT_TRUE(canBegin("/bin/true"));
    EXPECT_EQ(boxes, QStringList{GetText(718012)}) << "a site without panels";
}
