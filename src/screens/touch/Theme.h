#pragma once

#include <QColor>
#include <QCursor>
#include <QFont>
#include <QPixmap>
#include <QRectF>
#include <QString>

class QApplication;
class QPainter;

/// The one look of all screens: calm and dark, so that colour is left to the alarms.
namespace Theme {

inline constexpr QColor Ground{0x1B, 0x22, 0x2B};    ///< behind everything
inline constexpr QColor Tile{0x2C, 0x37, 0x44};      ///< a control that can be pressed
inline constexpr QColor Pressed{0x47, 0x57, 0x69};   ///< the same under the finger
inline constexpr QColor Edge{0x4A, 0x58, 0x68};      ///< outline of tiles and frames
inline constexpr QColor Field{0x12, 0x17, 0x1E};     ///< lists and texts that change
inline constexpr QColor Ink{0xD8, 0xDE, 0xE6};       ///< texts and pictures
inline constexpr QColor QuietInk{0x9A, 0xA6, 0xB4};  ///< captions beside the values
inline constexpr QColor Dormant{0x6B, 0x76, 0x83};   ///< what can't be used now
inline constexpr QColor Selection{0x3B, 0x56, 0x75}; ///< chosen line of a list

/// Size of the design, pixels.
inline constexpr int DesignWidth = 800;
inline constexpr int DesignHeight = 600;
/// Resolution at which the point sizes of the designs are meant, dots an inch.
inline constexpr int DesignDpi = 96;

/// Proportional and fixed-pitch font of a height in pixels.
QFont Text(int pixels, bool bold = false);
QFont Fixed(int pixels, bool bold = false);
/// A designed font in pixels and with fallback families, so that a screen looks the same whatever
/// resolution the display claims to have.
QFont DesignFont(const QFont& font);

/// The background that all screens share.
const QPixmap& Background();
/// Pointer over everything that can be touched.
QCursor TouchPointer();
/// Draws a picture of the resources as large as fits, centred; nothing for an unknown name.
void DrawPicture(QPainter& painter, const QString& name, const QRectF& area, qreal opacity = 1);
/// The same as a pixmap of `size` x `size` pixels.
QPixmap Picture(const QString& name, int size);

/// Style sheet, palette and font of the application.
void Apply(QApplication& application);

} // namespace Theme
