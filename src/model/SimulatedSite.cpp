#include "model/SimulatedSite.h"

#include "model/ConfigClass.h"
#include "model/Models.h"

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
                               {QStringLiteral("model"), ModuleName(panel.Model())}};
    }
    return modules.isEmpty()
               ? QByteArray()
               : QJsonDocument(QJsonObject{{QStringLiteral("modules"), modules}}).toJson();
}

} // namespace SimulatedSite
