#pragma once

#include "events/AlarmTables.h"

#include <QColor>
#include <QFont>
#include <QRectF>

class QPainter;

/// The bars of a report with their limits, laid out in an area of a screen or of a page.
class BarPlot {
public:
    struct Look {
        QColor ink;  ///< numbers, names and the axis
        QColor line; ///< of the scale
        QColor bar;
        QColor above; ///< more than is acceptable, and its line
        QColor most;  ///< more than the most, and its line
    };
    static const Look OnScreen;
    static const Look OnPaper;

    BarPlot(const ReportBars& bars, const QRectF& area, const QFont& font);

    void Paint(QPainter& painter, const Look& look) const;
    /// The bar in whose column a place lies, whatever its height; -1 beside all.
    int BarAt(const QPointF& place) const;

private:
    void Fit();
    double HeightOf(double alarms) const;
    QRectF ColumnOf(int bar) const;
    void PaintScale(QPainter& painter, const Look& look) const;
    void PaintBar(QPainter& painter, const Look& look, int bar) const;
    void PaintNumber(QPainter& painter, int alarms, const QRectF& column) const;
    void PaintName(QPainter& painter, int bar) const;
    void PaintLimit(QPainter& painter, const QList<double>& limit, const QColor& colour) const;

    ReportBars bars_;
    QRectF area_;
    QFont font_;
    QRectF plot_; // bars alone
    double top_ = 1;
    double step_ = 1;
    int nameEvery_ = 1;
};
