#pragma once

#include <QByteArray>
#include <QString>

class ConfigClass;

/// The settings of all channels of a site as a text of lines with tabs between the columns, which
/// a spreadsheet opens.
namespace ChannelSheet {

/// A header, and a line for each channel that the model of each of the 64 panels has, in
/// Windows-1252.
QByteArray Export(const ConfigClass& site);

/// What became of an import.
struct Outcome {
    /// Channels that were taken over.
    int channels = 0;
    /// Line of the text at which the import ended, 1 the first; 0 when it went through.
    int badLine = 0;
    /// Header of the column that could not be taken there.
    QString badColumn;
    /// The text was not in Windows-1252 but in Unicode, and was taken all the same.
    bool wasUnicode = false;
};

/// Sets the channels that the lines tell, as far as the first line that can't be taken; that one
/// changes nothing. Lines that don't begin with a number are passed over. What spreadsheets do to
/// a text of columns is undone: quotes around fields, lost empty columns at the end, other line
/// ends, a mark of Unicode ahead.
Outcome Import(ConfigClass& site, const QByteArray& bytes);

} // namespace ChannelSheet
