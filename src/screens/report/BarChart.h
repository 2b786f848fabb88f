#pragma once

#include "screens/report/BarPlot.h"

#include <QWidget>

/// The bars of a report on the screen. The whole height above a bar's name takes its touch.
class BarChart : public QWidget {
    Q_OBJECT
public:
    explicit BarChart(QWidget* parent = nullptr);

    void setBars(const ReportBars& bars);

Q_SIGNALS:
    void Touched(int bar);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    BarPlot Plot() const;

    ReportBars bars_;
    int pressed_ = -1;
};
