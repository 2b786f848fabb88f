#include "config_screens/NamedDevices.h"

#include "core/SLVfonctions.h"

bool NamedDevices::Name(const QString& port, const QString& device) {
    const QString former = SLVfonctions::DevicePath(port);
    if (device == former)
        return false;
    if (!former_.contains(port))
        former_.insert(port, former);
    SLVfonctions::setDevicePath(port, device);
    return true;
}

QString NamedDevices::Former(const QString& port) const {
    return former_.contains(port) ? former_.value(port) : SLVfonctions::DevicePath(port);
}

bool NamedDevices::PutBack() {
    if (former_.isEmpty())
        return false;
    for (auto former = former_.cbegin(); former != former_.cend(); ++former)
        SLVfonctions::setDevicePath(former.key(), former.value());
    former_.clear();
    return true;
}
