#pragma once

#include "bus/CommandClass.h"
#include "events/EventClass.h"

#include <functional>

class MirrorClass;
class MirrorClasses;

/// The mirror engine: copies what happens on one module onto another, as writes through the
/// queue. In the names V is a channel and R a panel as a whole, 3 the Q family and 2 `Q6200XT`.
namespace Miroirs {

/// Takes the commands that a rule comes to.
using Sink = std::function<void(const CommandPtr& command)>;

/// Carries out the rules whose source is the event's panel and channel.
void DoMirrors(const EventClass& event, const Sink& sink);

void TraitementR3R3(const EventClass& event, const MirrorClass& mirror, const Sink& sink);
void TraitementR3R2(const EventClass& event, const MirrorClass& mirror, const Sink& sink);
void TraitementR2R3(const EventClass& event, const MirrorClass& mirror, const Sink& sink);
/// Brings all mirrored states of a `Q6200XT` up to date in one write.
void TraitementR2R2(const EventClass& event, const MirrorClass& mirror, const Sink& sink);
void TraitementV3V3(const EventClass& event, const MirrorClass& mirror, const Sink& sink);
void TraitementV3V2(const EventClass& event, const MirrorClass& mirror, const Sink& sink);

/// Writes a rule that can't be carried out to the trace.
void LogErreur(const MirrorClass& mirror);

/// Does a chain of rules lead from `fromModule`, `fromChannel` to `toModule`, `toChannel`? The
/// list has no loop yet.
bool MirrorLoop(const MirrorClasses& mirrors, qint16 toModule, qint16 toChannel, qint16 fromModule,
                qint16 fromChannel);

/// Would a new rule from one end point to the other close a circle: do rules already lead from
/// `toModule`, `toChannel` to `fromModule`, `fromChannel`? True as well when the rules that feed
/// its source hold a circle of their own, as only a damaged file can have it.
bool IsMirrorLoop(const MirrorClasses& mirrors, qint16 fromModule, qint16 fromChannel,
                  qint16 toModule, qint16 toChannel);

} // namespace Miroirs
