#include "core/Yield.h"

#include <QCoreApplication>

void Yield() {
    QCoreApplication::processEvents();
}
