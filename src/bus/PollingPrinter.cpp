// The printer of the engine: its port and its errors.

#include "bus/wPolling.h"

#include "core/DateTimes.h"
#include "core/ErrorHandling.h"
#include "core/Trace.h"
#include "model/CurrentConfig.h"

using ErrorHandling::Guard;

/// A printer that isn't there is told and taken all the same: it may come later. One on the port of
/// the bus is told and not taken.
void wPolling::SetupPrinter() {
    Guard("wPolling.SetupPrinter", [&] {
        const QString settings = Global::Configuration().PrtSettings();
        QString port = settings.section(u':', 0, 0);
        const QString line = settings.section(u':', 1, 1);
        dpPrinter_.onError = [this](const QString& text, int) { TellPrinterError(text); };
        dpPrinter_.setAddLF(true);
        if (port == paper_.Port() && line == paper_.Settings())
            return;
        const bool usable = TestPrintPort(settings);
        if (!usable && (!DirectPrinting::IsPort(port) || IsBusPort(port)))
            port.clear();
        paper_.Use(port, line);
    });
}

/// Another site may have its bus where this one's printer is.
void wPolling::KeepPrinterOffTheBus() {
    Guard("wPolling.KeepPrinterOffTheBus", [&] {
        if (IsBusPort(paper_.Port())) {
            TestPrintPort(paper_.Port());
            paper_.Use(QString(), QString());
        }
        // What is under way there must not go on.
        if (IsBusPort(dpPrinter_.Port()))
            dpPrinter_.setPort(QString());
    });
}

/// In the trace and nowhere else: the alarm is on the screen and in the history. A printer that
/// stays off is told once an hour and not with each line.
void wPolling::TellPrinterError(const QString& text) {
    constexpr DateTime Pause = 60 * platform::OneMinute;
    const DateTime now = DateTimes::Now();
    if (text == printerError_ && now >= printerErrorTime_ && now - printerErrorTime_ < Pause)
        return;
    printerError_ = text;
    printerErrorTime_ = now;
    Trace::Note(QStringLiteral("PRINTER ERROR  ") + text);
}
