#pragma once

#include <QObject>
#include <QString>
#include <functional>

class ValueLabel;
class QListWidget;

/// A list of numbered entries and the number of the chosen one, which follow each other.
class NumberedList : public QObject {
    Q_OBJECT
public:
    /// `line` gives the line of an entry, 1 the first; `scale` as for `MakeTouchList`.
    NumberedList(QListWidget* list, ValueLabel* number, double scale,
                 std::function<QString(int)> line);

    /// Makes the list of so many entries anew. The chosen one stays, the first at the first call.
    void Fill(int entries);
    /// Makes the line of an entry anew.
    void Renew(int entry);
    int Number() const { return number_; }
    int Count() const;
    /// Chooses an entry, limited to those that are there.
    void setNumber(int number);

Q_SIGNALS:
    /// Another entry is chosen.
    void Changed(int number);

private:
    QListWidget* list_;
    ValueLabel* shown_;
    std::function<QString(int)> line_;
    int number_ = 1;
};
