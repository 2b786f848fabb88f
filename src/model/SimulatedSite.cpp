#include "model/SimulatedSite.h"

#include "model/ConfigClass.h"
#include "model/Models.h"
#include "model/PrinterSettings.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace SimulatedSite {

QByteArray ScenarioOf(const ConfigClass& site) {
    QJsonArray modules;
    for (int address = 1; address <= ConfigClass::PanelCount; ++address) {
        const PanelClass& panel = site.Panel(address);
        if (!panel.Active() || panel.Model() < Models::Q7100 || panel.Model() > Models::P5500)
            continue;
        modules += QJsonObject{{QStringLiteral("address"), address},
                               {QStringLiteral("model"), ModuleName(panel.Model())},
                               {QStringLiteral("title"), panel.Title()}};
    }
    return modules.isEmpty()
               ? QByteArray()
               : QJsonDocument(QJsonObject{{QStringLiteral("modules"), modules}}).toJson();
}

void Fit(ConfigClass& site) {
    const bool modified = site.Modified();
    site.setAutoStart(true);
    if (PrinterSettings::Of(site.PrtSettings()).kind != PrinterSettings::PortKind::None)
        site.setPrtSettings(QStringLiteral("LPT1:"));
    // Without a mark before, none but the site's own was raised here.
    if (!modified)
        site.setModified(false);
}

} // namespace SimulatedSite
