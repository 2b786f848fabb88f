#pragma once

#include "core/DateTimes.h"

#include <QtGlobal>

/// One event: what a panel said, a panel that came or went, what the application or the operator
/// did. A plain value, owned by whoever built it and lent to each consumer for the time of the
/// call.
class EventClass {
public:
    EventClass() = default;
    EventClass(qint16 panel, qint16 chnl, qint16 param, qint16 aff)
        : aff_(aff)
        , chnl_(chnl)
        , panel_(panel)
        , param_(param) {}

    /// Code within the family that `Chnl` selects.
    qint16 Aff() const { return aff_; }
    void setAff(qint16 value) { aff_ = value; }
    /// 1 to 24 a channel, 0 the panel as a whole, 254 the system, 255 presence on the bus.
    qint16 Chnl() const { return chnl_; }
    void setChnl(qint16 value) { chnl_ = value; }
    /// The panel's 20-bit counter; 0 for what the PC makes up, negative for no panel clock.
    qint32 Clock() const { return clock_; }
    void setClock(qint32 value) { clock_ = value; }
    /// When the PC took note of it.
    DateTime GDH() const { return gdh_; }
    void setGDH(DateTime value) { gdh_ = value; }
    /// `Panel`, `Chnl`, `Param` and `Aff`, one byte each from the top. Throws RunTimeError
    /// `Overflow` when the sum leaves 32 bits.
    qint32 ID() const;
    void setID(qint32 value);
    /// Running number, 1 to 999999.
    qint32 Num() const { return num_; }
    void setNum(qint32 value) { num_ = value; }
    /// Bus address, 0 for the application as a whole.
    qint16 Panel() const { return panel_; }
    void setPanel(qint16 value) { panel_ = value; }
    /// Qualifier: for channels 0 is a change of state, 1 an acknowledgement.
    qint16 Param() const { return param_; }
    void setParam(qint16 value) { param_ = value; }

private:
    qint16 aff_ = 0;
    qint16 chnl_ = 0;
    qint32 clock_ = 0;
    DateTime gdh_ = 0;
    qint32 num_ = 0;
    qint16 panel_ = 0;
    qint16 param_ = 0;
};

/// Values of `Chnl` that select a family.
namespace Family {
inline constexpr qint16 PanelWide = 0;
inline constexpr qint16 LastChannel = 24;
inline constexpr qint16 System = 254;
inline constexpr qint16 Presence = 255;
inline bool IsChannel(qint16 chnl) {
    return chnl >= 1 && chnl <= LastChannel;
}
} // namespace Family

/// `Aff` of system events.
namespace SystemEvents {
inline constexpr qint16 AcknowledgedOnPc = 0;
inline constexpr qint16 ApplicationStarted = 1;
inline constexpr qint16 ApplicationStopped = 2;
inline constexpr qint16 UserChanged = 3;
inline constexpr qint16 CommStarted = 4;
inline constexpr qint16 CommStopped = 5;
inline constexpr qint16 MidnightState = 6;
/// `Panel` and, in `Param`, the channel that was taken out of service or came back; 0 for the panel
/// as a whole.
inline constexpr qint16 OutOfService = 7;
inline constexpr qint16 BackInService = 8;
/// How many are out of service, once a day.
inline constexpr qint16 OutOfServiceCount = 9;
} // namespace SystemEvents

/// Mark of an alarm that the reactivation brings back to the console.
inline constexpr qint16 ReactivatedAff = 255;
