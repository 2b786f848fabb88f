#pragma once

#include <QColor>
#include <QLabel>

class PanelClass;

/// The title of a panel in its colour, "|" being a line break. As many lines as fit; what is too
/// long ends in an ellipsis. A colour that can't be read on a tile gets a ground of its own.
class PanelTitle : public QLabel {
    Q_OBJECT
public:
    explicit PanelTitle(QWidget* parent = nullptr);

    void setPanel(const PanelClass& panel);

    QColor Ink() const { return ink_; }
    QColor Ground() const { return ground_; }
    /// The lines as they are shown.
    QStringList Lines() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRect Room() const;

    QColor ink_;
    QColor ground_;
};
