#pragma once

#include <QString>
#include <QtGlobal>

class EventClass;

/// What the engine needs of the alarm console: its rows, and a way to hand it an event past the
/// routing. The console says itself when it comes and goes, so that the engine knows no screen.
class AlarmConsole {
public:
    virtual ~AlarmConsole() = default;

    virtual int RowCount() const = 0;
    /// Text of a row, 0 the topmost: event number, date and time come first, parted by blanks.
    /// Empty for a row that isn't there.
    virtual QString RowText(int row) const = 0;
    /// `ID` of the last event of a row; 0 for a row that isn't there.
    virtual qint32 RowData(int row) const = 0;
    virtual void EmptyList() = 0;
    /// Takes an event as if the bus had brought it.
    virtual void TakeEvent(const EventClass& event) = 0;

    /// The console that is loaded, or null.
    static AlarmConsole* Loaded() { return loaded_; }

protected:
    AlarmConsole() { loaded_ = this; }
    AlarmConsole(const AlarmConsole&) = delete;
    AlarmConsole& operator=(const AlarmConsole&) = delete;

    /// From here on the console is gone for the engine.
    void Gone() {
        if (loaded_ == this)
            loaded_ = nullptr;
    }

private:
    static inline AlarmConsole* loaded_ = nullptr;
};
