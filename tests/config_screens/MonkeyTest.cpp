// Somebody taps anywhere: whatever the order, the program goes on and the site can be saved and
// read.

#include "ConfigScreensFixture.h"
#include "platform/Ports.h"
#include "screens/touch/TouchImage.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>
#include <random>

namespace {

/// Taps of a run; long runs set the variable.
int Taps() {
    const int wanted = qEnvironmentVariableIntValue("KORVANELLE_TAPS");
    return wanted > 0 ? wanted : 2000;
}

/// Where a way out leads: what is there is no business of this test.
class Elsewhere : public QWidget, public Forms::Form {
public:
    explicit Elsewhere(QString name)
        : name_(std::move(name)) {
        Forms::Added(this);
    }
    ~Elsewhere() override { Forms::Removed(this); }
    Elsewhere(const Elsewhere&) = delete;
    Elsewhere& operator=(const Elsewhere&) = delete;

    QString Name() const override { return name_; }
    void Show() override { show(); }
    void Hide() override { hide(); }
    void BringToFront() override {}
    bool Visible() const override { return isVisible(); }
    void Unload() override {
        Forms::Removed(this);
        hide();
        deleteLater();
    }

private:
    QString name_;
};

/// Taps at random places of the form that takes touches, one tap as soon as the one before has
/// been taken in, and inside the dialogs that a tap brings up as well.
class Monkey : public QObject {
public:
    Monkey(QString form, unsigned seed)
        : form_(std::move(form))
        , random_(seed) {}

    void Run(int taps) {
        left_ = taps;
        Later();
        while (left_ > 0)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    int Number(int below) { return int(random_() % unsigned(below)); }

private:
    /// The next tap is asked for ahead of this one, which may wait in a dialog.
    void Later() {
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (left_ > 0)
                    Step();
            },
            Qt::QueuedConnection);
    }
    void Step() {
        if (--left_ <= 0) {
            Forms::UnloadAllBut({});
            return;
        }
        QWidget* top = Top();
        if (top == nullptr) {
            Forms::UnloadAllBut({});
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            Forms::Show(form_);
            top = Top();
        }
        ASSERT_NE(top, nullptr) << form_.toStdString();
        Later();
        Tap(*top);
    }
    /// The form that takes touches, or null when the monkey got out to another screen.
    QWidget* Top() const {
        if (QWidget* modal = QApplication::activeModalWidget())
            return modal;
        auto* screen = dynamic_cast<QWidget*>(Forms::Find(form_));
        return screen != nullptr && screen->isVisible() ? screen : nullptr;
    }
    /// On the file dialog only its answers: nothing outside the test's folder is a monkey's
    /// business.
    static bool IsHarmless(const QWidget& top, const QWidget& control) {
        return top.objectName() != FormNames::dlgFilePicker ||
               control.objectName().startsWith(QLatin1String("imgControl"));
    }
    void Tap(QWidget& top) {
        QList<QWidget*> targets;
        for (QWidget* control : top.findChildren<QWidget*>()) {
            if (control->isVisibleTo(&top) && control->isEnabled() && IsHarmless(top, *control) &&
                control->objectName() != QLatin1String("imgBackPicture"))
                targets += control;
        }
        if (targets.isEmpty())
            return;
        QWidget* target = targets[Number(int(targets.size()))];
        if (auto* view = qobject_cast<QAbstractItemView*>(target))
            target = view->viewport();
        const QPoint place(Number(qMax(1, target->width())), Number(qMax(1, target->height())));
        QTest::mouseClick(target, Qt::LeftButton, {}, place);
    }

    QString form_;
    std::mt19937 random_;
    int left_ = 0;
};

class MonkeyTest : public ConfigScreensTest, public ::testing::WithParamInterface<const char*> {
protected:
    MonkeyTest() {
        platform::Ports::Override(
            platform::PortRoots{Path(QString()), Path(QString()), Path(QString()),
                                [] { return QList<platform::PortDevice>(); }});
        const QString texts(40, u'W');
        for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
            PanelClass& panel = Site().Panel(number);
            panel.setModel(quint8(number % 6));
            panel.setActive(number % 3 != 0);
            panel.setTitle(texts);
            for (int channel = 1; channel <= PanelClass::MaxChannel; ++channel)
                panel.Channel(channel).setScreenText(texts);
            Site().setBiblio(number, texts);
        }
        for (int rule = 1; rule <= 20; ++rule)
            Site().Mirrors().Add(qint16(rule), qint16(rule % 12), 30, 1, 1);
        QFile::copy(QStringLiteral(KORVANELLE_SOURCE_DIR "/data/printers/escp.prt"),
                    Path(QStringLiteral("escp.prt")));
    }
    ~MonkeyTest() override { platform::Ports::Override(std::nullopt); }
    MonkeyTest(const MonkeyTest&) = delete;
    MonkeyTest& operator=(const MonkeyTest&) = delete;
};

} // namespace

TEST_P(MonkeyTest, NoTapsHarmTheProgramOrTheSite) {
    const QString form = QString::fromLatin1(GetParam());
    ASSERT_TRUE(Forms::Names().contains(form));
    for (const QString& other : {FormNames::wMain, FormNames::wBusModules, FormNames::wBusPanneau,
                                 FormNames::wBusMiroirs, FormNames::wHelp}) {
        if (other != form)
            Forms::Register(other, [other] { return new Elsewhere(other); });
    }
    std::mt19937 answers(7);
    Messages::Install([&](const QString&, int, bool) {
        constexpr int Replies[] = {Messages::Ok, Messages::Cancel, Messages::Yes, Messages::No,
                                   Messages::Closed};
        return Replies[answers() % std::size(Replies)];
    });
    Monkey monkey(form, 20240315);
    monkey.Run(Taps());
    RemoveUnloaded();
    const QString file = Path(QStringLiteral("monkey.kv2"));
    ASSERT_EQ(Site().Save(file), ConfigClass::Saved);
    ConfigClass again;
    EXPECT_EQ(again.Read(file), 0);
    EXPECT_EQ(again.Panel(1).Title(), Site().Panel(1).Title().trimmed());
    EXPECT_EQ(again.Mirrors().Count(), Site().Mirrors().Count());
}

INSTANTIATE_TEST_SUITE_P(EachScreen, MonkeyTest,
                         ::testing::Values("wBusModules", "wBusPanneau", "wBusMiroirs",
                                           "wParamBiblio", "wParamConsignes", "wParamEcran",
                                           "wSysComm", "wSysConfSon", "dlgSysTime",
                                           "wParamPrinter"),
                         [](const auto& screen) { return std::string(screen.param); });
