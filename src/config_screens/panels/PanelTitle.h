#pragma once

#include <QColor>
#include <QLabel>

class PanelClass;

/// The title of a panel in its colour, "|" being a line break. As many lines as fit; what is still
/// too long in smaller letters ends in an ellipsis. A colour that can't be read on a tile gets a
/// ground of its own.
class PanelTitle : public QLabel {
    Q_OBJECT
public:
    explicit PanelTitle(QWidget* parent = nullptr);

    void setPanel(const PanelClass& panel);

    /// Leaves the ground to whatever lies below, which paints it by `PaintGround`.
    void LieBare() { bare_ = true; }
    void PaintGround(QPainter& painter, const QRect& area) const;

    QColor Ink() const { return ink_; }
    QColor Ground() const { return ground_; }
    /// The lines as they are shown.
    QStringList Lines() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRect Room() const;
    /// Lays the text into lines; false when the last one had to be cut.
    bool Lay(const QFont& font, QStringList& lines) const;
    QFont LaidFont(QStringList& lines) const;

    QColor ink_;
    QColor ground_;
    bool bare_ = false;
};
