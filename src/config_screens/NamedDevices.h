#pragma once

#include <QHash>
#include <QString>

/// Devices that a screen gives to ports ahead of the operator's answer: they hold at once, so that
/// they can be tried, and go back to the former ones unless they are kept.
class NamedDevices {
public:
    /// False when the port has that device already.
    bool Name(const QString& port, const QString& device);
    /// The device of a port as it was before.
    QString Former(const QString& port) const;
    /// False when there was nothing to put back.
    bool PutBack();
    void Settle() { former_.clear(); }

private:
    QHash<QString, QString> former_;
};
