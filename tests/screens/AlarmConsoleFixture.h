#pragma once

#include "core/Operator.h"
#include "model/Models.h"
#include "screens/UsersFixture.h"
#include "screens/console/AlarmGrid.h"
#include "screens/console/ConsoleHead.h"
#include "screens/console/wRunAlarms.h"

#include <QAbstractButton>
#include <QScopeGuard>

/// Panels 1 to 5 have models 1 to 5; all channels of panels 1 to 3 go to the screen; an operator is
/// connected.
class ConsoleTest : public UsersTest {
protected:
    ConsoleTest() {
        SetOptions(255, 0, 0, 0);
        Global::Get().userLevel = 1;
        Site().setBiblio(1, "Compressor station");
        for (int panel = 1; panel <= 5; ++panel) {
            Site().Panel(panel).setModel(quint8(panel));
            Site().Panel(panel).setActive(panel <= 3);
            for (int channel = 1; channel <= 24; ++channel) {
                Site().Panel(panel).Channel(channel).setScrAlm(true);
                Site().Panel(panel).Channel(channel).setHisto(false);
            }
        }
        Site().Panel(1).Channel(7).setBibNum(1);
        Site().Panel(1).Channel(7).setScreenText("Oil pressure low");
    }

    wRunAlarms& Load() {
        const Operator::Acting acting;
        console = new wRunAlarms;
        console->Show();
        return *console;
    }

    /// Hands the console an event as the engine does after routing.
    void Bus(qint16 panel, qint16 chnl, qint16 param, qint16 aff) {
        EventClass event(panel, chnl, param, aff);
        event.setGDH(clock.Now());
        event.setNum(++number);
        Q_EMIT engine->BusEvent(event);
    }

    template <class W = QWidget> W& Child(const char* name) const {
        W* child = console->findChild<W*>(name);
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
    AlarmGrid& Grid() const { return Child<AlarmGrid>("grdAlarms"); }
    QString Text(const char* label) const { return Child<QLabel>(label).text(); }
    QStringList Places() const {
        QStringList places;
        for (int row = 0; row < console->RowCount(); ++row)
            places.append(console->RowText(row).mid(28, 7).trimmed());
        return places;
    }
    QString SelectedPlace() const {
        const AlarmRows& rows = Grid().Rows();
        return rows.Current() < 0 ? QString() : Places()[rows.Current()];
    }

    QScopeGuard<std::function<void()>> realWatch{[] { ConsoleHead::OverrideWatch(std::nullopt); }};
    wRunAlarms* console = nullptr;
    int number = 0;
};
