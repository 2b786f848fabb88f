#include "model/CurrentConfig.h"

#include "core/Global.h"
#include "model/OutOfService.h"
#include "platform/Folders.h"

namespace {
std::unique_ptr<ConfigClass> current;
}

ConfigClass& Global::Configuration() {
    if (!current)
        current = std::make_unique<ConfigClass>();
    return *current;
}

void Global::setConfiguration(std::unique_ptr<ConfigClass> configuration) {
    current = std::move(configuration);
}

QString CurrentConfigFile() {
    return Global::InApplicationFolder(platform::ExecutableName() + QStringLiteral(".dat"));
}

qint32 SaveCurrentConfig() {
    ConfigClass& site = Global::Configuration();
    const bool modified = site.Modified();
    const qint32 result = site.Save(CurrentConfigFile());
    // It lowers the marks of the panels, which the site's own file doesn't hold yet.
    if (modified)
        site.setModified(true);
    if (result == ConfigClass::Saved)
        OutOfService::SiteSaved();
    return result;
}
