#include "screens/dialogs/dlgFilePicker.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "platform/CodePage.h"
#include "platform/Folders.h"
#include "platform/Volumes.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/touch/BehindRound.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/Theme.h"
#include "screens/touch/TouchList.h"
#include "ui_dlgFilePicker.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <algorithm>
#include <array>

using ErrorHandling::Guard;

namespace {

enum Words {
    OpenTitle = 611001,
    SaveTitle,
    FolderTitle,
    NameTitle,
    NewFolderTitle,
    ThisComputer,
    UnreadableFolder,
    MissingFile,
    ReadOnlyFolder,
    ReplaceFile,
    WrongName,
    NoNewFolder
};
constexpr int ForeignLetters = 714062;

constexpr int KindRole = Qt::UserRole;
constexpr int PathRole = Qt::UserRole + 1;
constexpr int IconSize = 32;
/// Longest name of a file, bytes, as the file systems of panel PCs and sticks have it.
constexpr int LongestName = 255;

bool IsReadable(const QString& folder) {
    const QFileInfo info(folder);
    return info.isDir() && info.isReadable() && info.isExecutable();
}

/// The settings keep a path in the code page of all files; another would be lost.
bool IsStorable(const QString& path) {
    if (platform::FitsCodePage(path))
        return true;
    Message(GetText(ForeignLetters), Messages::Critical);
    return false;
}

/// True for a name that panel PCs and sticks alike can hold.
bool IsName(const QString& name) {
    static const QString forbidden = QStringLiteral("/\\:*?\"<>|");
    const bool clean = std::none_of(name.begin(), name.end(), [](QChar c) {
        return c.category() == QChar::Other_Control || forbidden.contains(c);
    });
    return clean && !name.isEmpty() && !name.startsWith(u'.') &&
           name.toUtf8().size() <= LongestName;
}

/// A text cut in its middle to what a label or a button can show.
QString Fitted(const QWidget& control, const QString& text) {
    const int padding = 2 * control.fontMetrics().averageCharWidth();
    return control.fontMetrics().elidedText(text, Qt::ElideMiddle, control.width() - padding);
}

const char* PictureOf(int kind) {
    static constexpr std::array pictures{"volume", "computer", "folder", "file"};
    return pictures[size_t(kind)];
}

int TitleOf(dlgFilePicker::Mode mode) {
    switch (mode) {
    case dlgFilePicker::Mode::Open:
        return OpenTitle;
    case dlgFilePicker::Mode::Save:
        return SaveTitle;
    default:
        return FolderTitle;
    }
}

} // namespace

dlgFilePicker::dlgFilePicker(Mode mode)
    : ScreenForm(FormNames::dlgFilePicker, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgFilePicker>())
    , mode_(mode)
    , folder_(platform::ApplicationFolder()) {
    ui_->setupUi(this);
    Prepare();
    OnKey(Qt::Key_Return, [this] { Control_Click(Confirm); });
    OnKey(Qt::Key_Escape, [this] { Control_Click(Cancel); });
    Arrange();
    ui_->lstFiles->viewport()->installEventFilter(this);
    // The list itself changes by a tap on it, so it must be through with the tap first. What waits
    // for that is no input any more, which a round of the bus would keep out.
    connect(ui_->lstFiles, &QListWidget::itemClicked, this, [this](const QListWidgetItem* item) {
        const Row kind = Row(item->data(KindRole).toInt());
        QMetaObject::invokeMethod(
            this,
            [this, kind, path = item->data(PathRole).toString()] {
                RunBehindRound(this, [=, this] {
                    const Operator::Acting acting;
                    Guard("dlgFilePicker.lstFiles_Click", [&] { TapRow(kind, path); });
                });
            },
            Qt::QueuedConnection);
    });
    OnClick(ui_->imgFolderUp, [this] { Enter(QFileInfo(folder_).path()); });
    OnClick(ui_->imgNewFolder, [this] { MakeFolder(); });
    OnClick(ui_->imgName, [this] { TypeName(); });
    if (mode_ == Mode::Save)
        OnClick(ui_->lblName, [this] { TypeName(); });
    OnClick(ui_->cmdFilter, [this] { NextFilter(); });
    OnClick(QStringLiteral("imgControl"), [this](int index) { Control_Click(index); });
    setTitle(GetText(TitleOf(mode)));
    setFilter(QString());
}

dlgFilePicker::~dlgFilePicker() = default;

/// What a mode has no use for goes, and the list takes its room.
void dlgFilePicker::Arrange() {
    const double scale = IsScaled() ? CurrentScreenFactors().vertical : 1;
    MakeTouchList(*ui_->lstFiles, scale);
    ui_->lstFiles->setIconSize(QSize(qRound(IconSize * scale), qRound(IconSize * scale)));
    ui_->imgName->setVisible(mode_ == Mode::Save);
    ui_->imgNewFolder->setVisible(mode_ != Mode::Open);
    if (mode_ == Mode::Save)
        return;
    const QRect name = ui_->lblName->geometry();
    ui_->lblName->setGeometry(name.united(ui_->imgName->geometry()));
    if (mode_ == Mode::Open) {
        ui_->lblFolder->setGeometry(
            ui_->lblFolder->geometry().united(ui_->imgNewFolder->geometry()));
        return;
    }
    ui_->lblName->hide();
    QRect list = ui_->lstFiles->geometry();
    list.setBottom(name.bottom());
    ui_->lstFiles->setGeometry(list);
}

void dlgFilePicker::setTitle(const QString& title) {
    SetCaption(ui_->lblTitle, title);
}

void dlgFilePicker::setFilter(const QString& filter) {
    filters_.clear();
    filter_ = 0;
    const QStringList parts =
        QString(filter).replace(QLatin1String("\r\n"), QLatin1String("|")).split(u'|');
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        filters_.append({parts[i], parts[i + 1].split(u';', Qt::SkipEmptyParts)});
    ShowFilter();
    Fill();
}

void dlgFilePicker::setStart(const QString& folder, const QString& name) {
    folder_ = !folder.isEmpty() && IsReadable(folder) ? QDir(folder).absolutePath()
                                                      : platform::ApplicationFolder();
    const bool isThere = QFileInfo(QDir(folder_).filePath(name)).isFile();
    ShowName(mode_ == Mode::Save || isThere ? name : QString());
    Fill();
}

QStringList dlgFilePicker::Patterns() const {
    QStringList patterns = filters_.isEmpty() ? QStringList() : filters_[filter_].patterns;
    // Elsewhere this means every file, not every file with a point in its name.
    return patterns.replaceInStrings(QStringLiteral("*.*"), QStringLiteral("*"));
}

void dlgFilePicker::AddRow(Row kind, const QString& text, const QString& path) {
    const QString picture = QString::fromLatin1(PictureOf(int(kind)));
    const QIcon icon(Theme::Picture(picture, ui_->lstFiles->iconSize().height()));
    auto* item = new QListWidgetItem(icon, text, ui_->lstFiles);
    item->setData(KindRole, int(kind));
    item->setData(PathRole, path);
}

void dlgFilePicker::Fill() {
    ui_->lstFiles->clear();
    ui_->lblFolder->setText(Fitted(*ui_->lblFolder, folder_));
    ui_->imgFolderUp->setEnabled(!QDir(folder_).isRoot());
    for (const platform::Volume& volume : platform::RemovableVolumes()) {
        if (volume.path != folder_)
            AddRow(Row::Volume, volume.name, volume.path);
    }
    const QString home = platform::ApplicationFolder();
    if (home != folder_)
        AddRow(Row::Computer, GetText(ThisComputer), home);
    constexpr auto order = QDir::Name | QDir::IgnoreCase | QDir::LocaleAware;
    const QDir folder(folder_);
    for (const QFileInfo& info : folder.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, order))
        AddRow(Row::Folder, info.fileName(), info.filePath());
    if (mode_ == Mode::Folder)
        return;
    for (const QFileInfo& info : folder.entryInfoList(Patterns(), QDir::Files, order)) {
        AddRow(Row::File, info.fileName(), info.filePath());
        if (info.fileName() == name_)
            ui_->lstFiles->setCurrentRow(ui_->lstFiles->count() - 1);
    }
}

void dlgFilePicker::TapRow(Row kind, const QString& path) {
    if (kind == Row::File)
        ShowName(QFileInfo(path).fileName());
    else
        Enter(path);
}

void dlgFilePicker::Enter(const QString& folder) {
    if (!IsReadable(folder)) {
        const QPointer<dlgFilePicker> self(this);
        Message(GetText(UnreadableFolder), Messages::Critical);
        if (self)
            LeaveVanishedFolder();
        return;
    }
    folder_ = folder;
    if (mode_ == Mode::Open)
        ShowName(QString());
    Fill();
}

void dlgFilePicker::LeaveVanishedFolder() {
    if (!IsReadable(folder_))
        folder_ = platform::ApplicationFolder();
    if (mode_ == Mode::Open)
        ShowName(QString());
    Fill();
}

void dlgFilePicker::NextFilter() {
    if (filters_.isEmpty())
        return;
    filter_ = int((filter_ + 1) % filters_.size());
    ShowFilter();
    Fill();
}

void dlgFilePicker::ShowFilter() {
    const QString name = filters_.isEmpty() ? QString() : filters_[filter_].name;
    ui_->cmdFilter->setText(Fitted(*ui_->cmdFilter, name).replace(u'&', QLatin1String("&&")));
    ui_->cmdFilter->setEnabled(filters_.size() > 1);
    ui_->cmdFilter->setVisible(!filters_.isEmpty());
}

void dlgFilePicker::ShowName(const QString& name) {
    name_ = name;
    ui_->lblName->setText(Fitted(*ui_->lblName, name));
}

void dlgFilePicker::TypeName() {
    const QPointer<dlgFilePicker> self(this);
    const std::optional<QString> name = AskText(GetText(NameTitle), name_, LongestName);
    if (!self || !name)
        return;
    ShowName(name->trimmed());
    Fill();
}

void dlgFilePicker::MakeFolder() {
    const QPointer<dlgFilePicker> self(this);
    const std::optional<QString> typed = AskText(GetText(NewFolderTitle), QString(), LongestName);
    if (!self || !typed)
        return;
    const QString name = typed->trimmed();
    const QString path = QDir(folder_).filePath(name);
    if (!IsName(name))
        Message(GetText(WrongName), Messages::Critical);
    else if (!IsStorable(path))
        return;
    else if (!IsReadable(folder_) || !platform::MakeFolder(path))
        Message(GetText(NoNewFolder), Messages::Critical);
    else
        Enter(path);
}

void dlgFilePicker::Control_Click(int index) {
    if (index != Confirm) {
        Hide();
        return;
    }
    switch (mode_) {
    case Mode::Open:
        ChooseFile();
        break;
    case Mode::Save:
        ChooseTarget();
        break;
    default:
        ChooseFolder();
    }
}

void dlgFilePicker::ChooseFile() {
    if (name_.isEmpty())
        return;
    const QString path = QDir(folder_).filePath(name_);
    if (QFileInfo(path).isFile()) {
        if (IsStorable(path))
            Choose(path);
        return;
    }
    const QPointer<dlgFilePicker> self(this);
    Message(GetText(MissingFile), Messages::Critical);
    if (self)
        LeaveVanishedFolder();
}

QString dlgFilePicker::WithExtension(const QString& name) const {
    QString first;
    for (const QString& pattern : Patterns()) {
        const QString extension = pattern.mid(1);
        if (!pattern.startsWith(QLatin1String("*.")) || extension.contains(u'*'))
            continue;
        if (name.endsWith(extension, Qt::CaseInsensitive))
            return name;
        if (first.isEmpty())
            first = extension;
    }
    return name + first;
}

void dlgFilePicker::ChooseTarget() {
    const QPointer<dlgFilePicker> self(this);
    const QString name = WithExtension(name_);
    const QString path = QDir(folder_).filePath(name);
    if (!IsName(name_) || !IsName(name) || QFileInfo(path).isDir()) {
        Message(GetText(WrongName), Messages::Critical);
        return;
    }
    if (!IsStorable(path))
        return;
    const bool exists = QFileInfo::exists(path);
    if (!IsReadable(folder_) || !QFileInfo(exists ? path : folder_).isWritable()) {
        Message(GetText(ReadOnlyFolder), Messages::Critical);
        if (self)
            LeaveVanishedFolder();
        return;
    }
    if (exists) {
        const QString question = GetText(ReplaceFile).replace(u'$', name);
        if (Message(question, Messages::Warning | Messages::OkCancel) != Messages::Ok || !self)
            return;
    }
    Choose(path);
}

void dlgFilePicker::ChooseFolder() {
    if (!IsReadable(folder_))
        Enter(folder_);
    else if (IsStorable(folder_))
        Choose(folder_);
}

void dlgFilePicker::Choose(const QString& path) {
    path_ = path;
    Hide();
}

/// The second tap of two fast ones belongs to the row that was there for the first.
bool dlgFilePicker::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonDblClick && watched == ui_->lstFiles->viewport())
        return true;
    return ScreenForm::eventFilter(watched, event);
}
