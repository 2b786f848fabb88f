#include "screens/touch/ScreenForm.h"
#include "core/ErrorHandling.h"
#include "screens/touch/TouchImage.h"
#include "support/ScreensFixture.h"

#include <QHeaderView>
#include <QTableWidget>
#include <QtTest/qtestspontaneevent.h>

namespace {

const QString SampleName = QStringLiteral("wSample");
const QString Labels = QStringLiteral("lblLabels");

/// A screen of two labels, an image and a grid that notes what happens to it.
class SampleForm : public ScreenForm {
public:
    SampleForm()
        : ScreenForm(SampleName) {
        resize(Theme::DesignWidth, Theme::DesignHeight);
        AddLabel(1, QStringLiteral("10001"), 12);
        AddLabel(3, QStringLiteral("10002"), 15);
        auto* image = new TouchImage(this);
        image->setObjectName(QStringLiteral("imgControl_2"));
        image->setGeometry(400, 300, 100, 60);
        auto* grid = new QTableWidget(2, 2, this);
        grid->setObjectName(QStringLiteral("grdSample"));
        grid->setGeometry(100, 400, 200, 100);
        grid->setColumnWidth(0, 50);
        grid->verticalHeader()->setMinimumSectionSize(1);
        grid->verticalHeader()->setDefaultSectionSize(20);
        OmbrerTexte(Labels, 2, 3);
        Prepare();
        OnClick(QStringLiteral("imgControl"), [this](int index) {
            clicked += index;
            Control(QStringLiteral("imgControl"), index + 1);
        });
        OnClick(Labels, [this](int index) { clicked += index; });
    }

    QLabel* Label(int index) const { return Control<QLabel>(Labels, index); }
    using ScreenForm::Indices;
    using ScreenForm::IsScaled;
    using ScreenForm::Nationality;

    QList<int> clicked;
    int activated = 0;
    int* unloaded = nullptr;

protected:
    void Form_Activate() override { ++activated; }
    void Form_Unload() override {
        if (unloaded != nullptr)
            ++*unloaded;
    }

private:
    void AddLabel(int index, const QString& tag, int points) {
        auto* label = new QLabel(this);
        label->setObjectName(Labels + u'_' + QString::number(index));
        label->setProperty("Tag", tag);
        label->setFont(QFont(QStringLiteral("DejaVu Sans"), points));
        label->setAlignment(Qt::AlignRight);
        label->setGeometry(100, 50 * index, 200, 40);
    }
};

} // namespace

class ScreenFormTest : public ScreensTest {
protected:
    static SampleForm* Made() { return new SampleForm; }
};

TEST_F(ScreenFormTest, ShadowsStandBehindTheLastLabelAndFollowTheLanguage) {
    SampleForm* form = Made();
    EXPECT_EQ(form->Indices(Labels), (QList<int>{1, 3, 4, 5}));
    EXPECT_EQ(form->Label(4)->geometry(), form->Label(1)->geometry().translated(2, 3));
    EXPECT_EQ(form->Label(5)->font(), form->Label(3)->font());
    EXPECT_EQ(form->Label(5)->alignment(), form->Label(3)->alignment());
    EXPECT_EQ(form->Label(5)->palette().color(QPalette::WindowText), QColor(Qt::black));
    for (const int language : {0, 2}) {
        Global::Get().language = qint16(language);
        form->Nationality();
        EXPECT_EQ(form->Label(5)->text(), GetText(10002));
        EXPECT_EQ(form->Label(3)->text(), GetText(10002));
    }
    const QList<QObject*>& order = form->children();
    EXPECT_LT(order.indexOf(form->Label(4)), order.indexOf(form->Label(1)));
}

TEST_F(ScreenFormTest, TapsReachTheHandlerWithTheirIndexAndErrorsTheBox) {
    SampleForm* form = Made();
    form->Show();
    QTest::mouseClick(form->Label(3), Qt::LeftButton);
    EXPECT_EQ(form->clicked, QList<int>{3});
    EXPECT_TRUE(boxes.isEmpty());
    QTest::mouseClick(form->Control(QStringLiteral("imgControl"), 2), Qt::LeftButton);
    EXPECT_EQ(form->clicked, (QList<int>{3, 2}));
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0], ErrorHandling::ErrorText(QStringLiteral("wSample.imgControl_Click"),
                                                 platform::errors::Subscript));
}

TEST_F(ScreenFormTest, LeavesTheRegistryOnceAndOutlivesAClosingOfItsWindow) {
    int unloads = 0;
    SampleForm* form = Made();
    form->unloaded = &unloads;
    form->Show();
    EXPECT_GE(form->activated, 1);
    EXPECT_EQ(form->pos(), form->screen()->geometry().topLeft());
    QCloseEvent close;
    QSpontaneKeyEvent::setSpontaneous(&close);
    qApp->notify(form, &close);
    EXPECT_FALSE(close.isAccepted());
    EXPECT_TRUE(form->Visible());
    EXPECT_EQ(NbInstances(SampleName), 1);

    form->Unload();
    EXPECT_EQ(NbInstances(SampleName), 0);
    EXPECT_FALSE(form->Visible());
    form->Unload();
    form->Show();
    EXPECT_FALSE(form->Visible());
    EXPECT_EQ(unloads, 1);
    RemoveUnloaded();
    EXPECT_EQ(NbInstances(SampleName), 0);
}

TEST_F(ScreenFormTest, ModalShowEndsWithTheForm) {
    SampleForm* form = Made();
    QTimer::singleShot(0, form, &SampleForm::Hide);
    form->ShowModal();
    EXPECT_EQ(NbInstances(SampleName), 1);
    QTimer::singleShot(0, form, &SampleForm::Unload);
    form->ShowModal();
    EXPECT_EQ(NbInstances(SampleName), 0);
}

TEST_F(ScreenFormTest, KeepsItsDesignWithoutScaling) {
    SampleForm* unscaled = Made();
    EXPECT_FALSE(unscaled->IsScaled());
    unscaled->Unload();
    Global::Get().noResize = false;
    OverrideScreenSize({Theme::DesignWidth, Theme::DesignHeight});
    SampleForm* same = Made();
    EXPECT_FALSE(same->IsScaled());
    EXPECT_EQ(same->size(), QSize(Theme::DesignWidth, Theme::DesignHeight));
    EXPECT_EQ(same->Label(1)->font().pixelSize(), 16);
    EXPECT_EQ(Child(SampleName, QStringLiteral("imgBackPicture"))->geometry(), same->rect());
}

TEST_F(ScreenFormTest, DialogsStayOnTheDisplayAndOverTheScreens) {
    const QRect display = QGuiApplication::primaryScreen()->geometry();
    for (const QSize& size : {QSize(500, 400), display.size(), display.size() * 2}) {
        ScreenForm dialog(QStringLiteral("dlgSample"), ScreenForm::Kind::Dialog);
        dialog.resize(size);
        dialog.Show();
        EXPECT_TRUE(display.contains(dialog.geometry().topLeft()));
        EXPECT_TRUE(size.width() > display.width() || display.contains(dialog.geometry()));
        // Screens that aren't fitted to the display cover its upper left part alone.
        EXPECT_TRUE(size.width() > 500 ||
                    dialog.geometry().center() == QRect(0, 0, 800, 600).center());
    }
}

TEST_F(ScreenFormTest, CaptionsShrinkUntilTheyFit) {
    TouchImage tile;
    tile.setFont(Theme::Text(34, true));
    tile.setText(QStringLiteral("Acknowledge"));
    for (const int width : {230, 280, 600}) {
        tile.resize(width, 100);
        const QSize text = QFontMetrics(tile.CaptionFont()).size(0, tile.text());
        EXPECT_TRUE(text.width() <= tile.CaptionArea().width()) << width;
    }
    EXPECT_EQ(tile.CaptionFont().pixelSize(), 34);
}

TEST_F(ScreenFormTest, FitsControlsFontsAndGridsToTheDisplay) {
    Global::Get().noResize = false;
    OverrideScreenSize({1280, 768});
    SampleForm* form = Made();
    EXPECT_TRUE(form->IsScaled());
    EXPECT_EQ(form->size(), QSize(1280, 768));
    EXPECT_EQ(form->Label(3)->geometry(), QRect(160, 192, 320, 51));
    // 16 pixels become 20.48, which is rounded down; 20 become 25.6, which would be rounded up to
    // 26 and lie above the goal.
    EXPECT_EQ(form->Label(1)->font().pixelSize(), 20);
    EXPECT_EQ(form->Label(3)->font().pixelSize(), 25);
    EXPECT_EQ(form->Label(5)->font().pixelSize(), 25);
    const auto* grid = form->findChild<QTableWidget*>(QStringLiteral("grdSample"));
    EXPECT_EQ(grid->columnWidth(0), 80);
    EXPECT_EQ(grid->rowHeight(0), qRound(20 * 1.28));
    EXPECT_EQ(Child(SampleName, QStringLiteral("imgBackPicture"))->geometry(), form->rect());
    // The factors belong to the run and not to a form.
    EXPECT_EQ(CurrentScreenFactors().horizontal, 1.6);
}
