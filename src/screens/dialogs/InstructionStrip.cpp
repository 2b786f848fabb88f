#include "screens/dialogs/InstructionStrip.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/Operator.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/Theme.h"
#include "screens/touch/TouchImage.h"

#include <QLabel>
#include <QPainter>

namespace {

/// Of the design, pixels: above the buttons of the console, where its oldest alarms stand.
constexpr QRect Strip(8, 388, 784, 60);
constexpr QRect ReadOn(6, 6, 180, 48);
constexpr QRect AlarmLine(192, 6, 530, 48);
constexpr QRect Drop(728, 6, 50, 48);
constexpr int ButtonPixels = 13;
constexpr int LinePixels = 13;
constexpr int ReadOnText = 714102;

QWidget* Console() {
    return dynamic_cast<QWidget*>(Forms::Find(FormNames::wRunAlarms));
}

QRect Scaled(const QRect& area) {
    const ScreenFactors by = CurrentScreenFactors();
    return {qRound(area.x() * by.horizontal), qRound(area.y() * by.vertical),
            qRound(area.width() * by.horizontal), qRound(area.height() * by.vertical)};
}

int ScaledPixels(int pixels) {
    return Scaled({0, 0, 0, pixels}).height();
}

TouchImage* MakeButton(QWidget* strip, const char* name, const char* picture, const QRect& area) {
    auto* button = new TouchImage(strip);
    button->setObjectName(QString::fromLatin1(name));
    button->setPicture(QString::fromLatin1(picture));
    button->setGeometry(Scaled(area));
    button->setFont(Theme::Text(ScaledPixels(ButtonPixels)));
    button->setCursor(Theme::TouchPointer());
    return button;
}

} // namespace

void InstructionStrip::Offer(const QString& alarm, const QString& consigne) {
    Withdraw();
    if (QWidget* console = Console())
        (new InstructionStrip(console, alarm, consigne))->show();
}

void InstructionStrip::Withdraw() {
    if (const QWidget* console = Console()) {
        for (InstructionStrip* strip : console->findChildren<InstructionStrip*>()) {
            strip->hide();
            strip->deleteLater();
        }
    }
}

InstructionStrip::InstructionStrip(QWidget* console, const QString& alarm, const QString& consigne)
    : QWidget(console) {
    setObjectName(QStringLiteral("fraReadOn"));
    setGeometry(Scaled(Strip));
    TouchImage* readOn = MakeButton(this, "imgReadOn", "instruction", ReadOn);
    readOn->setText(GetText(ReadOnText));
    auto* line = new QLabel(this);
    line->setGeometry(Scaled(AlarmLine));
    line->setTextFormat(Qt::PlainText);
    line->setFont(Theme::Fixed(ScaledPixels(LinePixels)));
    line->setText(
        QFontMetrics(line->font()).elidedText(alarm.simplified(), Qt::ElideRight, line->width()));
    TouchImage* drop = MakeButton(this, "imgDrop", "cancel", Drop);
    connect(readOn, &TouchImage::clicked, this, [alarm, consigne] {
        const Operator::Acting acting;
        ErrorHandling::Guard("wRunAlarms.imgReadOn_Click",
                             [&] { dlgConsigne::Present(alarm, consigne); });
    });
    connect(drop, &TouchImage::clicked, this, [] { Withdraw(); });
    raise();
}

void InstructionStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::Field);
    painter.setPen(QPen(Theme::QuietInk, 1));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}
