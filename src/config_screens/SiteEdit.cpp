#include "config_screens/SiteEdit.h"

#include "core/Config.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "model/OutOfService.h"

#include <QPair>
#include <array>

void SaveSite() {
    ConfigClass& site = Global::Configuration();
    if (!site.Modified())
        return;
    OutOfService::DropPast();
    const qint32 result = SaveCurrentConfig();
    // Its own file doesn't hold the change, and saving lowers the marks of the panels.
    site.setModified(true);
    if (result >= 1)
        Message(GetText(result), Messages::Critical);
}

void CopySettings(PanelClass& to, const PanelClass& from) {
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
}
