#include "screens/touch/Theme.h"

#include <QApplication>
#include <QHash>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>
#include <memory>

// The pictures lie in a static library: without this nothing would pull them in. It can't stand
// inside a namespace.
static void LoadPictures() {
    Q_INIT_RESOURCE(pictures);
}

namespace Theme {

namespace {

const QStringList TextFamilies{QStringLiteral("DejaVu Sans"), QStringLiteral("Liberation Sans"),
                               QStringLiteral("Noto Sans"), QStringLiteral("sans-serif")};
const QStringList FixedFamilies{QStringLiteral("DejaVu Sans Mono"),
                                QStringLiteral("Liberation Mono"), QStringLiteral("Noto Sans Mono"),
                                QStringLiteral("monospace")};
constexpr int DefaultPixels = 16;
constexpr int PointerSize = 32;
constexpr qreal PointsAnInch = 72;

const QString StyleSheet = QStringLiteral(R"(
QLabel { background: transparent; color: #D8DEE6; }
QLabel[quiet="true"] { color: #9AA6B4; }
QLabel:disabled { color: #6B7683; }
QLabel[shadow="true"] { color: #000000; }
QLabel[field="true"] { background: #12171E; border: 1px solid #4A5868; border-radius: 4px;
    padding-left: 6px; padding-right: 6px; }
QFrame[panel="true"] { background: rgba(18, 23, 30, 150); border: 1px solid #4A5868;
    border-radius: 8px; }
QPushButton { background: #2C3744; color: #D8DEE6; border: 1px solid #4A5868;
    border-radius: 8px; }
QPushButton:focus { border: 2px solid #9AA6B4; }
QPushButton:pressed { background: #475769; }
QPushButton:checked { background: #3B5675; color: #FFFFFF; border: 2px solid #D8DEE6; }
QPushButton:disabled { background: #1B222B; color: #6B7683; border-color: #2C3744; }
QPushButton:checked:disabled { border-color: #6B7683; }
QHeaderView, QHeaderView::section { background: #2C3744; color: #D8DEE6; border: none; }
QHeaderView::section { padding: 0 3px; }
QTableView, QListView, QTreeView, QPlainTextEdit, QTextEdit, QLineEdit { background: #12171E;
    color: #D8DEE6; border: 1px solid #4A5868; border-radius: 4px; gridline-color: #2C3744;
    selection-background-color: #3B5675; selection-color: #FFFFFF; }
)");

QFont Make(const QStringList& families, int pixels, bool bold) {
    QFont font;
    font.setFamilies(families);
    font.setPixelSize(qMax(1, pixels));
    font.setBold(bold);
    return font;
}

/// The drawing of a name, read once; null for an unknown one.
QSvgRenderer* Drawing(const QString& name) {
    static QHash<QString, std::shared_ptr<QSvgRenderer>> drawings;
    if (name.isEmpty())
        return nullptr;
    if (!drawings.contains(name)) {
        LoadPictures();
        auto drawing =
            std::make_shared<QSvgRenderer>(QStringLiteral(":/pictures/%1.svg").arg(name));
        drawings.insert(name, drawing->isValid() ? drawing : nullptr);
    }
    return drawings.value(name).get();
}

} // namespace

QFont Text(int pixels, bool bold) {
    return Make(TextFamilies, pixels, bold);
}

QFont Fixed(int pixels, bool bold) {
    return Make(FixedFamilies, pixels, bold);
}

QFont DesignFont(const QFont& font) {
    const int pixels = font.pixelSize() > 0 ? font.pixelSize()
                                            : qRound(font.pointSizeF() * DesignDpi / PointsAnInch);
    const bool fixed = font.family().contains(QLatin1String("Mono"), Qt::CaseInsensitive);
    return Make(fixed ? FixedFamilies : TextFamilies, pixels, font.bold());
}

const QPixmap& Background() {
    static QPixmap picture;
    if (picture.isNull()) {
        picture = QPixmap(DesignWidth, DesignHeight);
        picture.fill(Ground);
        QPainter painter(&picture);
        DrawPicture(painter, QStringLiteral("background"), picture.rect());
    }
    return picture;
}

QCursor TouchPointer() {
    const QPixmap picture = Picture(QStringLiteral("pointer"), PointerSize);
    // The finger tip of the drawing.
    return picture.isNull() ? QCursor(Qt::PointingHandCursor)
                            : QCursor(picture, PointerSize * 3 / 8, PointerSize / 12);
}

void DrawPicture(QPainter& painter, const QString& name, const QRectF& area, qreal opacity) {
    QSvgRenderer* drawing = Drawing(name);
    if (drawing == nullptr || area.isEmpty())
        return;
    const QSizeF size = drawing->viewBoxF().size().scaled(area.size(), Qt::KeepAspectRatio);
    QRectF target(QPointF(), size);
    target.moveCenter(area.center());
    painter.save();
    painter.setOpacity(painter.opacity() * opacity);
    painter.setRenderHint(QPainter::Antialiasing);
    drawing->render(&painter, target);
    painter.restore();
}

QPixmap Picture(const QString& name, int size) {
    if (Drawing(name) == nullptr)
        return {};
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    DrawPicture(painter, name, picture.rect());
    return picture;
}

void Apply(QApplication& application) {
    QPalette palette;
    palette.setColor(QPalette::Window, Ground);
    palette.setColor(QPalette::WindowText, Ink);
    palette.setColor(QPalette::Base, Field);
    palette.setColor(QPalette::AlternateBase, Ground);
    palette.setColor(QPalette::Text, Ink);
    palette.setColor(QPalette::Button, Tile);
    palette.setColor(QPalette::ButtonText, Ink);
    palette.setColor(QPalette::Highlight, Selection);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, Dormant);
    QApplication::setPalette(palette);
    QApplication::setFont(Text(DefaultPixels));
    application.setStyleSheet(StyleSheet);
}

} // namespace Theme
