#pragma once

#include "bus/AlarmConsole.h"
#include "bus/wPolling.h"
#include "config_screens/ConfigScreens.h"
#include "core/Boxes.h"
#include "core/Config.h"
#include "core/Faults.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Trace.h"
#include "model/Models.h"
#include "screens/Screens.h"
#include "system/Processes.h"
#include "technician/Technician.h"

#include <QCoreApplication>
#include <QTest>

/// The real engine over a pseudo-terminal with the simulator at its far end. The bus is at rest
/// until the test starts it, so that modules can have a past.
class Road : public ::testing::Test {
protected:
    /// Modules as "1=Q7100"; panels of these models stand under the same addresses, unless the test
    /// sets the site up itself.
    explicit Road(const QStringList& modules, bool withPanels = true)
        : simulator(folder.Bus(), modules) {
        EXPECT_TRUE(Config::OpenConfigBase());
        Global::Get() = Global::State();
        Global::ReadMarks();
        Global::Get().sound = std::make_unique<platform::SilentSound>();
        Global::setConfiguration(std::make_unique<ConfigClass>());
        for (const QString& module : withPanels ? modules : QStringList())
            AddPanel(module.section(u'=', 0, 0).toInt(), module.section(u'=', 1));
        RegisterScreens();
        RegisterConfigScreens();
        RegisterTechnician();
        // Yes to what asks with yes and no, OK to all others.
        Messages::Install([this](const QString& text, int style, bool) {
            boxes += text;
            return int((style & Messages::ButtonSet) == Messages::YesNoCancel ? Messages::Yes
                                                                              : Messages::Ok);
        });
        Trace::OpenToday();
        engine = std::make_unique<wPolling>(
            platform::MakeSerialPort([this](int) { return folder.Bus(); }));
        engine->Form_Load();
    }
    ~Road() override {
        engine->Form_Unload();
        Forms::UnloadAllBut({});
        engine.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Messages::Install(nullptr);
        Boxes::Forget();
        Faults::Forget();
        Global::setConfiguration(nullptr);
    }

    static ConfigClass& Site() { return Global::Configuration(); }

    static void AddPanel(int address, const QString& model) {
        PanelClass& panel = Site().Panel(address);
        for (const quint8 code :
             {Models::Q7100, Models::Q6200XT, Models::Q7000, Models::P5000, Models::P5500})
            if (ModuleName(code) == model)
                panel.setModel(code);
        EXPECT_NE(panel.Model(), Models::None) << model.toStdString();
        panel.setActive(true);
        for (int number = 1; number <= 24; ++number)
            panel.Channel(number).setScrAlm(true);
    }

    /// A control of a form that is loaded.
    template <class W = QWidget> static W* Find(const QString& form, const QString& name) {
        const auto* window = dynamic_cast<const QWidget*>(Forms::Find(form));
        W* control = window == nullptr ? nullptr : window->findChild<W*>(name);
        EXPECT_NE(control, nullptr) << form.toStdString() << "." << name.toStdString();
        return control;
    }
    static void Tap(const QString& form, const QString& name) {
        QWidget* control = Find(form, name);
        if (control == nullptr)
            return;
        EXPECT_TRUE(control->isVisible() && control->isEnabled())
            << form.toStdString() << "." << name.toStdString();
        QTest::mouseClick(control, Qt::LeftButton);
    }
    /// What the trace holds of an event.
    QStringList Traced(const QString& part) const { return folder.Trace().filter(part); }

    /// Lets the bus run until a condition holds, at most a minute.
    static bool Until(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, 60000);
    }
    /// A field of what the simulator shows of a module: "states", "forced", "waiting", "horn".
    QByteArray Shown(int address, const QByteArray& field) {
        const QByteArray head = "show " + QByteArray::number(address);
        const QByteArray line = simulator.Ask(head, head) + ' ';
        const qsizetype at = line.indexOf(' ' + field + '=') + field.size() + 2;
        return line.mid(at, line.indexOf(' ', at) - at);
    }
    static QStringList Rows() {
        QStringList rows;
        const AlarmConsole* console = AlarmConsole::Loaded();
        for (int row = 0; console != nullptr && row < console->RowCount(); ++row)
            rows += console->RowText(row);
        return rows;
    }

    RunFolder folder;
    SimulatorProcess simulator;
    QStringList boxes;
    std::unique_ptr<wPolling> engine;
};
