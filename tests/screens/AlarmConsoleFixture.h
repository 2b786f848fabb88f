#pragma once

#include "bus/wPolling.h"
#include "core/Boxes.h"
#include "core/Config.h"
#include "core/Faults.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "core/Trace.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/Folders.h"
#include "platform/Sound.h"
#include "screens/Screens.h"
#include "screens/console/AlarmGrid.h"
#include "screens/console/wRunAlarms.h"
#include "support/FakeLink.h"

#include <QAbstractButton>
#include <QFile>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

/// A site with an engine on a silent line, on 25 November 2025 at 02:43:10. Panels 1 to 5 have
/// models 1 to 5; all channels of panels 1 to 3 go to the screen; one operator is defined and
/// connected.
class ConsoleTest : public ::testing::Test {
protected:
    void SetUp() override {
        platform::OverrideApplication(folder.path(), QStringLiteral("korvanelle"));
        ASSERT_TRUE(QFile::copy(QStringLiteral(KORVANELLE_BUILD_DIR "/korvanelle.cfg"),
                                folder.filePath(QStringLiteral("korvanelle.cfg"))));
        Global::Get().language = 0;
        ASSERT_TRUE(Config::OpenConfigBase());
        Global::ReadMarks();
        Global::Get().sound = std::make_unique<platform::SilentSound>();
        Messages::Install([this](const QString& text, int buttons, bool) {
            messages.append({text, buttons});
            return int(Messages::Ok);
        });
        clock.Set(2025, 11, 25, 2, 43, 10);
        Trace::OpenToday();
        Trace::OpenToday();
        MakeSite();
        answer.callOnTimeout([this] { AnswerDialogs(); });
        answer.start(5);
        engine = std::make_unique<wPolling>(std::make_unique<FakeLink>());
    }
    void TearDown() override {
        Forms::UnloadAllBut({});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        engine.reset();
        Messages::Install(nullptr);
        Boxes::Forget();
        Faults::Forget();
        Global::Get().sound.reset();
        Global::Get().userLevel = 0;
        Global::Get().currentPriority = 0;
        Global::setConfiguration(nullptr);
        Config::CloseConfigBase();
        platform::OverrideApplication(QString(), QString());
    }

    static ConfigClass& Site() { return Global::Configuration(); }

    static void MakeSite() {
        Global::setConfiguration(std::make_unique<ConfigClass>());
        for (int option = 0; option < 5; ++option)
            Site().setOptionScreen(option, true);
        Site().setUserCount(1);
        Site().setUserLevel(1, 1);
        Site().setUserPwd(1, QStringLiteral("OPERATOR"));
        Global::Get().userLevel = 1;
        Site().setBiblio(1, QStringLiteral("Compressor station"));
        for (int number = 1; number <= 5; ++number) {
            Site().Panel(number).setModel(quint8(number));
            Site().Panel(number).setActive(number <= 3);
            for (int channel = 1; channel <= 24; ++channel) {
                Site().Panel(number).Channel(channel).setScrAlm(true);
                Site().Panel(number).Channel(channel).setHisto(false);
            }
        }
        Site().Panel(1).Channel(7).setBibNum(1);
        Site().Panel(1).Channel(7).setScreenText(QStringLiteral("Oil pressure low"));
    }

    wRunAlarms& Load() {
        const Operator::Acting acting;
        console = new wRunAlarms;
        console->Show();
        return *console;
    }
    void Reload() {
        console->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Load();
    }

    /// Hands the console an event as the engine does after routing.
    void Bus(qint16 panel, qint16 chnl, qint16 param, qint16 aff) {
        EventClass event(panel, chnl, param, aff);
        event.setGDH(clock.Now());
        event.setNum(++number);
        Q_EMIT engine->BusEvent(event);
    }

    /// What a dialog asks while a handler of the console waits for it: a code is typed and
    /// confirmed, or the prompt given up when none is prepared; an instruction is noted and closed.
    void AnswerDialogs() {
        const auto find = [](const char* name) {
            auto* dialog = dynamic_cast<ScreenForm*>(Forms::Find(QString::fromLatin1(name)));
            return dialog != nullptr && dialog->isVisible() ? dialog : nullptr;
        };
        const auto press = [](ScreenForm* dialog, const QString& control) {
            QTest::mouseClick(dialog->findChild<QWidget*>(control), Qt::LeftButton);
        };
        if (ScreenForm* prompt = find("dlgUserCodes")) {
            ++prompts;
            const QString typed = codes.isEmpty() ? QString() : codes.takeFirst();
            for (const QChar key : typed)
                press(prompt, QStringLiteral("cmdChar_%1").arg(int(key.unicode())));
            press(prompt, typed.isEmpty() ? QStringLiteral("imgControl_0")
                                          : QStringLiteral("imgControl_1"));
        }
        if (ScreenForm* dialog = find("dlgConsigne")) {
            alarms += dialog->findChild<QLabel*>(QStringLiteral("lblAlarm"))->text();
            instructions += dialog->findChild<QLabel*>(QStringLiteral("lblConsigne"))->text();
            if (whileDialog)
                whileDialog();
            if (find("dlgConsigne") == dialog)
                press(dialog, QStringLiteral("imgClose"));
        }
    }

    template <class W = QWidget> W& Child(const char* name) const {
        W* child = console->findChild<W*>(QString::fromLatin1(name));
        if (child == nullptr)
            throw std::out_of_range(name);
        return *child;
    }
    /// The operator has seen what there is to see.
    void Look() {
        console->grab();
        clock.Advance(2 * TouchGuard::HoldMs);
    }
    void Click(const char* name) {
        Look();
        QTest::mouseClick(&Child(name), Qt::LeftButton);
    }
    QStringList Places() const {
        QStringList places;
        for (int row = 0; row < console->RowCount(); ++row)
            places.append(console->RowText(row).mid(28, 7).trimmed());
        return places;
    }
    QString SelectedPlace() const {
        const AlarmRows& rows = Child<AlarmGrid>("grdAlarms").Rows();
        return rows.Current() < 0 ? QString() : Places()[rows.Current()];
    }
    const platform::SilentSound& Horn() const {
        return static_cast<platform::SilentSound&>(*Global::Get().sound);
    }

    struct Told {
        QString text;
        int buttons;
    };
    QTemporaryDir folder;
    platform::TestClock clock;
    std::unique_ptr<wPolling> engine;
    wRunAlarms* console = nullptr;
    QList<Told> messages;
    /// Codes for the prompts to come, and how many prompts there were.
    QStringList codes;
    int prompts = 0;
    /// Texts of the instruction dialogs that were shown.
    QStringList alarms;
    QStringList instructions;
    std::function<void()> whileDialog;
    QTimer answer;
    int number = 0;
};
