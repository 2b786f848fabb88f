#include "config_screens/backup/wSiteCompare.h"

#include "config_screens/backup/RestoreRun.h"
#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "events/ReportText.h"
#include "model/CurrentConfig.h"
#include "platform/FileWriting.h"
#include "platform/RunTimeError.h"
#include "platform/Volumes.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/ValueLabel.h"
#include "ui_wSiteCompare.h"

#include <QPointer>

namespace {

enum Texts {
    RestoreQuestion = 716088,
    Restored,
    NotFinished,
    NothingChanged = 716094,
    RestoreTitle = 716101,
    TouchToChoose = 716102,
    PlaceColumn = 716104,
    SettingColumn,
    FirstSite,
    HereAndBackup = 716108,
    ChooseTwo = 716110,
    NoDifference,
    OneDifference,
    Differences,
    SiteFilter,
    TableFilter,
    Saved,
    BackupName,
    PresentSite,
};

const QString Files = QStringLiteral("Files");
const QString Panels = QStringLiteral("modules");
const QString Contents = QStringLiteral("contents");

QString LastUsed() {
    return IniRead(Files, QStringLiteral("LastUsed"), QString());
}

QString FirstStick() {
    const QList<platform::Volume> volumes = platform::RemovableVolumes();
    return volumes.isEmpty() ? QString() : volumes.first().path;
}

} // namespace

wSiteCompare::wSiteCompare()
    : ScreenForm(FormNames::wSiteCompare)
    , ui_(std::make_unique<Ui::wSiteCompare>()) {
    ui_->setupUi(this);
    Prepare();
    OnKey(Qt::Key_F1, [] { ShowHelp(); });
    ui_->tblDifferences->setSortable(false);
    connect(ui_->tblDifferences, &TouchTable::RowChanged, this, &wSiteCompare::ShowWhole);
    OnClick(QStringLiteral("lblSite"), [this](int side) { lblSite_Click(side); });
    OnClick(QStringLiteral("imgPresent"), [this](int side) { imgPresent_Click(side); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgSave, [this] { imgSave_Click(); });
    OnClick(ui_->imgRestore, [this] { imgRestore_Click(); });
    OnClick(ui_->imgClose, [this] { Leave(FormNames::wBackup); });
    if (RestoreRun::Proposed() != nullptr) {
        ShowRestore();
        return;
    }
    SetColumns(FirstSite);
    sides_[0].present = true;
    ShowSides();
}

wSiteCompare::~wSiteCompare() = default;

void wSiteCompare::SetColumns(int first) {
    const QString titles[Columns] = {GetText(PlaceColumn), GetText(SettingColumn), GetText(first),
                                     GetText(first + 1)};
    constexpr int Shares[Columns] = {30, 22, 24, 24};
    QList<TouchTable::Column> columns;
    for (int i = 0; i < Columns; ++i)
        columns += {titles[i], Shares[i]};
    ui_->tblDifferences->setColumns(columns, IsScaled() ? CurrentScreenFactors().vertical : 1);
    ui_->lblSide_0->setText(titles[2]);
    ui_->lblSide_1->setText(titles[3]);
}

void wSiteCompare::ShowRestore() {
    const BackupFile::Manifest& manifest = RestoreRun::Proposed()->manifest;
    ui_->lblTitle->setText(GetText(RestoreTitle));
    SetColumns(HereAndBackup);
    // Nothing is chosen here: the words take the place of the buttons as well.
    for (int side = 0; side < Sides; ++side) {
        QWidget* button = Control(QStringLiteral("imgPresent"), side);
        QWidget* words = Control(QStringLiteral("lblSite"), side);
        button->hide();
        words->setGeometry(words->geometry().united(button->geometry()));
    }
    ui_->imgRestore->show();
    ui_->lblSite_0->setCaption(FilePicker::SiteName(LastUsed()));
    ui_->lblSite_1->setCaption(
        GetText(BackupName)
            .replace(QStringLiteral("$1"), manifest.DateText())
            .replace(QStringLiteral("$2"), manifest.machine) +
        (manifest.site.isEmpty() ? QString() : QStringLiteral(", ") + manifest.site));
    Present(RestoreRun::Differences());
}

void wSiteCompare::ShowSides() {
    for (int side = 0; side < Sides; ++side) {
        const Side& chosen = sides_[size_t(side)];
        Control<ValueLabel>(QStringLiteral("lblSite"), side)
            ->setCaption(chosen.present
                             ? GetText(PresentSite).replace(u'$', FilePicker::SiteName(LastUsed()))
                         : chosen.path.isEmpty() ? GetText(TouchToChoose)
                                                 : chosen.path);
    }
    CompareSides();
}

void wSiteCompare::CompareSides() {
    differences_.clear();
    ui_->tblDifferences->setRows({});
    ui_->imgSave->setEnabled(false);
    ui_->lblCount->setText(QString());
    ui_->lblWhole->setText(GetText(ChooseTwo));
    ConfigClass files[Sides];
    const ConfigClass* sites[Sides] = {};
    for (int side = 0; side < Sides; ++side) {
        const Side& chosen = sides_[size_t(side)];
        if (!chosen.IsChosen())
            return;
        sites[side] = chosen.present ? &Global::Configuration() : &files[side];
        const qint32 result = chosen.present ? 0 : files[side].Read(chosen.path);
        if (result >= 1) {
            ui_->lblWhole->setText(chosen.path + u'\n' + GetText(result));
            return;
        }
    }
    Present(CompareSites(*sites[0], *sites[1]));
}

/// A group and a part are named once, ahead of all that differs there.
void wSiteCompare::Present(QList<SiteDifference> differences) {
    differences_ = std::move(differences);
    QList<TouchTable::Row> rows;
    QList<int> heads;
    const auto add = [&](const QStringList& cells, int index, const QString& picture = {}) {
        rows += {cells,
                 index < 0 ? QString() : QString::number(index),
                 picture,
                 {QString::number(rows.size())}};
    };
    for (int i = 0; i < differences_.size(); ++i) {
        const SiteDifference& one = differences_[i];
        const bool newGroup = i == 0 || one.group != differences_[i - 1].group;
        if (newGroup) {
            heads += int(rows.size());
            add({one.group}, -1, one.isPanel ? Panels : Contents);
        }
        const bool newPart = newGroup || one.part != differences_[i - 1].part;
        add({newPart ? one.part : QString(), one.field, one.first.simplified(),
             one.second.simplified()},
            i);
    }
    ui_->tblDifferences->clearSpans();
    ui_->tblDifferences->setRows(rows);
    for (const int head : heads)
        ui_->tblDifferences->setSpan(head, 0, 1, Columns);
    ui_->imgSave->setEnabled(true);
    const qsizetype count = differences_.size();
    ui_->lblCount->setText(count == 0 ? GetText(NoDifference)
                                      : GetText(count == 1 ? OneDifference : Differences)
                                            .replace(u'$', QString::number(count)));
    ui_->lblWhole->setText(QString());
}

/// What the cells cut.
void wSiteCompare::ShowWhole() {
    const QString tag = ui_->tblDifferences->CurrentTag();
    if (tag.isEmpty() || tag.toInt() >= differences_.size())
        return;
    const SiteDifference& one = differences_[tag.toInt()];
    QStringList place{one.group, one.part, one.field};
    place.removeAll(QString());
    ui_->lblWhole->setText(place.join(QStringLiteral(", ")) + u'\n' + one.first.simplified() +
                           QStringLiteral("  >  ") + one.second.simplified());
}

void wSiteCompare::lblSite_Click(int side) {
    if (RestoreRun::Proposed() != nullptr)
        return;
    const QPointer<wSiteCompare> self(this);
    const QString last =
        sides_[size_t(side)].path.isEmpty() ? LastUsed() : sides_[size_t(side)].path;
    const QString path = FilePicker::Open(FilePicker::Folder(last), FilePicker::FileName(last),
                                          GetText(SiteFilter, true));
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    sides_[size_t(side)] = {false, path};
    ShowSides();
}

void wSiteCompare::imgPresent_Click(int side) {
    sides_[size_t(side)] = {true, QString()};
    ShowSides();
}

void wSiteCompare::imgNavig_Click(int index) {
    if (index == ToMenu)
        CloseRequested();
    else if (index == Help)
        ShowHelp();
}

/// As it was at the touch, however long the name takes.
void wSiteCompare::imgSave_Click() {
    ReportTable table;
    table.title = ui_->lblTitle->text();
    for (const QString& title :
         {GetText(PlaceColumn), QString(), GetText(SettingColumn),
          ui_->lblSide_0->text() + QStringLiteral(": ") + ui_->lblSite_0->Caption(),
          ui_->lblSide_1->text() + QStringLiteral(": ") + ui_->lblSite_1->Caption()})
        table.columns += {title, 1, false};
    for (const SiteDifference& one : differences_)
        table.rows += QStringList{one.group, one.part, one.field, one.first, one.second};
    const QPointer<wSiteCompare> self(this);
    const QString path = FilePicker::SaveAs(
        FirstStick(), QStringLiteral("Comparison-") + DateTimes::FileDate(DateTimes::Now()),
        GetText(TableFilter, true));
    if (path.isEmpty())
        return;
    platform::ReplaceFile(path, ReportText::Csv({table}));
    if (IsLoaded(self.data()))
        ui_->lblWhole->setText(GetText(Saved).replace(u'$', path));
}

void wSiteCompare::imgRestore_Click() {
    const QPointer<wSiteCompare> self(this);
    const int answer =
        Message(GetText(RestoreQuestion), Messages::Question | Messages::YesNoCancel);
    if (!IsLoaded(self.data()) || (answer != Messages::Yes && answer != Messages::No))
        return;
    const QString made = RestoreRun::Proposed()->manifest.DateText();
    try {
        RestoreRun::Run(answer == Messages::No);
    } catch (const platform::RunTimeError& error) {
        const bool stillWaits = RestoreRun::Proposed() != nullptr;
        Message(GetText(stillWaits ? NothingChanged : NotFinished)
                    .replace(u'$', ErrorHandling::RunTimeText(error.Number())),
                Messages::Critical);
        if (!stillWaits && IsLoaded(self.data()))
            CloseRequested();
        return;
    }
    Message(GetText(Restored).replace(u'$', made), Messages::Information);
    if (IsLoaded(self.data()))
        CloseRequested();
}

void wSiteCompare::Leave(const QString& form) {
    Forms::Show(form);
    Unload();
}

void wSiteCompare::CloseRequested() {
    Leave(FormNames::wMain);
}

void wSiteCompare::Form_Unload() {
    RestoreRun::Drop();
}
