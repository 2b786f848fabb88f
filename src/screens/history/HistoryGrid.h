#pragma once

#include "events/HistoryFile.h"
#include "events/TextProcs.h"
#include "screens/touch/RowGrid.h"

#include <QString>

/// The lines of a history file on the screen: each row is twice as high as a line of text and holds
/// the two halves of the screen layout. Only the rows in sight are read and converted.
class HistoryGrid : public RowGrid {
    Q_OBJECT
public:
    /// Columns of the wider half.
    static constexpr int Columns = TextProcs::ScreenLine::Break.start;

    explicit HistoryGrid(QWidget* parent = nullptr);

    /// Draws a line of the screen layout as its two halves.
    static void PaintHalves(QPainter& painter, const QRect& area, const QString& line);

    /// Takes the lines of a file in place of those shown; as HistoryFile::Load. The selection is
    /// on the first line.
    bool Load(const QString& path);
    /// Shows nothing.
    void Clear();
    int Count() const { return file_.Count(); }
    /// Selects the last line, the newest, and brings it in sight.
    void ShowLast();
    /// The selected line in the screen layout, empty without lines.
    QString CurrentLine() const;

    const RowPosition& Position() const override { return at_; }

protected:
    RowPosition& MutablePosition() override { return at_; }
    void PaintRow(QPainter& painter, int row, const QRect& area) const override;

private:
    void Show();

    HistoryFile file_;
    RowPosition at_;
};
