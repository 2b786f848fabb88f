#include "screens/touch/FieldPointer.h"

#include "screens/touch/Position.h"
#include "screens/touch/ValueLabel.h"

#include <QEvent>
#include <utility>

FieldPointer::FieldPointer(QObject* parent, QList<ValueLabel*> fields, QWidget* back, QWidget* on)
    : QObject(parent)
    , fields_(std::move(fields))
    , back_(back)
    , on_(on) {
    for (ValueLabel* field : fields_)
        field->installEventFilter(this);
    Show();
}

void FieldPointer::setPlace(int place) {
    if (place < 0 || place >= fields_.size() || skipped_.contains(place))
        return;
    const int before = std::exchange(place_, place);
    Show();
    if (before != place)
        Q_EMIT Moved(place);
}

void FieldPointer::MoveBy(int fields) {
    const int step = fields < 0 ? -1 : 1;
    int place = place_ + fields;
    while (skipped_.contains(place))
        place += step;
    setPlace(place);
}

bool FieldPointer::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease)
        setPlace(int(fields_.indexOf(qobject_cast<ValueLabel*>(watched))));
    return QObject::eventFilter(watched, event);
}

void FieldPointer::Show() {
    for (int i = 0; i < fields_.size(); ++i)
        fields_[i]->setPointed(i == place_);
    if (back_ != nullptr && on_ != nullptr)
        EnableByPosition(back_, on_, place_, Count());
}
