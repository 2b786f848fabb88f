#include "model/CurrentConfig.h"

#include "core/Global.h"
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
    return Global::Configuration().Save(CurrentConfigFile());
}
