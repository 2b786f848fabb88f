#pragma once

#include <QString>
#include <optional>

/// The models of annunciator modules and the delays of the reactivation list.
namespace Models {

/// Model codes as the site file, the panels and the bus tables hold them.
inline constexpr quint8 None = 0;
inline constexpr quint8 Q7100 = 1;
inline constexpr quint8 Q6200XT = 2;
inline constexpr quint8 Q7000 = 3;
inline constexpr quint8 P5000 = 4;
inline constexpr quint8 P5500 = 5;

/// The Q7100 and the Q7000 share their register tables.
constexpr bool IsQFamily(int model) {
    return model == Q7100 || model == Q7000;
}
/// The models that take remote-control commands.
constexpr bool IsRemoteControlled(int model) {
    return model == P5000 || model == P5500;
}

/// The models whose channels can be read and forced one by one.
constexpr bool HasChannels(int model) {
    return IsQFamily(model) || IsRemoteControlled(model);
}

/// Name of a model; empty for a code that no model has.
QString ModuleName(int code);
/// The same with the code itself where there is no name.
QString NameOrCode(int code);

/// The reactivation delays as a list descriptor: "@" and the times, parted by bars.
QString ReactivTimeList();
/// Hours and minutes of a reactivation delay, 1 to 8: empty below 1, the last delay above 8.
QString ReactivTime(int index);
/// Index of a delay's text, in any case and with any blanks around it; nothing for another text.
std::optional<int> ReactivTime(const QString& text);

} // namespace Models

using Models::ModuleName;
using Models::ReactivTime;
