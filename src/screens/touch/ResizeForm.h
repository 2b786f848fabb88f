#pragma once

#include <QSize>

class QWidget;

/// Fits a screen designed for 800 x 600 pixels to the display, with its controls, fonts and
/// grids. False when it is left as it is: `NoResize` is set or the display has the design's size.
/// In a rehearsal each form leaves room for its strip, and `NoResize` holds where there is room.
bool ResizeForm(QWidget& form);

/// Height of the strip that marks a rehearsal, pixels; 0 outside one.
int RehearsalStripHeight();

/// Horizontal and vertical factor of the run, by the display as it was at the first call; 1 where
/// forms are left as they are.
struct ScreenFactors {
    double horizontal = 1;
    double vertical = 1;
};
ScreenFactors CurrentScreenFactors();
/// Takes another display for the factors, for tests; an empty size makes the next call look at
/// the real one again.
void OverrideScreenSize(const QSize& size);
