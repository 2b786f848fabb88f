#pragma once

#include "model/MirrorClass.h"
#include "screens/touch/ScreenForm.h"

#include <QStringList>
#include <memory>

class PanelClass;

namespace Ui {
class dlgEditMirror;
}

/// The end points of a rule and its kind. A model may allow less than the dialog shows: what can't
/// be a rule can't be confirmed.
class dlgEditMirror : public ScreenForm {
    Q_OBJECT
public:
    dlgEditMirror();
    ~dlgEditMirror() override;

    /// True when the rule was confirmed.
    bool Ok() const { return ok_; }
    /// Kind of the mirror, 0 when it has none.
    qint16 MirrorType() const;
    /// The panel that stands for its own bus number while it is edited; it outlives the dialog.
    void setPanel(const PanelClass* panel) { panel_ = panel; }
    /// Shows a rule.
    void setRule(const MirrorClass& rule);
    /// Shows a source that can't be changed: a channel number, or the word for the whole panel.
    void FixSource(int module, const QString& channel);
    /// The rule as it is shown.
    MirrorClass Rule() const;
    /// What is shown is the question. What an alarm took away stands there again when the same rule
    /// is asked for.
    void Begin();
    /// Shows the dialog until it is left, again if it was before.
    void Ask();

protected:
    void CloseRequested() override { imgControl_Click(Cancel); }
    void Form_Unload() override;

private:
    enum Image { Cancel, Confirm };

    const PanelClass* PanelOf(int number) const;
    void imgPlusMoins_Click(int index);
    void StepSourceChannel(int by);
    void StepTargetChannel(int by);
    void imgControl_Click(int index);
    void lblSrceModNo_Change();
    void lblSrceChnlNo_Change();
    void lblDestModNo_Change();
    void ShowPanels();
    bool IsComplete() const;
    /// The values of the dialog in the order in which they depend on each other.
    QStringList Captions() const;
    void setCaptions(const QStringList& captions);

    std::unique_ptr<Ui::dlgEditMirror> ui_;
    const PanelClass* panel_ = nullptr;
    bool ok_ = false;
    bool answered_ = false;
    /// What the dialog began with, empty before it is shown.
    QStringList question_;
};
