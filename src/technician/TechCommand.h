#pragma once

#include "bus/CommandClass.h"

#include <QObject>
#include <QTimer>

/// A command that a technician sends, and what becomes of it.
class TechCommand : public QObject {
    Q_OBJECT
public:
    enum class State {
        None,    ///< nothing was sent
        Sent,    ///< it waits in the queue of the polling
        Obeyed,  ///< the module has replied; a broadcast has left
        GivenUp, ///< its tries are over
    };

    explicit TechCommand(QObject* parent = nullptr);

    /// Hands the command to the polling while it runs. Otherwise carries it out with up to four
    /// tries and blocks for that time.
    void SendCommand(const CommandPtr& command);
    State Outcome() const { return state_; }
    /// Module of the command sent last, 0 for all.
    int Module() const { return module_; }

Q_SIGNALS:
    void Changed();

private:
    void Look();
    void setState(State state);

    CommandPtr command_;
    State state_ = State::None;
    int module_ = 0;
    QTimer timer_;
};
