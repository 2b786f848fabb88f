#pragma once

#include "platform/Ports.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// The serial lines of a machine that is a folder, in place of the real ones.
class PortsOfTest {
public:
    PortsOfTest() { Install(); }
    ~PortsOfTest() { platform::Ports::Override(std::nullopt); }
    PortsOfTest(const PortsOfTest&) = delete;
    PortsOfTest& operator=(const PortsOfTest&) = delete;

    QString Path(const QString& name) const { return folder_.filePath(name); }
    /// Plugs a line in and gives its device; one with a maker gets a lasting name.
    QString AddSerial(const QString& name, const QString& maker = {}) {
        QFile device(Path(name));
        device.open(QIODevice::WriteOnly);
        lines_ += {Path(name), QString(), maker, QString(), QString()};
        if (!maker.isEmpty()) {
            QDir(folder_.path()).mkpath("serial/by-id");
            QFile::link(Path(name), Lasting(Path(name)));
        }
        Install();
        return Path(name);
    }
    QString Lasting(const QString& device) const {
        return Path(QStringLiteral("serial/by-id/usb-") + QFileInfo(device).fileName());
    }

private:
    void Install() const {
        platform::PortRoots roots;
        roots.dev = folder_.path();
        roots.serial = [lines = lines_] { return lines; };
        platform::Ports::Override(roots);
    }

    QTemporaryDir folder_;
    QList<platform::PortDevice> lines_;
};
