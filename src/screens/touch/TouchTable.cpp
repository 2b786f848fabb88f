#include "screens/touch/TouchTable.h"

#include "screens/touch/SwipeScroll.h"
#include "screens/touch/Theme.h"
#include "screens/touch/TouchList.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QIcon>
#include <QScrollBar>
#include <algorithm>
#include <utility>

namespace {
constexpr int RowPixels = 48;
constexpr int PicturePixels = 36;
} // namespace

/// Rows in the order shown.
class TouchTable::Model : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : int(rows_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : int(columns_.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role == Qt::DisplayRole)
            return rows_[index.row()].cells.value(index.column());
        if (role == Qt::DecorationRole && index.column() == 0)
            return PictureOf(rows_[index.row()]);
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue(columns_[index.column()].alignment);
        return {};
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || section >= columns_.size())
            return {};
        if (role == Qt::DisplayRole)
            return columns_[section].title;
        // A head takes the font of its items alone under a style sheet.
        if (role == Qt::FontRole)
            return static_cast<QWidget*>(QObject::parent())->font();
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue(columns_[section].alignment);
        return {};
    }
    void setColumns(const QList<Column>& columns) {
        beginResetModel();
        columns_ = columns;
        endResetModel();
    }
    void setRows(QList<Row> rows) {
        beginResetModel();
        rows_ = std::move(rows);
        Order();
        endResetModel();
    }
    void setCells(int row, const QStringList& cells) {
        rows_[row].cells = cells;
        Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1));
    }
    /// By a column; a second time turns the order round.
    void SortBy(int column) {
        beginResetModel();
        falling_ = column == sorted_ && !falling_;
        sorted_ = column;
        Order();
        endResetModel();
    }
    int Find(const QString& tag) const {
        const auto found = std::find_if(rows_.cbegin(), rows_.cend(),
                                        [&](const Row& row) { return row.tag == tag; });
        return found == rows_.cend() ? -1 : int(found - rows_.cbegin());
    }
    const Row& At(int row) const { return rows_[row]; }
    void setPictureSize(int pixels) { pictureSize_ = pixels; }

private:
    QVariant PictureOf(const Row& row) const {
        if (row.picture.isEmpty())
            return {};
        const QPixmap picture = Theme::Picture(row.picture, pictureSize_);
        QIcon icon(picture);
        // The style would dim it in a selected row.
        icon.addPixmap(picture, QIcon::Selected);
        return icon;
    }
    QString SortedBy(const Row& row) const {
        const QString order = row.order.value(sorted_);
        return order.isEmpty() ? row.cells.value(sorted_) : order;
    }
    /// Numbers stand by their value and before words. Below 0 when the first text stands first.
    static int Compare(const QString& one, const QString& other) {
        bool isNumber = false;
        bool isOtherNumber = false;
        const double difference = one.toDouble(&isNumber) - other.toDouble(&isOtherNumber);
        if (isNumber != isOtherNumber)
            return isNumber ? -1 : 1;
        return isNumber ? int(difference > 0) - int(difference < 0) : one.compare(other);
    }
    /// Equal rows stand by their tag.
    void Order() {
        std::stable_sort(rows_.begin(), rows_.end(), [&](const Row& one, const Row& other) {
            const int order = Compare(SortedBy(one), SortedBy(other));
            return order != 0 ? (order < 0) != falling_ : Compare(one.tag, other.tag) < 0;
        });
    }

    QList<Column> columns_;
    QList<Row> rows_;
    int sorted_ = 0;
    bool falling_ = false;
    int pictureSize_ = PicturePixels;
};

TouchTable::TouchTable(QWidget* parent)
    : QTableView(parent)
    , model_(new Model(this)) {
    setModel(model_);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setContextMenuPolicy(Qt::NoContextMenu);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    verticalHeader()->hide();
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(true);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, &TouchTable::SortBy);
    new SwipeScroll(*this);
}

TouchTable::~TouchTable() = default;

void TouchTable::setColumns(const QList<Column>& columns, double scale) {
    columns_ = columns;
    model_->setColumns(columns);
    const int finger = qRound(RowPixels * scale);
    const int picture = qRound(PicturePixels * scale);
    model_->setPictureSize(picture);
    setIconSize(QSize(picture, picture));
    verticalHeader()->setDefaultSectionSize(finger);
    horizontalHeader()->setFixedHeight(finger);
    GiveTouchScrollBar(*this, scale, {});
    FitColumns();
}

void TouchTable::FitColumns() {
    int shares = 0;
    for (const Column& column : columns_)
        shares += column.share;
    for (int i = 0; i < columns_.size(); ++i)
        setColumnWidth(i, viewport()->width() * columns_[i].share / qMax(1, shares));
}

void TouchTable::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    FitColumns();
}

void TouchTable::setRows(QList<Row> rows) {
    const QString tag = CurrentTag();
    const int view = verticalScrollBar()->value();
    model_->setRows(std::move(rows));
    verticalScrollBar()->setValue(view);
    SelectTag(tag);
}

void TouchTable::setCells(const QString& tag, const QStringList& cells) {
    const int row = model_->Find(tag);
    if (row >= 0)
        model_->setCells(row, cells);
}

void TouchTable::setSortable(bool on) {
    horizontalHeader()->setSectionsClickable(on);
}

void TouchTable::SortBy(int column) {
    const QString tag = CurrentTag();
    model_->SortBy(column);
    SelectTag(tag);
}

int TouchTable::RowCount() const {
    return model_->rowCount();
}

QString TouchTable::CurrentTag() const {
    const int row = CurrentRow();
    return row < 0 ? QString() : model_->At(row).tag;
}

void TouchTable::SelectTag(const QString& tag) {
    const int row = tag.isEmpty() ? -1 : model_->Find(tag);
    const bool another = row != CurrentRow();
    setCurrentIndex(row < 0 ? QModelIndex() : model_->index(row, 0));
    // A reset of the rows drops the selection without a word.
    if (!another || row < 0)
        Q_EMIT RowChanged();
}

void TouchTable::MoveBy(int rows) {
    const int row = CurrentRow() + rows;
    if (CurrentRow() >= 0 && row >= 0 && row < RowCount())
        setCurrentIndex(model_->index(row, 0));
}

QString TouchTable::Cell(int row, int column) const {
    return model_->At(row).cells.value(column);
}

void TouchTable::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (current.row() != previous.row())
        Q_EMIT RowChanged();
}
