#include "core/Yield.h"

#include "core/Operator.h"
#include "platform/InputDiscard.h"

#include <QCoreApplication>
#include <QEventLoop>

void Yield() {
    const Operator::Away away;
    QCoreApplication::processEvents();
}

void YieldWithoutInput() {
    const Operator::Away away;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void YieldDroppingInput() {
    const Operator::Away away;
    const platform::InputDiscard discard;
    QCoreApplication::processEvents();
}
