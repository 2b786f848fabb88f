#pragma once

#include <QString>

/// Port and line of the event printer, which the site holds as one text: "COM1:9600,N,8,1",
/// "LPT1:", or nothing. The parts are texts, as they stand there; one that can't be read is
/// `Unread`.
struct PrinterSettings {
    enum class Kind { Serial, Parallel, None };

    inline static const QString Unread = QStringLiteral("?????");
    /// Letters of the parity in the order in which they are offered: none, even, odd.
    inline static const QString ParityLetters = QStringLiteral("NEO");

    Kind kind = Kind::None;
    QString comPort = QStringLiteral("1");
    QString speed = QStringLiteral("9600");
    QString parity = QStringLiteral("N");
    QString bits = QStringLiteral("8");
    QString stop = QStringLiteral("1");
    QString lptPort = QStringLiteral("1");

    /// What the site's text says.
    static PrinterSettings Of(const QString& text);
    /// The site's text.
    QString Text() const;
    /// "COM1", "LPT1" or nothing.
    QString PortName() const;

    bool operator==(const PrinterSettings& other) const = default;
};
