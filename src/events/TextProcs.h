#pragma once

#include "core/Record.h"
#include "events/EventClass.h"

#include <QString>

/// The layouts of an event in the operator's language and what turns one into another.
namespace TextProcs {

/// Two rows of 80 columns with the line break between them; columns that no field takes are
/// blank.
namespace ScreenLine {
inline constexpr int Width = 162;
inline constexpr Column Number{0, 7};
inline constexpr Column Display{11, 15};
inline constexpr Column Parameter{27, 11};
inline constexpr Column Origin{39, 7};
inline constexpr Column Date{53, 10};
inline constexpr Column Time{69, 8};
inline constexpr Column Break{80, 2};
inline constexpr Column PanelClock{82, 7};
inline constexpr Column Common{93, 26};
inline constexpr Column Specific{121, 40};
} // namespace ScreenLine

/// A line of a history file.
namespace FileLine {
inline constexpr int Width = 138;
inline constexpr Column Date{0, 10};
inline constexpr Column Time{11, 8};
inline constexpr Column Number{20, 6};
inline constexpr Column PanelClock{27, 7};
inline constexpr Column Origin{35, 7};
inline constexpr Column Parameter{43, 11};
inline constexpr Column Display{55, 15};
inline constexpr Column Common{71, 26};
inline constexpr Column Specific{98, 40};
/// All of them, in their order.
inline constexpr Column Columns[] = {Date,      Time,    Number, PanelClock, Origin,
                                     Parameter, Display, Common, Specific};
} // namespace FileLine

/// The screen line of an event.
QString FormateHistoScreen(const EventClass& event);

/// The event number has seven columns on the screen and six in the file: the last of its digits
/// stays behind, and the files of every site are so.
QString HistoScreenLineToHistoFileLine(const QString& line);
/// The reverse; what was cut doesn't come back, and columns 80 and 81 stay blank.
QString HistoFileLineToHistoScreenLine(const QString& line);

/// Panel mark, two digits, "-" and the model's name.
QString PanelOrigin(int panel);
/// Panel mark, two digits, then "-ACK" for the panel as a whole, else "-", channel mark and two
/// digits.
QString ChannelOrigin(int panel, int chnl);
/// Seven digits, or "SYNCHRO" for an event without a panel clock.
QString PanelClockText(qint32 clock);
/// Library text of a channel, empty where it has none.
QString CommonText(int panel, int chnl);
/// Word of a channel's or a panel's event: 51010 + `Aff` with its "|" pair, or 51020 + `Aff`.
QString DisplayText(const EventClass& event);
/// Part `index` of a text split at "|". Throws RunTimeError `Subscript`.
QString PartOf(const QString& text, int index);

} // namespace TextProcs
