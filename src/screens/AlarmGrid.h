#pragma once

#include "screens/AlarmRows.h"

#include <QColor>
#include <QString>
#include <QWidget>

/// The list of alarms on the screen: one line a row, in the largest fixed-pitch font that shows a
/// row whole. A touch selects a row, the keys of a list move the selection.
class AlarmGrid : public QWidget {
    Q_OBJECT
public:
    explicit AlarmGrid(QWidget* parent = nullptr);

    AlarmRows& Rows() { return rows_; }
    const AlarmRows& Rows() const { return rows_; }
    /// Height of a row, pixels.
    int RowHeight() const { return rowHeight_; }

    /// A colour of the rows, red in its low byte.
    static QColor FromBgr(qint32 colour);
    /// Black or white, whichever is read better on a background.
    static QColor InkOn(const QColor& background);
    /// How well a colour is told from another: 1 not at all, 21 black from white.
    static double Contrast(const QColor& one, const QColor& other);

Q_SIGNALS:
    /// Selection or view are new.
    void RowColChange();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void FitFont();
    void PaintRow(QPainter& painter, int row) const;
    void PaintThumb(QPainter& painter) const;

    AlarmRows rows_;
    QFont font_;
    int rowHeight_ = 1;
};

/// A drawing that only shows something; touches go through it.
class AlarmMark : public QWidget {
    Q_OBJECT
    /// Name of the drawing in the resources, without folder or extension.
    Q_PROPERTY(QString picture READ Picture WRITE setPicture)
public:
    explicit AlarmMark(QWidget* parent = nullptr);

    QString Picture() const { return picture_; }
    void setPicture(const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString picture_;
};
