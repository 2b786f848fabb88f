#pragma once

#include <QBrush>
#include <QColor>
#include <QList>
#include <QString>
#include <QWidget>

class PanelClass;
class QPainter;
class QLabel;
class TouchImage;

/// True for a module that was reported missing and hasn't answered since.
bool IsMissing(const PanelClass& panel);

/// A lamp that shows the state of a channel by its colour and, for whoever can't tell the colours,
/// by a mark: a ring or dot for active, a cross for other states, hatching for a missing module;
/// with the channel's number and text on it where it is large enough for them.
class Voyant : public QWidget {
    Q_OBJECT
public:
    explicit Voyant(QWidget* parent = nullptr);

    /// Colour of a state: grey at rest, red when active, magenta for all others.
    static QColor ColourOf(qint16 state);

    QColor Colour() const { return colour_; }
    /// `missing` says that the module doesn't answer: the state is the last one that was known.
    void setState(qint16 state, bool missing = false);
    /// Makes the lamp one to choose: `number` stands on it, `text` below it.
    void setCaption(int number, const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintCaptioned();
    QBrush Filling() const;
    void PaintShape(QPainter& painter, const QRectF& lamp) const;

    QColor colour_ = ColourOf(0);
    qint16 state_ = 0;
    bool missing_ = false;
    int number_ = 0;
    QString text_;
};

/// The tile of a remote-controlled module: number, model, title and a lamp for each channel. The
/// whole tile takes the touch.
class Telecommande : public QWidget {
    Q_OBJECT
public:
    explicit Telecommande(QWidget* parent = nullptr);

    /// The module shown, null for none. The panel belongs to the site.
    const PanelClass* Panel() const { return panel_; }
    void setPanel(const PanelClass* panel);
    /// Gives each lamp the look of its channel's state.
    void Update();

Q_SIGNALS:
    /// The tile has been pressed.
    void Click();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void MakeLamps(int count);
    void UserControl_Resize();
    void PlaceLamps(const QRect& area);

    const PanelClass* panel_ = nullptr;
    TouchImage* imgButton_;
    QLabel* lblNumPan_;
    QLabel* lblTypePan_;
    QLabel* lblPnlTitle_;
    QList<Voyant*> lamps_;
};
