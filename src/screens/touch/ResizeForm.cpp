#include "screens/touch/ResizeForm.h"

#include "core/Global.h"
#include "core/Rehearsal.h"
#include "screens/touch/Theme.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QScreen>
#include <QTableView>
#include <QTreeView>
#include <QWidget>
#include <optional>

namespace {

std::optional<QSize> display;

/// Height of the strip that marks a rehearsal, at the design's size.
constexpr int StripHeight = 44;

constexpr double Shrink = 0.99;
constexpr double SmallestShrink = 0.5;

/// A control of the design, not a part that Qt puts inside one.
bool IsControl(const QWidget& widget) {
    return !widget.objectName().isEmpty() && !widget.objectName().startsWith(QLatin1String("qt_"));
}

/// Sizes come in whole pixels and may be rounded up, which would make a text wider than its
/// control: it shrinks until it lies below the goal.
void ScaleFont(QWidget& control, double factor) {
    QFont font = control.font();
    if (font.pixelSize() <= 0)
        return;
    const double goal = font.pixelSize() * factor;
    double k = 1;
    do {
        font.setPixelSize(qMax(1, qRound(goal * k)));
        k *= Shrink;
    } while (font.pixelSize() >= goal && k > SmallestShrink);
    control.setFont(font);
}

void ScaleColumns(QHeaderView& header, double factor) {
    for (int i = 0; i < header.count(); ++i)
        header.resizeSection(i, qRound(header.sectionSize(i) * factor));
}

void ScaleGrid(QWidget& control, const ScreenFactors& by) {
    if (auto* grid = qobject_cast<QTableView*>(&control)) {
        ScaleColumns(*grid->horizontalHeader(), by.horizontal);
        QHeaderView& rows = *grid->verticalHeader();
        rows.setDefaultSectionSize(qRound(rows.defaultSectionSize() * by.vertical));
    } else if (auto* list = qobject_cast<QTreeView*>(&control)) {
        ScaleColumns(*list->header(), by.horizontal);
    }
}

void ScaleControl(QWidget& control, const ScreenFactors& by) {
    if (auto* image = qobject_cast<QLabel*>(&control); image && !image->pixmap().isNull())
        image->setScaledContents(true);
    const QRect area = control.geometry();
    control.setGeometry(qRound(area.x() * by.horizontal), qRound(area.y() * by.vertical),
                        qRound(area.width() * by.horizontal), qRound(area.height() * by.vertical));
    ScaleFont(control, by.vertical);
    ScaleGrid(control, by);
}

/// Read once: the display of a panel PC stays.
QSize DisplaySize() {
    if (!display) {
        const QScreen* screen = QGuiApplication::primaryScreen();
        display = screen ? screen->size() : QSize(Theme::DesignWidth, Theme::DesignHeight);
    }
    return *display;
}

} // namespace

int RehearsalStripHeight() {
    if (!Rehearsal::Runs())
        return 0;
    return Global::Get().noResize
               ? StripHeight
               : qRound(double(StripHeight) * DisplaySize().height() / Theme::DesignHeight);
}

ScreenFactors CurrentScreenFactors() {
    QSize room = DisplaySize();
    if (Global::Get().noResize)
        room = {Theme::DesignWidth, Rehearsal::Runs()
                                        ? qMin(room.height(), Theme::DesignHeight + StripHeight)
                                        : Theme::DesignHeight};
    return {double(room.width()) / Theme::DesignWidth,
            double(room.height() - RehearsalStripHeight()) / Theme::DesignHeight};
}

void OverrideScreenSize(const QSize& size) {
    display.reset();
    if (!size.isEmpty())
        display = size;
}

bool ResizeForm(QWidget& form) {
    const ScreenFactors by = CurrentScreenFactors();
    if (by.horizontal == 1 && by.vertical == 1)
        return false;
    const QList<QWidget*> controls = form.findChildren<QWidget*>();
    ScaleFont(form, by.vertical);
    form.setFixedSize(qRound(form.width() * by.horizontal), qRound(form.height() * by.vertical));
    for (QWidget* control : controls) {
        if (IsControl(*control))
            ScaleControl(*control, by);
    }
    if (auto* background = form.findChild<QLabel*>(QStringLiteral("imgBackPicture"))) {
        background->setScaledContents(true);
        background->setGeometry(form.rect());
        background->lower();
        background->show();
    }
    return true;
}
