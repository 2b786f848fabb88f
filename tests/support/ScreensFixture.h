#pragma once

#include "bus/wPolling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "screens/Screens.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/ScreenForm.h"
#include "screens/touch/Theme.h"
#include "support/Bench.h"
#include "support/FakeLink.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <QtTest/qtestspontaneevent.h>
#include <functional>

/// A bench with the screens and an engine on a silent line. The message box is a recorder with a
/// prepared answer unless the test installs the real one.
class ScreensTest : public Bench {
protected:
    ScreensTest() {
        RegisterScreens();
        Messages::Install([this](const QString& text, int buttons, bool) {
            boxes += text;
            styles += buttons;
            return answer;
        });
        auto line = std::make_unique<FakeLink>();
        link = line.get();
        engine = std::make_unique<wPolling>(std::move(line));
        engine->Form_Load();
    }
    ~ScreensTest() override {
        Forms::UnloadAllBut({});
        RemoveUnloaded();
        OverrideScreenSize({});
    }
    ScreensTest(const ScreensTest&) = delete;
    ScreensTest& operator=(const ScreensTest&) = delete;

    static void RemoveUnloaded() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    /// Lets the event loop run until a condition holds; a machine under load is slow.
    static bool Comes(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, 60000);
    }
    static ScreenForm* Screen(const QString& name) {
        return dynamic_cast<ScreenForm*>(Forms::Find(name));
    }
    /// Name of a control of an array.
    static QString Part(const char* array, int index) {
        return QStringLiteral("%1_%2").arg(QLatin1String(array)).arg(index);
    }
    static QWidget* Child(const QString& form, const QString& name) {
        ScreenForm* screen = Screen(form);
        QWidget* child = screen ? screen->findChild<QWidget*>(name) : nullptr;
        EXPECT_NE(child, nullptr) << form.toStdString() << "." << name.toStdString();
        return child;
    }
    /// A control of a form by its class.
    template <class W> static W* Find(const QString& form, const QString& name) {
        return qobject_cast<W*>(Child(form, name));
    }
    static QString TextOf(const QString& form, const QString& name) {
        const auto* label = qobject_cast<QLabel*>(Child(form, name));
        return label ? label->text() : QString();
    }
    static void Tap(const QString& form, const QString& name) {
        // The console takes no touch before the operator can have seen what it shows.
        if (form == QStringLiteral("wRunAlarms")) {
            Screen(form)->grab();
            platform::Clock::Current().Sleep(1000);
        }
        if (QWidget* child = Child(form, name))
            QTest::mouseClick(child, Qt::LeftButton);
    }
    static void Tap(const QString& form, const char* array, int index) {
        Tap(form, QString(array) + u'_' + QString::number(index));
    }
    template <class View> static void TapRow(View* view, int row) {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                          view->visualRect(view->model()->index(row, 0)).center());
    }
    /// Types on the keyboard of some other country.
    static void TypeAbroad(QWidget* box, const QString& text) {
        for (const QChar character : text) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
            QCoreApplication::sendEvent(box, &press);
        }
    }
    /// Touches the instruction on a form and gives the two texts of the dialog, none if it doesn't
    /// come.
    static QStringList ReadInstruction(const QString& form) {
        const QString dialog = FormNames::dlgConsigne;
        QStringList texts;
        QTimer reader;
        reader.callOnTimeout([&] {
            if (Screen(dialog) == nullptr || !Screen(dialog)->isVisible())
                return;
            texts = {TextOf(dialog, "lblAlarm").replace(QChar(0xA0), u' '),
                     TextOf(dialog, "lblConsigne")};
            Tap(dialog, "imgClose");
        });
        reader.start(1);
        Tap(form, "imgConsigne");
        return texts;
    }
    /// Asks by a dialog that waits, and does something while it is up. What then still stands is
    /// hidden, so that nothing hangs.
    template <class Ask>
    static auto AskAt(const QString& dialog, const Ask& ask, const std::function<void()>& act) {
        bool acted = false;
        QTimer::singleShot(0, [&] {
            acted = true;
            act();
            if (ScreenForm* left = Screen(dialog); left != nullptr && left->Visible())
                left->Hide();
        });
        auto given = ask();
        EXPECT_TRUE(acted);
        EXPECT_EQ(NbInstances(dialog), 0);
        RemoveUnloaded();
        return given;
    }
    /// Asks a window to close, as the platform does. True when it agrees.
    static bool CloseWindow(QWidget* window) {
        QCloseEvent close;
        QSpontaneKeyEvent::setSpontaneous(&close);
        qApp->notify(window, &close);
        return close.isAccepted();
    }
    /// An alarm comes: the console takes the display and unloads what is open.
    static void AlarmComes() {
        Forms::Show(FormNames::wRunAlarms);
        Forms::GiveWayTo({FormNames::wPolling, FormNames::wRunAlarms});
        RemoveUnloaded();
    }

    FakeLink* link = nullptr;
    std::unique_ptr<wPolling> engine;
    int answer = Messages::Ok;
    QList<int> styles;
};
