#include "technician/wRehearsal.h"

#include "bus/ProgramEnd.h"
#include "bus/SimulatedPlant.h"
#include "config_screens/panels/PanelTile.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/dialogs/wHelp.h"
#include "screens/remote/Telecommande.h"
#include "screens/touch/Position.h"
#include "screens/touch/Theme.h"
#include "technician/FrontTiles.h"
#include "ui_wRehearsal.h"

#include <QFrame>
#include <QLabel>

namespace {

enum Navigation { Back = 0, PageBack = 1, PageOn = 2, Help = 7 };

const QString Navig = QStringLiteral("imgNavig");
const QString Tiles = QStringLiteral("imgPanneau");
const QString Channels = QStringLiteral("imgChannel");
const QString Choices = QStringLiteral("optContact");

constexpr int TilesAPage = 8;
constexpr QRect FirstTile{8, 58, 190, 70};
constexpr int PitchX = 198;
constexpr int PitchY = 76;

constexpr int ChannelCount = 12;
constexpr int ChannelsInRow = 4;
constexpr QRect FirstChannel{8, 254, 190, 58};
constexpr int ChannelPitchY = 64;
constexpr QRect Lamp{8, 9, 40, 40};
constexpr QRect WordsArea{56, 2, 130, 54};
constexpr int WordsPixels = 16;
constexpr int WordsLines = 2;

constexpr int SwitchOff = 718121;
constexpr int SwitchOn = 718122;
constexpr int OnlyShows = 718141;
constexpr int NothingPlayed = 718142;
constexpr int IsOffText = 718143;

/// Found again when an alarm has taken the screen away.
struct Choice {
    int panel = 0;
    SimulatedPlant::Contact contact = SimulatedPlant::Contact::Active;
};
Choice choice;

/// In the order of the buttons.
constexpr SimulatedPlant::Contact Contacts[] = {SimulatedPlant::Contact::Active,
                                                SimulatedPlant::Contact::Normal,
                                                SimulatedPlant::Contact::CableFault};

bool HasInputs(const PanelClass& panel) {
    return panel.Model() != Models::Q6200XT;
}

} // namespace

wRehearsal::wRehearsal()
    : ScreenForm(FormNames::wRehearsal)
    , ui_(std::make_unique<Ui::wRehearsal>()) {
    ui_->setupUi(this);
    MakeTiles();
    MakeChannels();
    Prepare();
    OnKey(Qt::Key_F1, [] { ShowHelp(); });
    OnClick(Navig, [this](int index) { imgNavig_Click(index); });
    OnClick(Tiles, [this](int index) { imgPanneau_Click(index); });
    OnClick(Channels, [this](int index) { imgChannel_Click(index); });
    OnClick(Choices, [this](int index) { optContact_Click(index); });
    OnClick(ui_->cmdModule, [this] { cmdModule_Click(); });
    OnClick(ui_->cmdAcknowledge, [] {
        if (SimulatedPlant* plant = SimulatedPlant::Current())
            plant->PressAcknowledge(choice.panel);
    });
    OnClick(ui_->cmdEnd, [] { EndRehearsal(); });
    const ConfigClass& site = Global::Configuration();
    for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
        if (site.Panel(number).Active() && site.Panel(number).Model() != Models::None)
            panels_ += number;
    }
    setPanel(panels_.contains(choice.panel) ? choice.panel : panels_.value(0));
    ShowChoice();
}

wRehearsal::~wRehearsal() = default;

void wRehearsal::MakeTiles() {
    PanelTile::MakePage(this, TilesAPage, FirstTile, PitchX, PitchY);
    shpSelection_ = new QFrame(this);
    shpSelection_->setObjectName(QStringLiteral("shpSelection"));
    shpSelection_->setStyleSheet(QStringLiteral("border: 3px solid #FFFFFF; border-radius: 8px;"));
    shpSelection_->setAttribute(Qt::WA_TransparentForMouseEvents);
}

void wRehearsal::MakeChannels() {
    for (int i = 0; i < ChannelCount; ++i) {
        auto* tile = new TouchImage(this);
        auto* lamp = new Voyant(tile);
        auto* words = new QLabel(tile);
        const QPoint offset(i % ChannelsInRow * PitchX, i / ChannelsInRow * ChannelPitchY);
        const auto place = [i](QWidget* part, const QString& array, const QRect& area) {
            part->setObjectName(array + u'_' + QString::number(i + 1));
            part->setGeometry(area);
        };
        place(tile, Channels, FirstChannel.translated(offset));
        place(lamp, QStringLiteral("lblVoyant"), Lamp);
        place(words, QStringLiteral("lblChannel"), WordsArea);
        words->setFont(Theme::Text(WordsPixels));
        for (QWidget* part : {static_cast<QWidget*>(lamp), static_cast<QWidget*>(words)})
            part->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
}

void wRehearsal::setPanel(int number) {
    choice.panel = number;
    ShowPage(qMax(0, int(panels_.indexOf(number))) / TilesAPage);
    ShowPanel();
}

void wRehearsal::ShowPage(int page) {
    page_ = page;
    const int pages = qMax(1, int(panels_.size() + TilesAPage - 1) / TilesAPage);
    EnableByPosition(Control(Navig, PageBack), Control(Navig, PageOn), page, pages);
    ui_->lblPage->setText(QStringLiteral("%1 / %2").arg(page + 1).arg(pages));
    shpSelection_->hide();
    for (int i = 0; i < TilesAPage; ++i) {
        const int number = panels_.value(page * TilesAPage + i);
        auto* tile = Control<PanelTile>(Tiles, i);
        tile->setVisible(number > 0);
        if (number == 0)
            continue;
        tile->setPanel(number, Global::Configuration().Panel(number));
        if (number != choice.panel)
            continue;
        shpSelection_->setGeometry(tile->geometry());
        shpSelection_->show();
        shpSelection_->raise();
    }
}

void wRehearsal::ShowPanel() {
    const SimulatedPlant* plant = SimulatedPlant::Current();
    const bool chosen = choice.panel > 0 && plant != nullptr;
    const PanelClass& panel = Global::Configuration().Panel(qMax(1, choice.panel));
    const bool wired = chosen && HasInputs(panel);
    const bool off = chosen && plant->IsOff(choice.panel);
    ui_->lblPanel->setText(chosen ? Bytes::Padded(choice.panel, 2) + QStringLiteral("  ") +
                                        ModuleName(panel.Model()) + QStringLiteral("  ") +
                                        panel.TitleLine().trimmed()
                                  : QString());
    ui_->lblState->setText(off ? GetText(IsOffText) : QString());
    ui_->lblNote->setVisible(!wired);
    ui_->lblNote->setText(GetText(chosen ? OnlyShows : NothingPlayed));
    ui_->cmdModule->setEnabled(chosen);
    ui_->cmdModule->setText(GetText(off ? SwitchOn : SwitchOff));
    ui_->cmdAcknowledge->setEnabled(chosen && !off);
    for (int channel = 1; channel <= ChannelCount; ++channel) {
        Control(Channels, channel)->setVisible(wired);
        if (wired)
            ShowChannel(channel, panel.Channel(channel).ScreenText());
    }
}

void wRehearsal::ShowChannel(int channel, const QString& text) {
    const SimulatedPlant& plant = *SimulatedPlant::Current();
    Control<Voyant>(QStringLiteral("lblVoyant"), channel)
        ->setState(qint16(plant.ContactOf(choice.panel, channel)), plant.IsOff(choice.panel));
    auto* words = Control<QLabel>(QStringLiteral("lblChannel"), channel);
    words->setText(FrontTiles::Broken(QString::number(channel) + QStringLiteral("  ") + text,
                                      words->fontMetrics(), words->width(), WordsLines));
}

void wRehearsal::ShowChoice() {
    for (const int index : Indices(Choices))
        Control<QAbstractButton>(Choices, index)->setChecked(Contacts[index] == choice.contact);
}

void wRehearsal::imgNavig_Click(int index) {
    switch (index) {
    case Back:
        Unload();
        break;
    case PageBack:
        ShowPage(page_ - 1);
        break;
    case PageOn:
        ShowPage(page_ + 1);
        break;
    case Help:
        ShowHelp();
        break;
    default:
        break;
    }
}

void wRehearsal::imgPanneau_Click(int index) {
    setPanel(panels_.value(page_ * TilesAPage + index));
}

void wRehearsal::imgChannel_Click(int index) {
    if (SimulatedPlant* plant = SimulatedPlant::Current())
        plant->setContact(choice.panel, index, choice.contact);
    ShowPanel();
}

void wRehearsal::optContact_Click(int index) {
    choice.contact = Contacts[index];
    ShowChoice();
}

void wRehearsal::cmdModule_Click() {
    if (SimulatedPlant* plant = SimulatedPlant::Current())
        plant->setOff(choice.panel, !plant->IsOff(choice.panel));
    ShowPanel();
}
