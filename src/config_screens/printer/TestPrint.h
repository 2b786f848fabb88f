#pragma once

#include "events/DirectPrinting.h"

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

/// A test line on a printer port, which never waits for the printer: it goes out with the event
/// loop within the time that any line has.
class TestPrint : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    bool IsUnderWay() const { return printer_ != nullptr; }
    /// Prints on a port string. `done` gets the error text, empty when the line is out.
    void Start(const QString& portString, std::function<void(const QString& error)> done);

private:
    void Advance();
    void Finish(const QString& error);

    std::unique_ptr<DirectPrinting> printer_;
    std::function<void(const QString&)> done_;
    QTimer timer_{this};
};
