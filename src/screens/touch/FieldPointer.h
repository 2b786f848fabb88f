#pragma once

#include <QList>
#include <QObject>

class ValueLabel;
class QWidget;

/// The one field of several that a button changes: yellow, the others white. Two arrows move on it,
/// and a touch on a field goes there at once.
class FieldPointer : public QObject {
    Q_OBJECT
public:
    /// Fields in their order; the first is pointed at. The arrows may be null.
    FieldPointer(QObject* parent, QList<ValueLabel*> fields, QWidget* back = nullptr,
                 QWidget* on = nullptr);

    /// Place of the field that is pointed at, 0 the first.
    int Place() const { return place_; }
    ValueLabel* Field() const { return fields_.value(place_); }
    int Count() const { return int(fields_.size()); }
    /// Goes to a place; one that isn't there, or can't be pointed at, changes nothing.
    void setPlace(int place);
    /// Goes so many fields on or back, as far as there are any.
    void MoveBy(int fields);
    /// A field that the pointer never stands on.
    void Skip(int place) { skipped_ += place; }

Q_SIGNALS:
    /// The pointer stands on another field.
    void Moved(int place);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Show();

    QList<ValueLabel*> fields_;
    QWidget* back_;
    QWidget* on_;
    QList<int> skipped_;
    int place_ = 0;
};
