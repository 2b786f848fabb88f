#include "screens/menu/dlgDefPwds.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/dialogs/dlgUserCodes.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/SwipeScroll.h"
#include "ui_dlgDefPwds.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <array>
#include <utility>

namespace {

enum Columns { NameColumn, CodeColumn, LevelColumn, ColumnCount };
enum Actions { Add = 0, Change = 1, Delete = 2, Up = 3, Down = 4 };
enum Buttons { CancelButton = 0, SaveButton = 1 };

/// Share of each column in the width of the table: name, code, level.
constexpr std::array<int, ColumnCount> ColumnShares{2850, 2130, 930};
constexpr std::array<int, ColumnCount> ColumnTitles{612012, 612013, 612014};
constexpr int RowHeight = 48;
constexpr int HeaderMargin = 16;
/// Room beside the columns for the scroll bar and the frame.
constexpr int BesideColumns = 24;

} // namespace

/// What an alarm interrupted, and the level of whoever did it.
struct dlgDefPwds::Memory {
    KeptEdit<Draft> edit;
    int level = 0;
};

dlgDefPwds::Memory& dlgDefPwds::Kept() {
    static Memory memory;
    return memory;
}

dlgDefPwds::dlgDefPwds()
    : ScreenForm(FormNames::dlgDefPwds, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgDefPwds>())
    , level_(Global::Get().userLevel) {
    ui_->setupUi(this);
    Form_Load();
    FillGrid();
    Prepare();
    QHeaderView& header = *ui_->grdUsers->horizontalHeader();
    header.setFont(ui_->grdUsers->font());
    // A head takes the font of its items alone under a style sheet.
    for (int column = 0; column < ColumnCount; ++column)
        ui_->grdUsers->horizontalHeaderItem(column)->setFont(ui_->grdUsers->font());
    header.setFixedHeight(QFontMetrics(ui_->grdUsers->font()).lineSpacing() + HeaderMargin);
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    OnClick(QStringLiteral("cmdBoutons"), [this](int index) { cmdBoutons_Click(index); });
    connect(ui_->grdUsers, &QTableWidget::currentCellChanged, this, [this] { ShowActions(); });
    ShowActions();
}

dlgDefPwds::~dlgDefPwds() = default;

void dlgDefPwds::Form_Load() {
    QTableWidget& grid = *ui_->grdUsers;
    grid.setColumnCount(ColumnCount);
    const int room = grid.width() - BesideColumns;
    for (int column = 0; column < ColumnCount; ++column) {
        auto* title = new QTableWidgetItem(GetText(ColumnTitles[size_t(column)]));
        title->setTextAlignment(column == LevelColumn ? Qt::AlignCenter
                                                      : Qt::AlignLeft | Qt::AlignVCenter);
        grid.setHorizontalHeaderItem(column, title);
        grid.setColumnWidth(column, room * ColumnShares[size_t(column)] /
                                        (ColumnShares[0] + ColumnShares[1] + ColumnShares[2]));
    }
    grid.horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid.horizontalHeader()->setHighlightSections(false);
    grid.verticalHeader()->hide();
    grid.verticalHeader()->setDefaultSectionSize(RowHeight);
    grid.setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid.setSelectionBehavior(QAbstractItemView::SelectRows);
    grid.setSelectionMode(QAbstractItemView::SingleSelection);
    grid.setTabKeyNavigation(false);
    new SwipeScroll(grid);
}

QList<dlgDefPwds::User> dlgDefPwds::OfSite() {
    const ConfigClass& site = Global::Configuration();
    QList<User> users;
    for (int i = 1; i <= site.UserCount(); ++i)
        users += {site.UserName(i), site.UserPwd(i), site.UserLevel(i), i};
    return users;
}

void dlgDefPwds::FillGrid() {
    QTableWidget& grid = *ui_->grdUsers;
    const bool guarded = IsGuarded();
    Draft draft{OfSite(), std::nullopt};
    if (!guarded || level_ >= Kept().level) {
        const auto kept = Kept().edit.Take(draft);
        ui_->lblKept->setVisible(kept.has_value());
        draft = kept.value_or(draft);
    }
    keptEntry_ = draft.entry;
    const QList<User>& users = draft.users;
    grid.setRowCount(int(users.size()));
    for (int row = 0; row < grid.rowCount(); ++row) {
        WriteRow(row, users[row]);
        if (guarded && users[row].level > level_)
            grid.hideRow(row);
        else if (grid.currentRow() < 0 || (keptEntry_ && keptEntry_->original == users[row]))
            grid.setCurrentCell(row, NameColumn);
    }
}

dlgDefPwds::User dlgDefPwds::UserOf(int row) const {
    const QTableWidget& grid = *ui_->grdUsers;
    return {grid.item(row, NameColumn)->text(), grid.item(row, CodeColumn)->text(),
            Bytes::LongVal(grid.item(row, LevelColumn)->text()),
            grid.item(row, NameColumn)->data(Qt::UserRole).toInt()};
}

void dlgDefPwds::WriteRow(int row, const User& user) {
    QTableWidget& grid = *ui_->grdUsers;
    const std::array<QString, ColumnCount> texts{user.name, user.code, QString::number(user.level)};
    for (int column = 0; column < ColumnCount; ++column) {
        auto* item = new QTableWidgetItem(texts[size_t(column)]);
        item->setTextAlignment(column == LevelColumn ? Qt::AlignCenter
                                                     : Qt::AlignLeft | Qt::AlignVCenter);
        if (column == NameColumn)
            item->setData(Qt::UserRole, user.number);
        grid.setItem(row, column, item);
    }
}

/// A user who can't be seen can't be changed or deleted. An empty table has nobody to guard.
void dlgDefPwds::ShowActions() {
    const QTableWidget& grid = *ui_->grdUsers;
    const int row = grid.currentRow();
    const bool shown = row < 0 ? grid.rowCount() == 0 : !grid.isRowHidden(row);
    for (const int index : {Change, Delete})
        Control(QStringLiteral("imgControl"), index)->setVisible(shown);
}

void dlgDefPwds::imgControl_Click(int index) {
    switch (index) {
    case Add:
        AddUser();
        break;
    case Change:
        ChangeUser();
        break;
    case Delete:
        DeleteUser();
        break;
    case Up:
        SendKey(Qt::Key_Up);
        break;
    case Down:
        SendKey(Qt::Key_Down);
        break;
    default:
        break;
    }
}

void dlgDefPwds::AddUser() {
    const QPointer<dlgDefPwds> self(this);
    const std::optional<User> entered = Edit({});
    if (!self || !entered)
        return;
    QTableWidget& grid = *ui_->grdUsers;
    const int row = grid.rowCount();
    grid.insertRow(row);
    WriteRow(row, *entered);
    grid.setCurrentCell(row, NameColumn);
}

void dlgDefPwds::ChangeUser() {
    QTableWidget& grid = *ui_->grdUsers;
    const int row = grid.currentRow();
    if (grid.rowCount() == 0 || row < 0) {
        QApplication::beep();
        return;
    }
    const QPointer<dlgDefPwds> self(this);
    const std::optional<User> entered = Edit(UserOf(row));
    if (self && entered)
        WriteRow(row, *entered);
}

void dlgDefPwds::DeleteUser() {
    QTableWidget& grid = *ui_->grdUsers;
    const int row = grid.currentRow();
    if (row < 0)
        return;
    const QPointer<dlgDefPwds> self(this);
    if (Message(GetText(30007), Messages::OkCancel) == Messages::Ok && self) {
        grid.removeRow(row);
        ShowActions();
    }
}

void dlgDefPwds::SendKey(int key) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(ui_->grdUsers, &press);
}

std::optional<dlgDefPwds::User> dlgDefPwds::Edit(const User& user) {
    const auto prepare = [&](dlgUserCodes& dialog) {
        const bool kept = keptEntry_ && keptEntry_->original == user;
        const User first = kept ? std::exchange(keptEntry_, std::nullopt)->entered : user;
        dialog.setUserName(first.name);
        dialog.setUserPwd(first.code);
        dialog.setUserLevel(first.level);
        if (kept)
            dialog.ShowKept();
        form_ = &dialog;
        formOriginal_ = user;
    };
    const auto read = [&](const dlgUserCodes& dialog) {
        return dialog.Ok() ? std::optional(UserIn(dialog, user.number)) : std::nullopt;
    };
    const std::optional<User> entered =
        RunDialog(new dlgUserCodes, prepare, read).value_or(std::nullopt);
    return entered && !IsDouble(*entered) ? entered : std::nullopt;
}

dlgDefPwds::User dlgDefPwds::UserIn(const dlgUserCodes& form, int number) {
    return {form.UserName(), form.UserPwd(), form.UserLevel(), number};
}

std::optional<dlgDefPwds::Entry> dlgDefPwds::OpenEntry() const {
    if (!IsLoaded(form_))
        return keptEntry_;
    const Entry entry{formOriginal_, UserIn(*form_, formOriginal_.number)};
    return entry.entered == entry.original ? keptEntry_ : entry;
}

/// Compared with what the site holds, in capitals. Users that aren't in the site yet don't count.
bool dlgDefPwds::IsDouble(const User& user) {
    const ConfigClass& site = Global::Configuration();
    for (int i = 1; i <= site.UserCount(); ++i) {
        if (i == user.number)
            continue;
        const bool sameName = site.UserName(i).toUpper() == user.name.toUpper();
        if (!sameName && site.UserPwd(i).toUpper() != user.code.toUpper())
            continue;
        Message(GetText(sameName ? 640100 : 640101), Messages::Critical);
        return true;
    }
    return false;
}

void dlgDefPwds::cmdBoutons_Click(int index) {
    if (index == SaveButton)
        Save();
    Close();
}

QList<dlgDefPwds::User> dlgDefPwds::Users() const {
    QList<User> users;
    for (int row = 0; row < ui_->grdUsers->rowCount(); ++row)
        users += UserOf(row);
    return users;
}

void dlgDefPwds::Save() {
    ConfigClass& site = Global::Configuration();
    const QList<User> users = Users();
    site.setUserCount(qint16(users.size()));
    for (int i = 1; i <= users.size(); ++i) {
        site.setUserName(i, users[i - 1].name);
        site.setUserPwd(i, users[i - 1].code);
        site.setUserLevel(i, users[i - 1].level);
    }
}

void dlgDefPwds::Form_Unload() {
    const Draft original{OfSite(), std::nullopt};
    const Draft edited{Users(), OpenEntry()};
    if (left_ || edited == original)
        return;
    Kept().edit.Keep(original, edited);
    Kept().level = level_;
}

void dlgDefPwds::Close() {
    left_ = true;
    Unload();
    if (NbInstances(FormNames::wMain) > 0)
        ReturnToMenu(*this, int(MenuTile::System));
}
