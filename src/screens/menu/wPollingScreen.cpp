#include "screens/menu/wPollingScreen.h"

#include "bus/wPolling.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "screens/menu/BusConfig.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/Theme.h"
#include "screens/touch/TouchImage.h"
#include "ui_wPollingScreen.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <QWindowStateChangeEvent>

namespace {

const QString BusConfig = QStringLiteral("lblBusConfig");

/// The 65 rows of the grid: its heading and one for each panel.
constexpr int RowCount = wPolling::PanelCount + 1;
constexpr int LongStep = 10;
constexpr int RowHeight = 28;
constexpr int NumberWidth = 56;

QTableWidgetItem* Cell(const QString& text, Qt::Alignment alignment) {
    auto* cell = new QTableWidgetItem(text);
    cell->setTextAlignment(alignment | Qt::AlignVCenter);
    return cell;
}

} // namespace

wPollingScreen::wPollingScreen()
    : ScreenForm(FormNames::wPolling)
    , ui_(std::make_unique<Ui::wPollingScreen>()) {
    ui_->setupUi(this);
    FillGrid();
    OmbrerTexte(QStringLiteral("lblLabels"), 2, 2);
    Prepare();
    FitGrid();
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    OnClick(QStringLiteral("imgStopRun"), [](int index) {
        if (Polling() != nullptr)
            Polling()->setRun(index == 1);
    });
    OnClick(QStringLiteral("imgNavig"), [this](int) { Hide(); });
    OnClick(ui_->imgReinit, [] {
        if (Polling() != nullptr)
            Polling()->ReinitComm();
    });
    ListenToEngine();
    ShowRun();
}

wPollingScreen::~wPollingScreen() = default;

void wPollingScreen::ListenToEngine() {
    wPolling* engine = Polling();
    if (engine == nullptr)
        return;
    connect(engine, &wPolling::RoundDone, this, &wPollingScreen::ShowRound);
    connect(engine, &wPolling::RunChanged, this, &wPollingScreen::ShowRun);
    connect(engine, &wPolling::LinkChanged, this, &wPollingScreen::ShowLink);
}

/// The heading is row 0 of the 65 and stays in sight as the grid's header.
void wPollingScreen::FillGrid() {
    QTableWidget* grid = ui_->grdErrors;
    grid->setRowCount(RowCount - 1);
    grid->setColumnCount(2);
    grid->setHorizontalHeaderItem(0, Cell(QStringLiteral("N°"), Qt::AlignHCenter));
    grid->setHorizontalHeaderItem(
        1, Cell(QChar(0xA0) + QStringLiteral("N1     N2    N3    Next Poll"), Qt::AlignLeft));
    for (int panel = 1; panel < RowCount; ++panel) {
        grid->setItem(panel - 1, 0, Cell(Bytes::Padded(panel, 2), Qt::AlignHCenter));
        grid->setItem(panel - 1, 1, Cell(QString(), Qt::AlignLeft));
    }
    grid->verticalHeader()->hide();
    grid->verticalHeader()->setMinimumSectionSize(1);
    grid->verticalHeader()->setDefaultSectionSize(RowHeight);
    grid->horizontalHeader()->setSectionsClickable(false);
    grid->horizontalHeader()->setStretchLastSection(true);
    grid->setColumnWidth(0, NumberWidth);
    grid->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    grid->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionMode(QAbstractItemView::NoSelection);
    grid->setFocusPolicy(Qt::NoFocus);
}

/// The counters stand below their heading only in one and the same fixed-pitch font.
void wPollingScreen::FitGrid() {
    for (int column = 0; column < ui_->grdErrors->columnCount(); ++column)
        ui_->grdErrors->horizontalHeaderItem(column)->setFont(ui_->grdErrors->font());
}

int wPollingScreen::TopRow() const {
    return ui_->grdErrors->verticalScrollBar()->value() + 1;
}

void wPollingScreen::setTopRow(int row) {
    ui_->grdErrors->verticalScrollBar()->setValue(row - 1);
}

void wPollingScreen::imgControl_Click(int index) {
    QScrollBar* bar = ui_->grdErrors->verticalScrollBar();
    const int last = RowCount - 1;
    switch (index) {
    case 0:
        return setTopRow(Bytes::Greater(1, TopRow() - LongStep));
    case 1:
        return setTopRow(Bytes::Greater(1, TopRow() - 1));
    case 2:
        return setTopRow(Bytes::Less(last, TopRow() + 1));
    case 3:
        return setTopRow(Bytes::Less(last, TopRow() + LongStep));
    case 4:
        return bar->triggerAction(QAbstractSlider::SliderPageStepSub);
    case 5:
        return bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
    case 6:
        return bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    case 7:
        return bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
    default:
        return;
    }
}

/// The screen lives through changes of the language.
void wPollingScreen::Form_Activate() {
    Nationality();
    for (int panel = 1; panel < RowCount; ++panel)
        ShowRow(panel);
    ShowLink();
    ShowRun();
}

void wPollingScreen::ShowLink() {
    if (Polling() == nullptr)
        return;
    int label = FirstBusConfigLabel;
    for (const QString& text : BusConfigTexts(Polling()->CommBus()))
        SetCaption(BusConfig, label++, text);
}

void wPollingScreen::ShowRun() {
    const bool on = Polling() != nullptr && Polling()->Run();
    ui_->imgStopRun_0->setVisible(on);
    ui_->imgStopRun_1->setVisible(!on);
}

void wPollingScreen::ShowRow(int panel) {
    if (Polling() == nullptr || panel < 1 || panel >= RowCount)
        return;
    ui_->grdErrors->item(panel - 1, 1)->setText(Polling()->ErrorText(panel));
}

void wPollingScreen::ShowRound(int panel) {
    if (!Visible())
        return;
    ShowRow(panel);
    if (Polling()->PolledPanel() > 0)
        ui_->lblPanel->setText(QString::number(Polling()->PolledPanel()));
    ui_->lblTime->setText(Polling()->LastRound());
}

void wPollingScreen::Form_Unload() {
    if (Polling() == nullptr)
        return;
    Polling()->Form_QueryUnload(platform::UnloadMode::Code);
    Polling()->Form_Unload();
}

void wPollingScreen::changeEvent(QEvent* event) {
    ScreenForm::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
}
