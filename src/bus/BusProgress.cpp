#include "bus/BusProgress.h"

#include "core/Config.h"
#include "platform/Clock.h"

namespace {

/// "Panel $1 of $2" and "Step $1 of $2, about $3 s left".
constexpr int PanelText = 30023;
constexpr int StepText = 30024;
constexpr qint64 PaintPeriod = 250;
/// As in the texts themselves, once they are read.
const QString LineBreak = QStringLiteral("\r\n");

} // namespace

BusProgress::BusProgress(const QString& text)
    : text_(text)
    , notice_(text)
    , begun_(platform::Clock::Current().MonotonicMs())
    , told_(begun_ - PaintPeriod) {}

void BusProgress::Tell(const BusStep& step) {
    const qint64 now = platform::Clock::Current().MonotonicMs();
    if (now - told_ < PaintPeriod || step.panels < 1)
        return;
    told_ = now;
    QString text = text_ + LineBreak +
                   GetText(PanelText)
                       .replace(QStringLiteral("$1"), QString::number(step.panel))
                       .replace(QStringLiteral("$2"), QString::number(step.panels));
    const qint64 done = qint64(step.pass - 1) * step.panels + step.panel - 1;
    const qint64 left = qint64(step.passes) * step.panels - done;
    if (done > 0) {
        const qint64 seconds = ((now - begun_) * left / done + 999) / 1000;
        text += LineBreak + GetText(StepText)
                                .replace(QStringLiteral("$1"), QString::number(step.pass))
                                .replace(QStringLiteral("$2"), QString::number(step.passes))
                                .replace(QStringLiteral("$3"), QString::number(seconds));
    }
    notice_.setText(text);
}
