#pragma once

#include "platform/SettingsFile.h"

#include <QString>
#include <QStringList>

/// The control sequences of a printer model, from a file of sections and keys in the application's
/// folder. A sequence is a text of hexadecimal byte values separated by blanks, as `PrintEvent`
/// takes it; what the file doesn't hold is empty.
class PrinterDefinition {
public:
    /// Of any file; a missing one holds nothing.
    explicit PrinterDefinition(const QString& path);

    /// The file of a printer's name, whether there is one or not.
    static QString PathOf(const QString& printerName);
    /// Printers that the application's folder holds a definition of, by name.
    static QStringList Names();

    /// Goes out at the start of every line.
    QString Init() const;
    /// Colours count from 0.
    QString Color(int number) const;
    /// Of "B" bold, "I" italic, "U" underline.
    QString Style(QChar letter) const;
    /// The ready sequence of a class: of a code such as "2BU", a colour's number and the letters of
    /// styles. Styles come in the order B, I, U, whatever the code's.
    QString SequenceOf(const QString& code) const;

    /// The sequence of a class after somebody has edited it. Styles are looked up in a section
    /// "Style", which a definition doesn't have: the class holds its colour alone until the printer
    /// is selected anew. Sites in the field count on what they print.
    QString EditedSequenceOf(const QString& code) const;

private:
    QString Sequence(const QString& code, const QString& stylesSection) const;

    platform::SettingsFile file_;
};
