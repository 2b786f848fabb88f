#pragma once

#include "platform/SettingsFile.h"

#include <QString>
#include <QStringList>

/// How a class of events is printed, which the site holds as a text such as "2BU": a colour's
/// number and the letters of styles.
struct PrinterCode {
    /// Every style: "B" bold, "I" italic, "U" underline.
    static inline const QString AllStyles = QStringLiteral("BIU");

    int color = -1; ///< from 0; below for none
    QString styles; ///< some of AllStyles, in that order

    static PrinterCode Of(const QString& text);
    QString Text() const;
};

/// The control sequences of a printer model, from a file of sections and keys in the application's
/// folder. A sequence is a text of hexadecimal byte values separated by blanks, as `PrintEvent`
/// takes it; what the file doesn't hold is empty.
class PrinterDefinition {
public:
    /// Of any file; a missing one holds nothing.
    explicit PrinterDefinition(const QString& path);

    /// The file of a printer's name, whether there is one or not.
    static QString PathOf(const QString& printerName);
    static bool Exists(const QString& printerName);
    /// Printers that the application's folder holds a definition of, by name.
    static QStringList Names();

    /// Goes out at the start of every line.
    QString Init() const;
    /// Colours count from 0.
    QString Color(int number) const;
    /// A letter of `PrinterCode::AllStyles`.
    QString Style(QChar letter) const;
    /// The ready sequence of a class by its code: colour, then styles.
    QString SequenceOf(const QString& code) const;
    /// The sequence that a class gets by an edit of its code. The styles are looked up in a section
    /// that the files don't have, so it holds the colour alone until the printer is chosen again.
    /// Sites are set up by that order of steps, and their papers look like it: not a slip to mend.
    QString EditedSequenceOf(const QString& code) const;

private:
    QString Sequence(const QString& code, const QString& styleSection) const;

    platform::SettingsFile file_;
};
