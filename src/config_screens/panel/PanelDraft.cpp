#include "config_screens/panel/PanelDraft.h"

#include "config_screens/SiteEdit.h"
#include "config_screens/mirrors/MirrorRules.h"
#include "model/CurrentConfig.h"
#include "model/SiteFile.h"

namespace {

PanelDraft::Snapshot SnapshotOf(const PanelClass& panel, const MirrorClasses& mirrors) {
    SiteFileWriter panelBytes;
    panel.WriteTo(panelBytes);
    return {panelBytes.Bytes(), MirrorRules::BytesOf(mirrors)};
}

} // namespace

void PanelDraft::Load(int number) {
    number_ = number;
    ReloadPanel();
    mirrors_.Copy(Global::Configuration().Mirrors());
    mirrors_.setModified(false);
}

void PanelDraft::ReloadPanel() {
    panel_ = std::make_unique<PanelClass>();
    panel_->Copy(Global::Configuration().Panel(number_));
    panel_->setModified(false);
    wasActive_ = panel_->Active();
}

void PanelDraft::ClearPanel() {
    panel_ = std::make_unique<PanelClass>();
    panel_->setNumero(quint8(number_));
    panel_->setModified(true);
}

void PanelDraft::Take() {
    ConfigClass& site = Global::Configuration();
    if (panel_->Modified()) {
        if (panel_->Active() == wasActive_)
            panel_->setActive(site.Panel(number_).Active());
        CopySettings(site.Panel(number_), *panel_);
        panel_->setModified(false);
    }
    if (mirrors_.Modified()) {
        site.Mirrors().Copy(mirrors_);
        mirrors_.setModified(false);
    }
}

PanelDraft::Snapshot PanelDraft::Edited() const {
    return SnapshotOf(*panel_, mirrors_);
}

PanelDraft::Snapshot PanelDraft::OfSite() const {
    const ConfigClass& site = Global::Configuration();
    return SnapshotOf(site.Panel(number_), site.Mirrors());
}

void PanelDraft::Restore(const Snapshot& edited) {
    const Snapshot site = OfSite();
    SiteFileReader panel(edited.panel);
    panel_->ReadFrom(panel);
    panel_->setModified(edited.panel != site.panel);
    MirrorRules::Restore(mirrors_, edited.mirrors);
    mirrors_.setModified(edited.mirrors != site.mirrors);
}
