#pragma once

#include "bus/CommFunctions.h"
#include "technician/FrontLamp.h"

#include <QFontMetrics>
#include <QList>
#include <QString>
#include <QWidget>

class PanelClass;
class QLabel;

/// The rhythms in which a module blinks its lamps. Times are counted in ticks of 150 ms.
class LampRhythm {
public:
    /// One tick goes by.
    void Advance();
    /// Colour at this tick of a lamp with a word of the module, as digits; empty for not known.
    qint32 ColourOf(const QString& word) const;

private:
    quint16 phase_ = 0;
    bool flash_ = false;
    bool fast_ = false;
    bool slow_ = false;
};

/// The channels on a module's front, each with lamp, number and text, in columns. What a lamp's
/// `Tag` holds is the word of its channel, as digits.
class FrontTiles : public QWidget {
    Q_OBJECT
public:
    explicit FrontTiles(QWidget* parent = nullptr);

    /// Makes a tile for each channel of the panel; no lamp's state is known then.
    void setPanel(const PanelClass& panel);
    /// The words of the channels from 1 on; a lamp without one keeps its own.
    void setWords(const Words& words);
    void setUnknown();
    /// One tick of 150 ms goes by.
    void Blink();

    /// The text in one line or, broken at the last blank that fits, in two; what doesn't fit even
    /// then ends in an ellipsis. `width` in pixels.
    static QString Broken(const QString& text, const QFontMetrics& metrics, int width, int lines);

private:
    void MakeTile(int channel, const QRect& tile, const QString& text);
    QLabel* MakeText(const QString& array, int channel, const QRect& area);
    void MakeShape(const QString& array, int channel, const QRect& area, const QColor& colour);

    QList<FrontLamp*> lamps_;
    LampRhythm rhythm_;
};
