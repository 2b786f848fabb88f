#pragma once

#include <QSize>

class QWidget;

/// Fits a screen designed for 800 x 600 pixels to the display, with its controls, fonts and
/// grids. False when it is left as it is: `NoResize` is set or the display has the design's size.
bool ResizeForm(QWidget& form);

/// Horizontal and vertical factor of the run, worked out from the display at the first call.
struct ScreenFactors {
    double horizontal = 1;
    double vertical = 1;
};
ScreenFactors CurrentScreenFactors();
/// Takes another display for the factors, for tests; an empty size makes the next call look at
/// the real one again.
void OverrideScreenSize(const QSize& size);
