#pragma once

#include <QList>
#include <QString>

class ChannelClass;
class PanelClass;

/// The parameters of the panel editor: how each one is asked for, shown and stored. A parameter
/// more of a channel is one row more of this table, and a label of the design.
namespace ChannelParameters {

/// Parameters that the editor treats in its own way.
enum Place { Title = 0, Number = 1, Library = 8, Instruction = 9 };

struct Parameter {
    /// The list from which the value is chosen, as `dlgListInput` takes it; null for a text.
    QString (*list)(const PanelClass& panel) = nullptr;
    /// The value of a channel as the screen shows it; null for what is no part of a channel.
    QString (*show)(const ChannelClass& channel) = nullptr;
    /// Stores what the screen shows. A text that the list doesn't have changes nothing.
    void (*store)(ChannelClass& channel, const QString& shown) = nullptr;
};

const QList<Parameter>& All();

} // namespace ChannelParameters
