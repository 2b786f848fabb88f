#include "config_screens/SiteEdit.h"

#include "bus/OutOfServiceWatch.h"
#include "core/Config.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "model/OutOfService.h"

#include <QPair>
#include <array>

bool SaveSite() {
    if (!Global::Configuration().Modified())
        return true;
    const qint32 result = SaveCurrentConfig();
    TellOutOfService();
    if (result >= 1)
        Message(GetText(result), Messages::Critical);
    return result < 1;
}

void CopySettings(PanelClass& to, const PanelClass& from) {
    const QList<OutOfService::Thing> before = OutOfService::Present();
    const quint8 actualModel = to.ActualModel();
    const bool present = to.Present();
    const bool lossTold = to.LossTold();
    const bool lossUntold = to.LossUntold();
    std::array<QPair<qint16, qint16>, PanelClass::MaxChannel + 1> live;
    for (int number = 1; number <= PanelClass::MaxChannel; ++number)
        live[size_t(number)] = {to.Channel(number).State(), to.Channel(number).MirrorType()};
    to.Copy(from);
    to.setActualModel(actualModel);
    to.setPresent(present);
    to.setLossTold(lossTold);
    to.setLossUntold(lossUntold);
    for (int number = 1; number <= PanelClass::MaxChannel; ++number) {
        to.Channel(number).setState(live[size_t(number)].first);
        to.Channel(number).setMirrorType(live[size_t(number)].second);
    }
    OutOfService::Notice(before);
}
