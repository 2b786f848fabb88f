#pragma once

#include <QString>

/// Port and line of the bus, which the site holds as one text: "COM3:9600,N,8,1". The parts are
/// texts, as they stand there, and may be missing.
struct BusSettings {
    QString port;  ///< number of the port, without its three letters
    QString speed; ///< bits a second
    QString stop;  ///< stop bits
    /// Speed, parity letter, data bits and stop bits, as the link takes them.
    QString line;

    /// What the site's text says.
    static BusSettings Of(const QString& text);
    /// A line of this speed and these stop bits, with no parity and 8 data bits.
    static QString Line(const QString& speed, const QString& stop);
    /// The site's text for a port number and a line.
    static QString Text(int port, const QString& line);
    /// Name of a port by its number.
    static QString PortName(int port) { return QStringLiteral("COM%1").arg(port); }
};
