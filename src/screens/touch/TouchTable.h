#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QTableView>

/// A table for a finger: rows as high as one, a swipe scrolls, a touch on the head of a column
/// sorts by it. Each row has a `Tag` that ties it to what it shows.
class TouchTable : public QTableView {
    Q_OBJECT
public:
    struct Column {
        QString title;
        /// Share of the width among the shares of all.
        int share;
        Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
    };
    struct Row {
        QStringList cells;
        QString tag;
        /// Name of the drawing ahead of the first cell, empty for none.
        QString picture = {};
        /// What the columns are sorted by where that isn't the text; empty for the text.
        QStringList order = {};
    };

    explicit TouchTable(QWidget* parent = nullptr);
    ~TouchTable() override;

    /// `scale` is the factor by which the form was made larger or smaller for the display.
    void setColumns(const QList<Column>& columns, double scale);
    /// Shows other rows, sorted as before. The row selected before stays so if its tag is still
    /// there, and the view stays where it is as far as there are rows.
    void setRows(QList<Row> rows);
    /// Other cells in the row of a tag, which stays where it is until rows are sorted anew: a
    /// finger that aims at it finds it.
    void setCells(const QString& tag, const QStringList& cells);
    /// A touch on the head of a column sorts, or the rows stay as they were given.
    void setSortable(bool on);
    int RowCount() const;
    /// Place of the selected row in the order shown, -1 for none.
    int CurrentRow() const { return currentIndex().row(); }
    /// Tag of the selected row, empty for none.
    QString CurrentTag() const;
    /// Selects the row of a tag and brings it in sight; none when the tag isn't there.
    void SelectTag(const QString& tag);
    /// Moves the selection so many rows, as far as there are any.
    void MoveBy(int rows);
    QString Cell(int row, int column) const;

Q_SIGNALS:
    /// Another row is selected, or none.
    void RowChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    class Model;

    void FitColumns();
    void SortBy(int column);

    Model* model_;
    QList<Column> columns_;
};
