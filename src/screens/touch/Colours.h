#pragma once

#include <QColor>

/// Colours as the site and the rows of alarms hold them, and how well they are told apart.
namespace Colours {

/// From a 24-bit number with red in its low byte.
QColor FromBgr(qint32 colour);
/// The other way round.
qint32 ToBgr(const QColor& colour);
/// Black or white, whichever is read better on a background.
QColor InkOn(const QColor& background);
/// How well a colour is told from another: 1 not at all, 21 black from white.
double Contrast(const QColor& one, const QColor& other);

} // namespace Colours
