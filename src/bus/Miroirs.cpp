#include "bus/Miroirs.h"

#include "bus/Registers.h"
#include "core/DateTimes.h"
#include "core/ErrorHandling.h"
#include "core/Trace.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"

#include <map>
#include <set>
#include <vector>

namespace Miroirs {

using ErrorHandling::Guard;

namespace {

constexpr int QChannels = 12;
constexpr int DisplayChannels = 24;
/// States of `Q6200XT` in one word, three bits each.
constexpr int StatesAWord = 5;
constexpr int StateWords = 5;
constexpr int BitsAState = 3;

/// `State` of a target that is to be cleared at the next acknowledgement of its panel.
constexpr qint16 ClearLater = -1;

enum class Action { None, Error, R3R3, R3R2, R2R3, R2R2, V3V3, V3V2 };

Action ActionOfQPanel(int target, int toChannel) {
    if (Models::IsQFamily(target))
        return Action::R3R3;
    if (target != Models::Q6200XT)
        return Action::None;
    return toChannel == 0 ? Action::R3R2 : Action::Error;
}

Action ActionOfQChannel(int target, int toChannel) {
    if (Models::IsQFamily(target))
        return toChannel >= 1 && toChannel <= QChannels ? Action::V3V3 : Action::Error;
    if (target != Models::Q6200XT)
        return Action::None;
    return toChannel >= 1 && toChannel <= DisplayChannels ? Action::V3V2 : Action::Error;
}

Action ActionOfDisplay(int target, int toChannel) {
    if (Models::IsQFamily(target))
        return toChannel == 0 ? Action::R2R3 : Action::Error;
    if (target != Models::Q6200XT)
        return Action::None;
    return toChannel == 0 ? Action::R2R2 : Action::Error;
}

/// What the pair of models can do of a rule.
Action ActionOf(const MirrorClass& mirror) {
    ConfigClass& site = Global::Configuration();
    if (mirror.ToModule() < 1 || mirror.ToModule() > ConfigClass::PanelCount)
        return Action::Error;
    const int source = site.Panel(mirror.FromModule()).Model();
    const int target = site.Panel(mirror.ToModule()).Model();
    if (Models::IsQFamily(source)) {
        if (mirror.FromChannel() == 0)
            return ActionOfQPanel(target, mirror.ToChannel());
        if (mirror.FromChannel() >= 1 && mirror.FromChannel() <= QChannels)
            return ActionOfQChannel(target, mirror.ToChannel());
    } else if (source == Models::Q6200XT && mirror.FromChannel() == 0) {
        return ActionOfDisplay(target, mirror.ToChannel());
    }
    return Action::Error;
}

void CarryOut(Action action, const EventClass& event, const MirrorClass& mirror, const Sink& sink) {
    switch (action) {
    case Action::None:
        break;
    case Action::Error:
        LogErreur(mirror);
        break;
    case Action::R3R3:
        TraitementR3R3(event, mirror, sink);
        break;
    case Action::R3R2:
        TraitementR3R2(event, mirror, sink);
        break;
    case Action::R2R3:
        TraitementR2R3(event, mirror, sink);
        break;
    case Action::R2R2:
        TraitementR2R2(event, mirror, sink);
        break;
    case Action::V3V3:
        TraitementV3V3(event, mirror, sink);
        break;
    case Action::V3V2:
        TraitementV3V2(event, mirror, sink);
        break;
    }
}

void Write(const Sink& sink, const MirrorClass& mirror, qint32 address, const Words& values) {
    sink(std::make_shared<CommandClass>(mirror.ToModule(), address, values, DateTimes::Now()));
}

/// Brings the state of a target channel to what an acknowledgement leaves of it.
void Refresh(ChannelClass& channel) {
    if (channel.MirrorType() == MirrorClass::Pulse) {
        if (channel.State() > 2)
            channel.setState(1);
        else if (channel.State() == ClearLater)
            channel.setState(0);
    } else if (channel.MirrorType() == MirrorClass::Permanent) {
        channel.setState(0);
    }
}

} // namespace

void DoMirrors(const EventClass& event, const Sink& sink) {
    Guard("Miroirs.DoMirrors", [&] {
        const MirrorClasses& mirrors = Global::Configuration().Mirrors();
        for (int position = 1; position <= mirrors.Count(); ++position) {
            const MirrorClass& mirror = mirrors.Item(position);
            if (mirror.FromModule() != event.Panel() || mirror.FromChannel() != event.Chnl())
                continue;
            // A rule that can't be carried out stops no other.
            Guard("Miroirs.DoMirrors", [&] { CarryOut(ActionOf(mirror), event, mirror, sink); });
        }
    });
}

void TraitementR3R3(const EventClass& event, const MirrorClass& mirror, const Sink& sink) {
    Guard("Miroirs.TraitementR3R3", [&] {
        if (event.Aff() == Registers::Acknowledge)
            Write(sink, mirror, Registers::PanelCommand, {event.Aff()});
    });
}

void TraitementR3R2(const EventClass& event, const MirrorClass& mirror, const Sink& sink) {
    if (event.Aff() == Registers::Acknowledge)
        TraitementR2R2(event, mirror, sink);
}

void TraitementR2R3(const EventClass&, const MirrorClass& mirror, const Sink& sink) {
    Guard("Miroirs.TraitementR2R3",
          [&] { Write(sink, mirror, Registers::PanelCommand, {Registers::Acknowledge}); });
}

void TraitementR2R2(const EventClass&, const MirrorClass& mirror, const Sink& sink) {
    Guard("Miroirs.TraitementR2R2", [&] {
        PanelClass& panel = Global::Configuration().Panel(mirror.ToModule());
        for (int number = 1; number <= DisplayChannels; ++number)
            Refresh(panel.Channel(number));
        Words words(StateWords);
        for (int number = 1; number <= panel.ChannelCount(); ++number) {
            const int place = number - 1;
            words[place / StatesAWord] |=
                qint16(int(panel.Channel(number).State()) << (BitsAState * (place % StatesAWord)));
        }
        Write(sink, mirror, Registers::AllStates, words);
    });
}

void TraitementV3V3(const EventClass& event, const MirrorClass& mirror, const Sink& sink) {
    Guard("Miroirs.TraitementV3V3", [&] {
        qint16 value = 0;
        if (event.Param() == 1 && event.Aff() >= 2) {
            if (mirror.MirrorType() != MirrorClass::Permanent &&
                mirror.MirrorType() != MirrorClass::Pulse)
                return;
            value = mirror.MirrorType() == MirrorClass::Permanent ? 2 : 3;
        } else if (event.Param() == 0 && event.Aff() == 1) {
            value = 3;
        } else if (event.Aff() != 0) {
            return;
        }
        Write(sink, mirror, Registers::ForcedStateBase + mirror.ToChannel(), {value});
    });
}

void TraitementV3V2(const EventClass& event, const MirrorClass& mirror, const Sink& sink) {
    Guard("Miroirs.TraitementV3V2", [&] {
        ChannelClass& target =
            Global::Configuration().Panel(mirror.ToModule()).Channel(mirror.ToChannel());
        const bool fault = event.Param() == 1 && event.Aff() >= 3;
        const bool change = event.Param() == 0 && (event.Aff() == 0 || event.Aff() == 1);
        const bool over = event.Param() != 0 && event.Aff() == 0;
        if (over && target.State() > 1) {
            target.setState(ClearLater);
            return;
        }
        if (!fault && !change && !(over && target.State() == 1))
            return;
        Write(sink, mirror, mirror.ToChannel(), {event.Aff()});
        if (fault)
            Write(sink, mirror, Registers::Function, {1});
        target.setState(event.Aff());
        target.setMirrorType(mirror.MirrorType());
    });
}

void LogErreur(const MirrorClass& mirror) {
    Guard("Miroirs.LogErreur", [&] {
        const QString line = DateTimes::DateAndTime(DateTimes::Now()) +
                             QStringLiteral(" MIRROR ERROR   ") + mirror.ID();
        Trace::Write(line.trimmed().left(Trace::LineWidth));
    });
}

namespace {

using EndPoint = std::pair<qint16, qint16>;

/// The question for one end point; those that were asked before are in `asked` and not asked again.
bool LeadsTo(const MirrorClasses& mirrors, EndPoint to, EndPoint from, std::set<EndPoint>& asked) {
    if (!asked.insert(to).second)
        return false;
    for (int position = 1; position <= mirrors.Count(); ++position) {
        const MirrorClass& mirror = mirrors.Item(position);
        if (EndPoint(mirror.ToModule(), mirror.ToChannel()) != to)
            continue;
        const EndPoint source(mirror.FromModule(), mirror.FromChannel());
        if (source == from || LeadsTo(mirrors, source, from, asked))
            return true;
    }
    return false;
}

} // namespace

bool MirrorLoop(const MirrorClasses& mirrors, qint16 toModule, qint16 toChannel, qint16 fromModule,
                qint16 fromChannel) {
    std::set<EndPoint> asked;
    return LeadsTo(mirrors, {toModule, toChannel}, {fromModule, fromChannel}, asked);
}

bool IsMirrorLoop(const MirrorClasses& mirrors, qint16 fromModule, qint16 fromChannel,
                  qint16 toModule, qint16 toChannel) {
    std::map<EndPoint, std::vector<EndPoint>> sources;
    for (const MirrorClass& mirror : mirrors)
        sources[{mirror.ToModule(), mirror.ToChannel()}].emplace_back(mirror.FromModule(),
                                                                      mirror.FromChannel());
    // All end points from which the new rule's source is fed, and how many of them each one feeds.
    std::map<EndPoint, int> feeds{{{fromModule, fromChannel}, 0}};
    std::vector<EndPoint> waiting{{fromModule, fromChannel}};
    while (!waiting.empty()) {
        const EndPoint point = waiting.back();
        waiting.pop_back();
        for (const EndPoint& source : sources[point]) {
            if (source == EndPoint(toModule, toChannel))
                return true;
            const auto [place, isNew] = feeds.try_emplace(source, 0);
            ++place->second;
            if (isNew)
                waiting.push_back(source);
        }
    }
    // Taking away what feeds nothing any more leaves the circles.
    size_t taken = 0;
    if (feeds[{fromModule, fromChannel}] == 0)
        waiting.emplace_back(fromModule, fromChannel);
    while (!waiting.empty()) {
        const EndPoint point = waiting.back();
        waiting.pop_back();
        ++taken;
        for (const EndPoint& source : sources[point]) {
            if (--feeds[source] == 0)
                waiting.push_back(source);
        }
    }
    return taken < feeds.size();
}

} // namespace Miroirs
