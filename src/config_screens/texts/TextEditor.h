#pragma once

#include "config_screens/ConfigForm.h"
#include "screens/touch/EntryClipboard.h"
#include "screens/touch/WorkingCopy.h"

#include <QString>
#include <QStringList>

class ConfigClass;
class NumberedList;

/// A table of texts of the site, and what tells the two editors of such tables apart.
struct TextTable {
    QString form;
    /// Name of the list's control.
    QString list;
    int entries;
    /// Length of a text, characters.
    int width;
    /// Entries that the two outer arrows step over.
    int bigStep;
    bool multiLine;
    /// An entry as the site holds it, 1 the first, and its replacement.
    QString (ConfigClass::*read)(int index) const;
    void (ConfigClass::*write)(int index, const QString& text);
    /// The line of an entry in the list.
    QString (*format)(int number, const QString& text);
};

/// The line of an entry: its number in two digits and the head of its text, with `lineBreak` for
/// each break.
QString FormatEntry(int number, const QString& text, const QString& lineBreak);

/// The common part of the editors of library and instruction texts. The texts that are edited are
/// without what fills them up in the site, so that an entry that was never used, NUL characters
/// there, is the same as one of blanks.
class TextEditor : public ConfigForm {
    Q_OBJECT
protected:
    enum Image {
        OneUp = 2,
        OneDown,
        StepUp,
        StepDown,
        Copy,
        Paste,
        Cut,
        Clear,
        Edit,
        FromFile,
    };

    explicit TextEditor(const TextTable& table);

    /// The common end of a constructor, after the controls are there.
    void Begin();
    /// Puts a text in place of the current entry; what is too long is cut.
    void setEntry(const QString& text);
    /// The current entry is another one, or has another text.
    virtual void ShowEntry(const QString& text) { Q_UNUSED(text) }
    virtual void imgControl_Click(int index);

    bool Differs() const override { return texts_.Differs(); }
    bool Take() override;
    void Keep() override;

private:
    void InitListes();
    void FillList();
    void Renew();
    void EditEntry();
    void imgNavig_Click(int index);
    QString& Entry();

    const TextTable& table_;
    WorkingCopy<QStringList> texts_;
    EntryClipboard<QString> clipboard_;
    NumberedList* list_ = nullptr;
};
