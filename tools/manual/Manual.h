#pragma once

#include <QString>

/// Writes a file of the help as a PDF with a title page, a table of contents and numbered pages,
/// in the language in use. False when the help can't be read or the PDF not be written.
bool WriteManual(const QString& help, const QString& pdf);
