#include "screens/console/ConsoleHead.h"

#include "core/Config.h"
#include "core/DateTimes.h"
#include "model/CurrentConfig.h"
#include "model/OutOfService.h"

#include <QStringList>
#include <algorithm>
#include <array>

namespace ConsoleHead {

namespace {

std::optional<Watch> overridden;

/// Failed polls of a present panel, and polls of one that is missing.
constexpr int PollFailures = 1;
constexpr int MissingPolls = 2;
constexpr int MostPollFailures = 3;

/// Faults that leave a panel unwatched, the worst first.
constexpr std::array Blinding{Faults::Kind::RoundStopped, Faults::Kind::PanelNotPolled,
                              Faults::Kind::MemoryUnreadable};

/// Puts values in place of the "$" of a text, in their order.
QString Filled(QString text, const QStringList& values) {
    qsizetype from = 0;
    for (const QString& value : values) {
        const qsizetype at = text.indexOf(u'$', from);
        if (at < 0)
            break;
        text.replace(at, 1, value);
        from = at + value.size();
    }
    return text;
}

QString MissingWords(qsizetype count) {
    return count == 1 ? GetText(714073)
                      : Filled(GetText(714074), QStringList(QString::number(count)));
}

bool IsAnyWatched() {
    for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
        if (wPolling::IsWatched(number))
            return true;
    }
    return false;
}

/// Why nobody, or not everybody, is watched; empty when all are.
QString StateWords(BusState state) {
    switch (state) {
    case BusState::Stopped:
        return GetText(710009);
    case BusState::WaitsForPort:
        return GetText(714071);
    case BusState::FirstReading:
        return GetText(714070);
    case BusState::PortLost:
        return GetText(714072);
    case BusState::Running:
        break;
    }
    return {};
}

} // namespace

Watch Look() {
    if (overridden)
        return *overridden;
    Watch watch;
    const wPolling* engine = Polling();
    if (engine == nullptr)
        return watch;
    watch = {engine->State(), engine->MissingPanels(), engine->BusLost(), IsAnyWatched()};
    for (const int panel : LongMissing()) {
        if (!watch.missing.contains(panel))
            watch.missing.append(panel);
    }
    std::sort(watch.missing.begin(), watch.missing.end());
    return watch;
}

void OverrideWatch(std::optional<Watch> watch) {
    overridden = std::move(watch);
}

QList<int> LongMissing() {
    QList<int> missing;
    for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
        const PanelClass& panel = Global::Configuration().Panel(number);
        if (wPolling::IsWatched(number) &&
            (panel.ErrCptr(PollFailures) > MostPollFailures || panel.ErrCptr(MissingPolls) > 0))
            missing.append(panel.Numero());
    }
    return missing;
}

Verdict Judge(const Watch& watch) {
    const QString state = StateWords(watch.state);
    const QList<Faults::Fault> faults = Faults::Standing();
    for (const Faults::Kind kind : Blinding) {
        const auto fault = std::find_if(faults.cbegin(), faults.cend(),
                                        [kind](const auto& one) { return one.kind == kind; });
        if (fault != faults.cend())
            return {Tone::Alarm, TextOf(*fault), state};
    }
    if (watch.busLost) {
        const QString cause = state.isEmpty() ? MissingWords(watch.missing.size()) : state;
        return {Tone::Alarm, GetText(714075) + u'\n' + cause, GetText(714075)};
    }
    if (!state.isEmpty())
        return {watch.state == BusState::PortLost ? Tone::Alarm : Tone::Warning, state, state};
    if (!watch.anyPanel)
        return {Tone::Warning, GetText(710012), GetText(710012)};
    if (!watch.missing.isEmpty())
        return {Tone::Warning, MissingWords(watch.missing.size()), {}};
    return {Tone::Calm, GetText(710006), {}};
}

QString CountText(int row, int rows, int waiting) {
    return Filled(GetText(714076),
                  {QString::number(row), QString::number(rows), QString::number(waiting)});
}

QString OutOfServiceText() {
    const qsizetype count = OutOfService::Present().size();
    return count == 0 ? QString()
                      : Filled(GetText(840020), QStringList(QString::number(count))) +
                            QStringLiteral(" \u203A");
}

QString TextOf(const Faults::Fault& fault) {
    const QString words = GetText(Faults::TextOf(fault.kind));
    return fault.detail.isEmpty() ? words : words + u' ' + fault.detail;
}

QString StandingList() {
    QStringList lines;
    for (const Faults::Fault& fault : Faults::Standing())
        lines.append(TextOf(fault) + QStringLiteral("\r\n    ") +
                     Filled(GetText(714077), QStringList(DateTimes::DateAndTime(fault.since))));
    return lines.join(QStringLiteral("\r\n"));
}

} // namespace ConsoleHead
