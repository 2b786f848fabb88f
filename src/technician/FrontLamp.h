#pragma once

#include <QWidget>

/// Colours of the lamps on a module's front: red in the low byte, then green, then blue.
namespace LampColours {
inline constexpr qint32 Grey = 11711154;
inline constexpr qint32 Red = 255;
/// The state isn't known.
inline constexpr qint32 Yellow = 65535;
} // namespace LampColours

/// One lamp of a module's front. For whoever can't tell the colours, a lamp that is lit has a ring
/// and one whose state isn't known a question mark.
class FrontLamp : public QWidget {
    Q_OBJECT
public:
    explicit FrontLamp(QWidget* parent = nullptr);

    /// One of `LampColours`.
    qint32 FillColor() const { return fillColor_; }
    void setFillColor(qint32 colour);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    qint32 fillColor_ = LampColours::Yellow;
};
