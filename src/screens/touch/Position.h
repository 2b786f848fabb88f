#pragma once

class QWidget;

/// Enables the two arrows of a position among `count` places, 0 the first: back unless it is the
/// first, on unless it is the last, neither for a position outside.
void EnableByPosition(QWidget* back, QWidget* on, int position, int count);
