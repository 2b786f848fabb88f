#pragma once

#include "config_screens/ConfigScreens.h"
#include "core/FormNames.h"
#include "model/CurrentConfig.h"
#include "platform/SystemClock.h"
#include "support/PortsOfTest.h"
#include "support/ScreensFixture.h"
#include "support/Script.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

/// A machine's clock that nobody may set: no test ever sets that of the machine it runs on.
class LockedClock : public platform::SystemClock {
public:
    LockedClock() { Install(this); }
    ~LockedClock() override { Install(nullptr); }
    LockedClock(const LockedClock&) = delete;
    LockedClock& operator=(const LockedClock&) = delete;

    Result Set(const QDateTime&) override { return {Outcome::Refused, QString()}; }
    QString TimeZone() const override { return QStringLiteral("UTC"); }
};

/// A bench with the screens of the configuration and a site of its own.
class ConfigScreensTest : public ScreensTest {
protected:
    /// `form` is the screen that is put to the test, `out` the button that leaves it.
    explicit ConfigScreensTest(QString form = {}, QString out = "imgNavig_0")
        : Form(std::move(form))
        , out_(std::move(out)) {
        RegisterConfigScreens();
        Global::setConfiguration(nullptr);
    }

    /// Leaves the screen, with an answer to what it may ask.
    void Leave(int reply) {
        answer = reply;
        Tap(Form, out_);
        answer = Messages::Ok;
        RemoveUnloaded();
    }
    void Press(const char* array, int index, int times = 1) const {
        while (times-- > 0)
            Tap(Form, Part(array, index));
    }
    QString Shown(const char* label) const { return TextOf(Form, label); }
    /// The screen tells that it shows an edit which an alarm interrupted.
    bool TellsOfKept() const { return !Child(Form, "lblKept")->isHidden(); }

    /// Taps a control and answers the list that it brings up with a value.
    void Choose(const QString& form, const QString& control, const QString& value) {
        script.On(FormNames::dlgListInput, [&] {
            auto* list = Find<QListWidget>(FormNames::dlgListInput, "lstValue");
            QListWidgetItem* item = list->findItems(value, Qt::MatchExactly).value(0);
            EXPECT_NE(item, nullptr) << value.toStdString();
            list->setCurrentItem(item);
            Tap(FormNames::dlgListInput, "imgControl_2");
        });
        Tap(form, control);
    }
    /// Answers the keyboard that comes up next.
    void Type(const QString& text) {
        script.On(FormNames::dlgKeyboard, [text] {
            if (auto* line = Find<QLineEdit>(FormNames::dlgKeyboard, "txtValue_0");
                line->isVisible())
                line->setText(text);
            else
                Find<QPlainTextEdit>(FormNames::dlgKeyboard, "txtValue_1")->setPlainText(text);
            Tap(FormNames::dlgKeyboard, "imgControl_1");
        });
    }
    /// Takes a device of the machine for the port of the screen.
    void ChooseDevice(const QString& label, int row) {
        script.On(FormNames::dlgPortDevice, [row] {
            Find<QListWidget>(FormNames::dlgPortDevice, "lstDevices")->setCurrentRow(row);
            Tap(FormNames::dlgPortDevice, "imgControl_1");
        });
        Tap(Form, label);
    }
    /// Takes a file of the run folder in the file dialog that comes up next.
    void TakeFile(const QString& name) {
        script.On(FormNames::dlgFilePicker, [name] {
            const QString picker = FormNames::dlgFilePicker;
            auto* files = Find<QListWidget>(picker, "lstFiles");
            const QListWidgetItem* file = files->findItems(name, Qt::MatchExactly).value(0);
            ASSERT_NE(file, nullptr);
            files->scrollToItem(file);
            QTest::mouseClick(files->viewport(), Qt::LeftButton, {},
                              files->visualItemRect(file).center());
            QCoreApplication::processEvents();
            Tap(picker, "imgControl_1");
        });
    }

    const QString Form;
    PortsOfTest ports;
    Script script;

private:
    const QString out_;
    LockedClock lockedClock_;
};
