#pragma once

#include "config_screens/ConfigScreens.h"
#include "core/FormNames.h"
#include "model/CurrentConfig.h"
#include "platform/SystemClock.h"
#include "support/ScreensFixture.h"
#include "support/Script.h"

#include <QListWidget>

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
    ConfigScreensTest() {
        RegisterConfigScreens();
        Global::setConfiguration(nullptr);
    }

    /// Taps a control and answers the list that it brings up with a value.
    static void Choose(const QString& form, const QString& control, const QString& value) {
        Script script;
        script.On(FormNames::dlgListInput, [&] {
            auto* list = Find<QListWidget>(FormNames::dlgListInput, "lstValue");
            QListWidgetItem* item = list->findItems(value, Qt::MatchExactly).value(0);
            EXPECT_NE(item, nullptr) << value.toStdString();
            list->setCurrentItem(item);
            Tap(FormNames::dlgListInput, "imgControl_2");
        });
        Tap(form, control);
    }
    /// Takes a file of the run folder in the file dialog that comes up next.
    static void TakeFile(Script& script, const QString& name) {
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

private:
    LockedClock lockedClock_;
};
