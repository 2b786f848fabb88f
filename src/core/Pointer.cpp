#include "core/Pointer.h"

#include <QCursor>
#include <QGuiApplication>

namespace Pointer {

void Hourglass() {
    if (qGuiApp != nullptr && QGuiApplication::overrideCursor() == nullptr)
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
}

void Default() {
    while (qGuiApp != nullptr && QGuiApplication::overrideCursor() != nullptr)
        QGuiApplication::restoreOverrideCursor();
}

} // namespace Pointer
