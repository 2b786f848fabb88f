#pragma once

#include "screens/touch/TouchImage.h"

#include <QRect>

class PanelClass;
class PanelTitle;
class QLabel;

/// A panel of the site on a tile: its number, its model and its title, crossed out while it isn't
/// in service. What lies on the tile is addressed by the tile's index as well, and lets touches
/// through.
class PanelTile : public TouchImage {
    Q_OBJECT
public:
    PanelTile(QWidget* parent, int index, const QRect& area);
    /// Makes the tiles of a page, four in a row, from the area of the first on.
    static void MakePage(QWidget* parent, int tiles, const QRect& first, int pitchX, int pitchY);

    void setPanel(int number, const PanelClass& panel);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLabel* lblNumPan_;
    QLabel* lblTypePan_;
    PanelTitle* lblLblPan_;
    QWidget* imgCroix_;
};
