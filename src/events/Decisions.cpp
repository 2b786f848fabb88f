#include "events/Decisions.h"

#include "core/ErrorHandling.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"

using ErrorHandling::Guard;

namespace {

/// What the bits of an option mask select.
enum OptionBit {
    Presences = 0,
    AcknowledgementsAndCables = 1,
    StateChanges = 2,
    PanelAcknowledgements = 3,
    PcAcknowledgements = 4
};

using OptionRow = bool (ConfigClass::*)(int) const;
using ChannelFlag = bool (ChannelClass::*)() const;

class Decision {
public:
    Decision(OptionRow row, ChannelFlag flag, const EventClass& event)
        : row_(row)
        , flag_(flag)
        , event_(event) {}

    bool Option(int bit) const { return (Global::Configuration().*row_)(bit); }

    /// Acknowledgements and clearings of the panel itself.
    bool OfPanel() const { return Option(PanelAcknowledgements) && event_.Aff() > 1; }

    /// System events always pass, but the acknowledgement on the PC follows its option.
    bool OfSystem() const {
        return event_.Aff() != SystemEvents::AcknowledgedOnPc || Option(PcAcknowledgements);
    }

    bool OfChannel() const {
        const ChannelClass& channel =
            Global::Configuration().Panel(event_.Panel()).Channel(event_.Chnl());
        if (!(channel.*flag_)())
            return false;
        return (Option(AcknowledgementsAndCables) && event_.Aff() == 2) ||
               (Option(StateChanges) && event_.Param() == 0) ||
               (Option(AcknowledgementsAndCables) && event_.Param() == 1);
    }

private:
    OptionRow row_;
    ChannelFlag flag_;
    const EventClass& event_;
};

/// History and printer weigh their options alike.
bool IsToRecord(const Decision& decision, const EventClass& event) {
    if (event.Chnl() == Family::Presence)
        return decision.Option(Presences);
    if (event.Chnl() == Family::System)
        return decision.OfSystem();
    if (event.Chnl() == Family::PanelWide)
        return decision.OfPanel();
    return Family::IsChannel(event.Chnl()) && decision.OfChannel();
}

} // namespace

bool IsToKlaxon(const EventClass& event) {
    bool result = false;
    Guard("Decisions.IsToKlaxon", [&] {
        if (event.Panel() > 0 &&
            Models::IsRemoteControlled(Global::Configuration().Panel(event.Panel()).Model()))
            return;
        const Decision decision(&ConfigClass::OptionKlaxon, &ChannelClass::Klaxon, event);
        if (event.Chnl() == Family::Presence)
            result = decision.Option(Presences) && event.Aff() == 0;
        else if (Family::IsChannel(event.Chnl()))
            result = decision.OfChannel();
    });
    return result;
}

bool IsToDisplay(const EventClass& event) {
    bool result = false;
    Guard("Decisions.IsToDisplay", [&] {
        const Decision decision(&ConfigClass::OptionScreen, &ChannelClass::ScrAlm, event);
        result = event.Chnl() != Family::System && IsToRecord(decision, event);
    });
    return result;
}

bool IsToHisto(const EventClass& event) {
    bool result = false;
    Guard("Decisions.IsToHisto", [&] {
        result = IsToRecord({&ConfigClass::OptionHisto, &ChannelClass::Histo, event}, event);
    });
    return result;
}

bool IsToPrint(const EventClass& event) {
    bool result = false;
    Guard("Decisions.IsToPrint", [&] {
        result = IsToRecord({&ConfigClass::OptionPrinter, &ChannelClass::PrtAlm, event}, event);
    });
    return result;
}
