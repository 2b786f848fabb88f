#pragma once

#include "events/DirectPrinting.h"

#include <QString>

/// One line on a port whose settings are tried out, on a printer of its own. Nothing waits for it.
class PrinterTest {
public:
    /// What came of it: an error and where it arose. A port that didn't take its settings prints
    /// all the same.
    struct Result {
        QString error;
        int where = DirectPrinting::Opening;

        bool IsPrinted() const {
            return error.isEmpty() || where == DirectPrinting::ReadingState ||
                   where == DirectPrinting::SettingState;
        }
    };

    /// `portString` as the site holds it: port, ":", settings.
    explicit PrinterTest(const QString& portString);

    /// Opens the port and prints at the first call, goes on with the others. True when it is over
    /// and the port closed.
    bool Advance();
    const Result& Told() const { return result_; }

private:
    void Begin();

    QString portString_;
    DirectPrinting printer_;
    Result result_;
    bool begun_ = false;
};
