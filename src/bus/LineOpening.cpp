#include "bus/LineOpening.h"

#include "core/Trace.h"
#include "model/BusSettings.h"

namespace {

using Answer = platform::LineFeatures::Answer;

void Tell(int port, const char* feature, Answer answer) {
    if (answer == Answer::NotOffered)
        return;
    Trace::Note(BusSettings::PortName(port) + u' ' + QString::fromLatin1(feature) +
                (answer == Answer::Taken ? QStringLiteral(" ON") : QStringLiteral(" REFUSED")));
}

} // namespace

void OpenLine(platform::SerialLink& link) {
    if (link.PortOpen())
        return;
    link.setPortOpen(true);
    if (!link.PortOpen())
        return;
    const platform::LineFeatures features = link.Features();
    Tell(link.CommPort(), "LOW LATENCY", features.lowLatency);
    Tell(link.CommPort(), "RS485", features.rs485);
}
