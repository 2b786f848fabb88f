#include "events/PrinterTest.h"

namespace {
const QString Line = QStringLiteral("***** TEST *****");
} // namespace

PrinterTest::PrinterTest(const QString& portString)
    : portString_(portString) {
    // Errors come in the order of the work: that of the line is worth more than that of its port.
    printer_.onError = [this](const QString& text, int where) {
        result_.error = text;
        result_.where = where;
    };
    printer_.setAddLF(true);
}

bool PrinterTest::Advance() {
    if (begun_)
        printer_.Advance();
    else
        Begin();
    return !printer_.IsBusy();
}

void PrinterTest::Begin() {
    begun_ = true;
    const QString port = portString_.section(u':', 0, 0);
    if (printer_.OpenPrinter(port, portString_.section(u':', 1), true).isEmpty())
        printer_.PrintLine(Line);
}
