#include "core/DateTimes.h"
#include "events/EventClass.h"
#include "events/EventPrinter.h"
#include "events/FakePort.h"
#include "events/HistoProcs.h"
#include "events/PrinterDefinition.h"
#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Input.h"
#include "fuzz/support/MemoryFiles.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"

using Fuzz::Require;

namespace {

const QString Path = QStringLiteral("/memory/fuzz.prt");
const QByteArray PathBytes = QByteArrayLiteral("/memory/fuzz.prt");
constexpr int Styles = 7;
/// All columns of a printed line, without control bytes.
constexpr int LineWidth = 130;

qsizetype BytesIn(const QString& sequence) {
    return sequence.split(u' ', Qt::SkipEmptyParts).size();
}

/// Which style an event has is known to none but its presence: found is style 4, lost is 1.
EventClass Presence(bool found, const platform::TestClock& clock) {
    EventClass event(1, 255, found ? 1 : 0, found ? 1 : 0);
    event.setNum(1);
    event.setGDH(clock.Now());
    return event;
}

} // namespace

int FuzzPrinter(const uint8_t* data, size_t size) {
    const platform::TestClock& clock = Fuzz::Prepare();
    Input input(data, size);
    ConfigClass& site = Global::Configuration();
    const bool found = (input.Byte() & 1) != 0;
    const QString code = input.Text(input.Byte() & 7);
    // Any number, but most often none: a cut line says little.
    const int longest = input.IsRare() ? qint16(input.Word()) : 0;
    MemoryFiles::Put(PathBytes, input.Rest());

    const PrinterDefinition definition(Path);
    site.setPrintMaxLen(longest);
    site.setPrinterInitString(0, definition.Init());
    const QString sequence = definition.SequenceOf(code);
    Require(sequence == sequence.trimmed(), "a sequence has no blanks at its ends");
    for (int style = 1; style <= Styles; ++style)
        site.setPrinterInitString(style, sequence);

    auto device = std::make_unique<FakePort>();
    FakePort* port = device.get();
    DirectPrinting printer(std::move(device));
    printer.setPort(QStringLiteral("LPT1"));
    EventClass event = Presence(found, clock);
    EventPrinter paper(printer);
    HistoProcs::PrintEvent(event, paper);

    QByteArray line = port->written;
    Require(line.endsWith('\r'), "a line ends");
    line.chop(1);
    const qsizetype control = BytesIn(site.PrinterInitString(0)) + BytesIn(sequence);
    if (longest > 0) {
        Require(line.size() <= longest, "a line is cut");
        return 0;
    }
    Require(line.size() > control && line.size() <= control + LineWidth,
            "one byte for each of a sequence");
    Require(line.mid(control).startsWith(DateTimes::ShortDate(clock.Now()).toLatin1()),
            "the date comes behind the sequences");
    return 0;
}
