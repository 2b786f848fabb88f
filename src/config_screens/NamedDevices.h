#pragma once

#include "core/SLVfonctions.h"

#include <QHash>
#include <QString>

/// What a screen has ports mean ahead of the operator's answer: it holds at once, so that it can be
/// tried, and goes back to what was before unless it is kept.
class NamedDevices {
public:
    /// False when the port means that already.
    bool Name(const QString& port, const SLVfonctions::PortSetting& setting);
    /// What a port meant before.
    SLVfonctions::PortSetting Former(const QString& port) const;
    /// False when there was nothing to put back.
    bool PutBack();
    void Settle() { former_.clear(); }

private:
    QHash<QString, SLVfonctions::PortSetting> former_;
};
