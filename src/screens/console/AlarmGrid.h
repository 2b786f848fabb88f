#pragma once

#include "events/AlarmRows.h"
#include "screens/touch/RowGrid.h"

#include <QColor>
#include <QString>

/// The list of alarms on the screen: one line a row, on the colour of the alarm's state and
/// with the shape of that state.
class AlarmGrid : public RowGrid {
    Q_OBJECT
public:
    explicit AlarmGrid(QWidget* parent = nullptr);

    AlarmRows& Rows() { return rows_; }
    const AlarmRows& Rows() const { return rows_; }
    const RowPosition& Position() const override { return rows_.Position(); }

    /// What stands in a row on the screen: its text, and the title of the panel that it tells of.
    static QString PaintedText(const AlarmRow& alarm);
    /// The frame of the selected row, which is seen on any colour.
    static void PaintFrame(QPainter& painter, const QRect& area);

protected:
    RowPosition& MutablePosition() override { return rows_.Position(); }
    void PaintRow(QPainter& painter, int row, const QRect& area) const override;

private:
    static void Band(QPainter& painter, const QRect& area, int width, const QColor& colour);

    AlarmRows rows_;
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
