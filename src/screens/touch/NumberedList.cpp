#include "screens/touch/NumberedList.h"

#include "screens/touch/TouchList.h"
#include "screens/touch/ValueLabel.h"

#include <QListWidget>
#include <QSignalBlocker>
#include <utility>

NumberedList::NumberedList(QListWidget* list, ValueLabel* number, double scale,
                           std::function<QString(int)> line)
    : QObject(list)
    , list_(list)
    , shown_(number)
    , line_(std::move(line)) {
    MakeTouchList(*list, scale);
    connect(list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            setNumber(row + 1);
    });
}

void NumberedList::Fill(int entries) {
    const QSignalBlocker quiet(list_);
    list_->clear();
    for (int entry = 1; entry <= entries; ++entry)
        list_->addItem(line_(entry));
    setNumber(number_);
}

void NumberedList::Renew(int entry) {
    if (QListWidgetItem* item = list_->item(entry - 1))
        item->setText(line_(entry));
}

int NumberedList::Count() const {
    return list_->count();
}

void NumberedList::setNumber(int number) {
    const int limited = qBound(1, number, qMax(1, Count()));
    const int before = std::exchange(number_, limited);
    shown_->setCaption(QString::number(limited));
    list_->setCurrentRow(limited - 1);
    if (before != limited)
        Q_EMIT Changed(limited);
}
