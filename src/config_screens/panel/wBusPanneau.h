#pragma once

#include "config_screens/ConfigForm.h"
#include "config_screens/panel/PanelDraft.h"
#include "config_screens/panel/PanelEditor.h"
#include "screens/dialogs/dlgListInput.h"

#include <memory>

class FieldPointer;
class QListWidget;
class ValueLabel;

namespace Ui {
class wBusPanneau;
}

/// The editor of one panel with its channels and the mirrors that touch it.
class wBusPanneau : public ConfigForm, public PanelEditor, public PreviewLists {
    Q_OBJECT
public:
    wBusPanneau();
    ~wBusPanneau() override;

    qint16 NumModule() const { return qint16(draft_.Number()); }
    void setNumModule(qint16 number) override;
    /// Shows the values of the current channel.
    void ReadChannel();

    int PreviewParameter() const override;
    int PreviewCount(int parameter) const override;
    void setPreviewIndex(int parameter, int index) override;
    QString PreviewValue(int parameter) const override;

protected:
    bool Differs() const override { return draft_.Number() > 0 && draft_.Modified(); }
    bool Take() override;
    void Drop() override;
    void Keep() override;

private:
    void ConnectControls();
    void FillLists();
    void ShowPanel();
    void ShowTitle();
    void ShowArrows();
    void ShowModel();
    ValueLabel* Value(int parameter) const;
    int Channel() const;
    ChannelClass& CurrentChannel();
    QListWidget* ListOf(int parameter) const;
    void RestoreKept();

    void imgNavig_Click(int index);
    void imgNavPanel_Click(int index);
    void imgControl_Click(int index);
    void imgModif_Click();
    void imgModele_Click();
    void imgActive_Click();
    void imgClear_Click();
    void imgCancel_Click();
    void lblTitleColor_Click();
    void lblParamVal_Change(int index);
    void lstModele_Click(int model);
    void EditMirrors();
    bool ReleaseFromMirrors();

    std::unique_ptr<Ui::wBusPanneau> ui_;
    PanelDraft draft_;
    FieldPointer* pointer_ = nullptr;
    /// The labels take values of the panel: nothing of it is an edit.
    bool showing_ = false;
};
