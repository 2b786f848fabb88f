#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// The single-byte code page of every file, bus and printer text: Windows-1252. The five codes
/// that the page leaves free (81, 8D, 8F, 90, 9D) stand for the control characters of the same
/// number, so that any byte comes back as itself.
QString FromCodePage(const QByteArray& bytes);

/// The reverse; a character that the page doesn't hold becomes "?".
QByteArray ToCodePage(const QString& text);

/// Does a text come back as itself?
bool FitsCodePage(const QString& text);
/// A text without what doesn't.
QString WithoutForeign(QString text);

} // namespace platform
