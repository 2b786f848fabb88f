#include "screens/touch/ScreenForm.h"
#include "support/ScreensFixture.h"

namespace {

const QString SampleName = "wSample";
const QString Labels = "lblLabels";

/// A screen of two labels that notes what happens to it.
class SampleForm : public ScreenForm {
public:
    SampleForm()
        : ScreenForm(SampleName) {
        resize(Theme::DesignWidth, Theme::DesignHeight);
        AddLabel(1, 12);
        AddLabel(3, 15);
        Prepare();
    }

    QLabel* Label(int index) const { return Control<QLabel>(Labels, index); }
    using ScreenForm::IsScaled;

    int activated = 0;
    int* unloaded = nullptr;

protected:
    void Form_Activate() override { ++activated; }
    void Form_Unload() override {
        if (unloaded != nullptr)
            ++*unloaded;
    }

private:
    void AddLabel(int index, int points) {
        auto* label = new QLabel(this);
        label->setObjectName(Labels + u'_' + QString::number(index));
        label->setFont(QFont("DejaVu Sans", points));
        label->setGeometry(100, 50 * index, 200, 40);
    }
};

} // namespace

class ScreenFormTest : public ScreensTest {};

TEST_F(ScreenFormTest, LeavesTheRegistryOnceAndOutlivesAClosingOfItsWindow) {
    int unloads = 0;
    auto* form = new SampleForm;
    form->unloaded = &unloads;
    form->Show();
    EXPECT_GE(form->activated, 1);
    EXPECT_EQ(form->pos(), form->screen()->geometry().topLeft());
    EXPECT_FALSE(CloseWindow(form));
    EXPECT_TRUE(form->Visible());
    EXPECT_EQ(NbInstances(SampleName), 1);

    QTimer::singleShot(0, form, &SampleForm::Hide);
    form->ShowModal();
    EXPECT_EQ(NbInstances(SampleName), 1);
    QTimer::singleShot(0, form, &SampleForm::Unload);
    form->ShowModal();
    EXPECT_EQ(NbInstances(SampleName), 0);
    EXPECT_FALSE(form->Visible());
    form->Unload();
    form->Show();
    EXPECT_FALSE(form->Visible());
    EXPECT_EQ(unloads, 1);
    RemoveUnloaded();
    EXPECT_EQ(NbInstances(SampleName), 0);
}

TEST_F(ScreenFormTest, DialogsStayOnTheDisplayAndOverTheScreens) {
    const QRect display = QGuiApplication::primaryScreen()->geometry();
    // Screens that aren't fitted to the display cover its upper left part alone.
    const QRect places[] = {{150, 100, 500, 400}, display, {display.topLeft(), display.size() * 2}};
    for (const QRect& place : places) {
        ScreenForm dialog("dlgSample", ScreenForm::Kind::Dialog);
        dialog.resize(place.size());
        dialog.Show();
        EXPECT_EQ(dialog.geometry(), place) << place.width();
    }
}

TEST_F(ScreenFormTest, FitsControlsAndFontsToTheDisplay) {
    const auto made = [](bool isScaled, const QSize& size) {
        auto* form = new SampleForm;
        EXPECT_EQ(form->IsScaled(), isScaled);
        EXPECT_EQ(form->size(), size);
        EXPECT_EQ(form->findChild<QWidget*>("imgBackPicture")->geometry(), form->rect());
        return form;
    };
    const QSize design(Theme::DesignWidth, Theme::DesignHeight);
    made(false, design);
    Global::Get().noResize = false;
    OverrideScreenSize(design);
    EXPECT_EQ(made(false, design)->Label(1)->font().pixelSize(), 16);
    OverrideScreenSize({1280, 768});
    const SampleForm* form = made(true, {1280, 768});
    EXPECT_EQ(form->Label(3)->geometry(), QRect(160, 192, 320, 51));
    // 16 pixels become 20.48, which is rounded down; 20 become 25.6, which would be rounded up to
    // 26 and lie above the goal.
    EXPECT_EQ(form->Label(1)->font().pixelSize(), 20);
    EXPECT_EQ(form->Label(3)->font().pixelSize(), 25);
    // The factors belong to the run and not to a form.
    EXPECT_EQ(CurrentScreenFactors().horizontal, 1.6);
}
