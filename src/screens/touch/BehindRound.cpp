#include "screens/touch/BehindRound.h"

#include "bus/wPolling.h"

#include <QTimer>

void RunBehindRound(QObject* context, const std::function<void()>& action) {
    constexpr int RoundPause = 20;
    if (Polling() != nullptr && Polling()->InRound())
        QTimer::singleShot(RoundPause, context,
                           [context, action] { RunBehindRound(context, action); });
    else
        action();
}
