#pragma once

#include "events/HistoryFilter.h"

#include <QList>
#include <QString>
#include <QStringList>

class HistorySearch;

/// A filter of the history in words, and what can be chosen for it, in the language in use.
namespace FilterWords {

/// What is filtered by, in the order of the buttons.
enum Field { Period, Panel, Channel, Kind, User, Words };

/// Between the parts of a line.
inline const QString Divider = QStringLiteral(" \u00B7 ");

/// The value of a field for its button, empty while the field lets everything through.
QString Value(Field field, const HistoryFilter& filter);
/// The whole filter.
QString Sentence(const HistoryFilter& filter);

/// Items of a list to choose a field from, the first of them for everything.
QStringList Choices(Field field, const HistorySearch& search);
/// The item for what a filter holds now.
QString Chosen(Field field, const HistoryFilter& filter);
/// Sets a field to an item. Another panel lets all of its channels through.
void Choose(HistoryFilter& filter, Field field, const QString& item);

/// A text with its "$1", "$2" and so on replaced.
QString Filled(int text, const QStringList& values);
/// A length of time: "0:41", "3:12:05", or days ahead of the hours.
QString Duration(qint64 seconds);

} // namespace FilterWords
