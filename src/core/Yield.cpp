#include "core/Yield.h"

#include <QCoreApplication>
#include <QEventLoop>

void Yield() {
    QCoreApplication::processEvents();
}

void YieldWithoutInput() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}
