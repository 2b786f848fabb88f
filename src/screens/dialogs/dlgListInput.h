#pragma once

#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/ScreenForm.h"

#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

namespace Ui {
class dlgListInput;
}

/// What the list dialog needs of the panel editor to let two of its lists follow the value while
/// it is being chosen. Parameters count as on that screen; an index of -1 is no selection.
class PreviewLists {
public:
    virtual ~PreviewLists() = default;
    /// Number of the parameter being edited, as its number field reads.
    virtual int PreviewParameter() const = 0;
    /// Number of lines of the list that belongs to a parameter.
    virtual int PreviewCount(int parameter) const = 0;
    virtual void setPreviewIndex(int parameter, int index) = 0;
    /// The value that the screen itself holds for the parameter.
    virtual QString PreviewValue(int parameter) const = 0;
};

/// Picks one value out of a list. The caller gives its form, then the present value, then the
/// descriptor of the list, and shows the dialog modally.
class dlgListInput : public ScreenForm {
    Q_OBJECT
public:
    dlgListInput();
    ~dlgListInput() override;

    /// True when the user confirmed.
    bool Ok() const { return ok_; }
    ScreenForm* ParentForm() const { return parent_; }
    /// The calling form. Its lists follow the value if it is a `PreviewLists`; may be null.
    void setParentForm(ScreenForm* form) { parent_ = form; }
    /// The list, parts joined by "|": "$" for no and yes; "*", a lower and an upper bound for the
    /// whole numbers between them; "@" and the items as they stand. The item equal to the value
    /// is selected.
    void setValuesList(const QString& descriptor);
    QString Value() const;
    void setValue(const QString& value);
    /// Selects an item by its text.
    void Choose(const QString& value);
    /// `note` gets the value when the dialog is unloaded while it stands, without an answer.
    void WhenTakenAway(std::function<void(const QString& value)> note) {
        takenAway_ = std::move(note);
    }

protected:
    void Form_Activate() override;
    void CloseRequested() override { Control_Click(Cancel); }
    void Form_Unload() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum Image { Up, Down, Confirm, Cancel };

    void Control_Click(int index);
    void AddItem(const QString& text);
    void AddNumbers(const QString& lower, const QString& upper);
    void Preview();
    void UndoPreview();
    /// The screen to preview on and its parameter, if the value lies in the list.
    PreviewLists* PreviewTarget(int& parameter) const;

    std::unique_ptr<Ui::dlgListInput> ui_;
    bool ok_ = false;
    QPointer<ScreenForm> parent_;
    HoldToRepeat repeat_;
    std::function<void(const QString&)> takenAway_;
};

/// Lets the user choose a value and gives it; nothing when the dialog was left otherwise, also
/// when it was unloaded while it waited. `parent` may be gone afterwards too.
std::optional<QString> AskValue(ScreenForm* parent, const QString& descriptor,
                                const QString& present);
