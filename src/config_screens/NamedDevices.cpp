#include "config_screens/NamedDevices.h"

using SLVfonctions::PortSetting;

bool NamedDevices::Name(const QString& port, const PortSetting& setting) {
    const PortSetting former = SLVfonctions::PortOf(port);
    if (setting == former)
        return false;
    if (!former_.contains(port))
        former_.insert(port, former);
    SLVfonctions::setPort(port, setting);
    return true;
}

PortSetting NamedDevices::Former(const QString& port) const {
    return former_.contains(port) ? former_.value(port) : SLVfonctions::PortOf(port);
}

bool NamedDevices::PutBack() {
    if (former_.isEmpty())
        return false;
    for (auto former = former_.cbegin(); former != former_.cend(); ++former)
        SLVfonctions::setPort(former.key(), former.value());
    former_.clear();
    return true;
}
