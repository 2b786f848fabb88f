#include "screens/menu/wMain.h"

#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/Folders.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/TouchImage.h"
#include "ui_wMain.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QListWidget>
#include <QMessageBox>

namespace {

const QString Menu = QStringLiteral("imgMenu");
const QString MenuName = QStringLiteral("lblMenu");
const QString Labels = QStringLiteral("lblLabels");
const QString LanguageName = QStringLiteral("lblLanguage");
const QString LoginName = QStringLiteral("lblLogin");
const QString Files = QStringLiteral("Files");
const QString General = QStringLiteral("General");

constexpr int VersionLabel = 2;
constexpr int TileCount = 6;
constexpr int ShadowOffset = 2;
/// Share of the scaled font size that the labels keep.
constexpr double ScaledLabelFont = 0.9;

QString LastUsed() {
    return IniRead(Files, QStringLiteral("LastUsed"), QString());
}

/// A machine that was never set up.
bool HasNoPanels() {
    const ConfigClass& site = Global::Configuration();
    for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
        if (site.Panel(number).Model() != Models::None)
            return false;
    }
    return true;
}

/// The help of a language beside the executable; empty when there is none.
QString HelpFile(const QString& language) {
    const QString path = platform::ProgramFile(platform::ExecutableName() + u'-' +
                                               language.left(2).toLower() + QStringLiteral(".chm"));
    return QFileInfo::exists(path) ? path : QString();
}

} // namespace

wMain::wMain()
    : ScreenForm(FormNames::wMain)
    , ui_(std::make_unique<Ui::wMain>()) {
    ui_->setupUi(this);
    lstLanguage_ = new QListWidget(this);
    lstLanguage_->setObjectName(QStringLiteral("lstLanguage"));
    lstLanguage_->hide();
    ShowVersion();
    for (const QString& array : {Labels, MenuName, LanguageName, LoginName})
        OmbrerTexte(array, ShadowOffset, ShadowOffset);
    for (const int index : Indices(Menu))
        Control(Menu, index)->lower();
    FillLanguages();
    Prepare();
    OnKey(Qt::Key_F1, [] { ShowHelp(); });
    OnKey(Qt::Key_F12, [] { StartScreenKeyboard(); });
    if (IsScaled())
        ShrinkLabels();
    AligneMenus();
    ShowLogin();
    for (const QString& array : {Menu, MenuName})
        Control(array, int(MenuTile::Factory))->setEnabled(false);
    OnClick(Menu, [this](int index) { imgMenu_Click(index); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(LanguageName, [this](int) { NextLanguage(); });
    OnClick(ui_->imgLanguage, [this] { NextLanguage(); });
    OnClick(ui_->imgHelp, [] { ShowHelp(); });
    OnClick(ui_->imgRestore, [this] { imgRestore_Click(); });
    OnClick(LoginName, [this](int) { AskPassword(this); });
    if (Polling() != nullptr)
        connect(Polling(), &wPolling::UserChanged, this, &wMain::ShowLogin);
    Show();
    repaint();
    ShowFileName(FilePicker::SiteName(LastUsed()));
    Forms::UnloadAllBut({FormNames::wPolling, FormNames::wMain});
    if (Forms::Form* polling = Forms::Find(FormNames::wPolling))
        polling->Hide();
}

wMain::~wMain() = default;

void wMain::ShowVersion() {
    const QFileInfo executable(QCoreApplication::applicationFilePath());
    SetCaption(Control(Labels, VersionLabel),
               QStringLiteral("V.%1.%2.%3 - %4")
                   .arg(Global::VersionMajor)
                   .arg(Global::VersionMinor)
                   .arg(Global::VersionRevision)
                   .arg(executable.lastModified().toString(DateTimes::ShortDatePattern())));
}

void wMain::FillLanguages() {
    lstLanguage_->clear();
    for (int i = 0; !GetLanguage(i).isEmpty(); ++i) {
        auto* item = new QListWidgetItem(GetLanguage(i), lstLanguage_);
        item->setData(Qt::UserRole, i);
        if (i == Global::Get().language) {
            lstLanguage_->setCurrentItem(item);
            lstLanguage_Click();
        }
    }
}

void wMain::NextLanguage() {
    if (lstLanguage_->count() == 0)
        return;
    const QString shown = Control<QLabel>(LanguageName, 0)->text();
    int found = -1;
    for (int i = 0; i < lstLanguage_->count(); ++i) {
        if (lstLanguage_->item(i)->text() == shown)
            found = i;
    }
    lstLanguage_->setCurrentRow((found + 1) % lstLanguage_->count());
    lstLanguage_Click();
}

void wMain::lstLanguage_Click() {
    const QListWidgetItem* chosen = lstLanguage_->currentItem();
    if (chosen == nullptr)
        return;
    SetCaption(LanguageName, 0, chosen->text());
    lstLanguage_->hide();
    ui_->imgLanguage->show();
    Global::Get().language = qint16(chosen->data(Qt::UserRole).toInt());
    Global::Get().text10100 = GetText(10100);
    const QString help = HelpFile(chosen->text());
    Global::Get().helpFile = help.isEmpty() ? HelpFile(GetLanguage(0)) : help;
    Nationality();
    IniWrite(General, QStringLiteral("Language"), QString::number(Global::Get().language));
}

void wMain::Nationality() {
    ScreenForm::Nationality();
    AligneMenus();
    ShowFileName(FilePicker::SiteName(LastUsed()));
    Global::ReadMarks();
}

/// A name is as wide as its word, and the words change with the language.
void wMain::AligneMenus() {
    const double scale = IsScaled() ? CurrentScreenFactors().horizontal : 1;
    const int offset = qRound(ShadowOffset * scale);
    for (int i = 0; i < TileCount; ++i) {
        const QRect tile = Control(Menu, i)->geometry();
        auto* name = Control<QLabel>(MenuName, i);
        auto* shadow = Control<QLabel>(MenuName, i + TileCount);
        const int width = qMin(name->sizeHint().width(), tile.width());
        const QRect area(tile.center().x() - width / 2, name->y(), width, name->height());
        name->setGeometry(area);
        shadow->setGeometry(area.translated(offset, offset));
    }
}

void wMain::ShowFileName(const QString& name) {
    QLabel* label = ui_->lblFileName;
    const int room = label->contentsRect().width() - 2 * label->fontMetrics().averageCharWidth();
    label->setText(label->fontMetrics().elidedText(name, Qt::ElideMiddle, room));
}

void wMain::ShowLogin() {
    SetCaption(LoginName, 0, QString::number(Global::Get().userLevel));
}

void wMain::ShrinkLabels() {
    for (QLabel* label : findChildren<QLabel*>()) {
        QFont font = label->font();
        if (font.pixelSize() > 0) {
            font.setPixelSize(qMax(1, qRound(font.pixelSize() * ScaledLabelFont)));
            label->setFont(font);
        }
    }
}

void wMain::ShowModified() {
    ui_->lblModified->setVisible(Global::Configuration().Modified());
    ui_->imgRestore->setVisible(HasNoPanels());
}

void wMain::Form_Activate() {
    ShowModified();
}

void wMain::Form_Unload() {
    if (failure_)
        failure_->reject();
}
