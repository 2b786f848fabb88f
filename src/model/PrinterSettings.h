#pragma once

#include <QString>

/// Port and line of the printer, which the site holds as one text: "COM2:9600,N,8,1", "LPT1:", or
/// nothing for no printer. The parts are texts, as they stand there; one that can't be read is
/// empty. The parts of the kinds that aren't chosen are no part of the value.
struct PrinterSettings {
    enum class PortKind { Serial, Parallel, None };

    PortKind kind = PortKind::None;
    QString serialPort;   ///< number, without its three letters
    QString parallelPort; ///< number, without its three letters
    QString speed;        ///< bits a second
    QString parity;       ///< a letter of `Parities`
    QString dataBits;
    QString stopBits;

    /// None, even, odd: the order in which they are offered.
    static inline const QString Parities = QStringLiteral("NEO");

    /// What the site's text says.
    static PrinterSettings Of(const QString& text);
    /// The site's text.
    QString Text() const;
    /// Name of the chosen port, empty when there is none.
    QString PortName() const;
    /// True when no part is missing.
    bool IsComplete() const;

    friend bool operator==(const PrinterSettings& one, const PrinterSettings& other) {
        return one.Text() == other.Text();
    }
};
