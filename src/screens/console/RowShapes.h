#pragma once

#include "events/AlarmRows.h"

#include <QColor>
#include <QRectF>

class QPainter;

/// A shape for each state of a row, for those who can't tell the colours apart. No two states share
/// one.
namespace RowShapes {

/// Draws the shape of a state as large as fits into `area`, in `ink` on `ground`.
void Draw(QPainter& painter, const QRectF& area, RowState state, const QColor& ink,
          const QColor& ground);

} // namespace RowShapes
