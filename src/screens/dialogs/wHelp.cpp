#include "screens/dialogs/wHelp.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "platform/Folders.h"
#include "screens/touch/ResizeForm.h"
#include "ui_wHelp.h"

#include <QAbstractSlider>
#include <QApplication>
#include <QFileInfo>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QUrl>

namespace {

/// Index of `imgNavig` for the way back; the other one leads to the contents.
constexpr int Back = 1;

const QString Navig = QStringLiteral("imgNavig");

/// Steps of the scroll bar for one touch of a line button, in lines of text.
constexpr int LinesAStep = 3;
constexpr int PageMargin = 16;

/// Height of a line of the contents, which takes the touch over its whole width.
constexpr int LinkHeight = 48;

/// The page is written without colours: they are those of the screens. `margin` stands between
/// the lines of the contents, pixels.
QString PageStyle(int margin) {
    return QStringLiteral(
               "a { color: #9CC3F0; text-decoration: none; }"
               "p.contents { margin-top: %1px; margin-bottom: %1px; }"
               "table { border-collapse: collapse; border-color: #4A5868; border-style: solid; "
               "margin-top: 8px; margin-bottom: 8px; }")
        .arg(margin);
}

QString PageOf(const QString& language) {
    const QString path = platform::ProgramFile(
        platform::ExecutableName() + u'-' + language.left(2).toLower() + QStringLiteral(".html"));
    return QFileInfo::exists(path) ? path : QString();
}

/// The page beside a compiled help file, which this platform can't show itself.
QString PageBeside(const QString& helpFile) {
    if (helpFile.isEmpty())
        return {};
    const QFileInfo file(helpFile);
    const QString path = file.path() + u'/' + file.completeBaseName() + QStringLiteral(".html");
    return QFileInfo::exists(path) ? path : QString();
}

} // namespace

QString HelpPage() {
    for (const QString& page :
         {PageBeside(Global::Get().helpFile), PageOf(GetLanguage(Global::Get().language)),
          PageOf(GetLanguage(0))}) {
        if (!page.isEmpty())
            return page;
    }
    return {};
}

void ShowHelp() {
    if (HelpPage().isEmpty()) {
        Message(GetText(713001), Messages::Information);
        return;
    }
    // A page that was left behind an alarm shows the chapter of another screen.
    Forms::Unload(FormNames::wHelp);
    Forms::Show(FormNames::wHelp);
    Forms::BringToFront(FormNames::wHelp);
}

wHelp::wHelp()
    : ScreenForm(FormNames::wHelp)
    , ui_(std::make_unique<Ui::wHelp>()) {
    if (const auto* screen = dynamic_cast<ScreenForm*>(QApplication::activeWindow()))
        opener_ = screen->Name();
    // Below a form that waits for an answer nobody could see it, nor touch it.
    if (QApplication::activeModalWidget() != nullptr)
        setWindowModality(Qt::ApplicationModal);
    ui_->setupUi(this);
    ui_->txtHelp->setFocusPolicy(Qt::NoFocus);
    ui_->txtHelp->setTextInteractionFlags(Qt::NoTextInteraction);
    ui_->txtHelp->viewport()->installEventFilter(this);
    ui_->txtHelp->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    Prepare();
    const double scale = IsScaled() ? CurrentScreenFactors().vertical : 1;
    const int spare = qRound(LinkHeight * scale) - ui_->txtHelp->fontMetrics().lineSpacing();
    ui_->txtHelp->document()->setDefaultStyleSheet(PageStyle(spare));
    ui_->txtHelp->document()->setDocumentMargin(PageMargin);
    OnClick(Navig, [this](int index) { imgNavig_Click(index); });
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    OnClick(ui_->imgClose, [this] { Close(); });
    QWidget* back = Control(Navig, Back);
    back->setEnabled(false);
    connect(ui_->txtHelp, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    if (const QString page = HelpPage(); !page.isEmpty()) {
        // A page may name the chapter of a screen; else it opens at its beginning.
        QUrl url = QUrl::fromLocalFile(page);
        url.setFragment(opener_);
        ui_->txtHelp->setSource(url);
    }
}

wHelp::~wHelp() = default;

void wHelp::imgNavig_Click(int index) {
    if (index == Back)
        ui_->txtHelp->backward();
    else
        ui_->txtHelp->verticalScrollBar()->setValue(0);
}

void wHelp::imgControl_Click(int index) {
    static constexpr QAbstractSlider::SliderAction Actions[] = {
        QAbstractSlider::SliderPageStepSub, QAbstractSlider::SliderSingleStepSub,
        QAbstractSlider::SliderSingleStepAdd, QAbstractSlider::SliderPageStepAdd};
    static constexpr int FirstIndex = 4;
    QScrollBar* bar = ui_->txtHelp->verticalScrollBar();
    bar->setSingleStep(LinesAStep * ui_->txtHelp->fontMetrics().lineSpacing());
    bar->triggerAction(Actions[index - FirstIndex]);
}

bool wHelp::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui_->txtHelp->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const QPoint place = static_cast<QMouseEvent*>(event)->position().toPoint();
        const Operator::Acting acting;
        ErrorHandling::Guard("wHelp.txtHelp_Click", [&] { FollowLine(place); });
        return true;
    }
    return ScreenForm::eventFilter(watched, event);
}

/// A finger is larger than a line of text: a touch anywhere on the line of a link follows it.
void wHelp::FollowLine(const QPoint& place) {
    const QTextBlock line = ui_->txtHelp->cursorForPosition(place).block();
    const QString goal =
        line.begin().atEnd() ? QString() : line.begin().fragment().charFormat().anchorHref();
    if (!goal.isEmpty())
        ui_->txtHelp->setSource(QUrl(goal));
}

void wHelp::Close() {
    const QString opener = opener_;
    Unload();
    if (NbInstances(opener) > 0)
        Forms::BringToFront(opener);
}
