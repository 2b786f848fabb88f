#include "screens/touch/Position.h"

#include <QWidget>

void EnableByPosition(QWidget* back, QWidget* on, int position, int count) {
    const bool inside = position >= 0 && position < count;
    back->setEnabled(inside && position > 0);
    on->setEnabled(inside && position < count - 1);
}
