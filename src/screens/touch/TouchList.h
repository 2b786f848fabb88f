#pragma once

#include <QListWidget>

class QAbstractScrollArea;

/// Makes a list fit for a finger: rows and a scroll bar as wide as a finger, arrows at its ends,
/// and a swipe scrolls. `scale` is the factor by which the form was made larger or smaller for the
/// display.
void MakeTouchList(QListWidget& list, double scale = 1);

/// Gives a view such a scroll bar and `style` for all else.
void GiveTouchScrollBar(QAbstractScrollArea& view, double scale, const QString& style);
