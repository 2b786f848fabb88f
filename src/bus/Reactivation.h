#pragma once

#include "core/DateTimes.h"

#include <functional>
#include <utility>

/// Brings alarms back that were acknowledged and stand on, after the delay of their channel.
class Reactivation {
public:
    /// `showConsole` brings the console to the front.
    explicit Reactivation(std::function<void()> showConsole)
        : showConsole_(std::move(showConsole)) {}

    /// Looks at all alarms: those on the console, or in the settings while it isn't loaded. Throws
    /// RunTimeError `TypeMismatch` for one whose time can't be read.
    void Work();

private:
    void FromSettings();
    void FromConsole();
    void ReactiverAlarme(qint32 id, DateTime time, qint32 number);

    std::function<void()> showConsole_;
};
