#pragma once

#include <QObject>
#include <functional>

/// Runs `action` now, or behind the round of the bus that lets events run just now: what the action
/// opens or takes long for would hold that up. Not at all once `context` is gone.
void RunBehindRound(QObject* context, const std::function<void()>& action);
