#include "screens/AskPassword.h"

#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Trace.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "screens/dlgUserCodes.h"

#include <QPointer>
#include <limits>
#include <optional>

using ErrorHandling::Guard;

namespace {

constexpr int ServiceLevel = 4;
const QString ServiceName = QStringLiteral("D.R.V.");
/// Column at which the level stands in the trace.
constexpr int LevelColumn = 58;

/// `who` is the user who is connected now, or the word of a disconnection.
void TraceUser(const QString& who) {
    const QString head =
        DateTimes::DateAndTime(DateTimes::Now()) + QStringLiteral(" USER : ") + who + u' ';
    const QString line = head.leftJustified(LevelColumn, u'*') + QStringLiteral(" LEVEL") +
                         QString::number(Global::Get().userLevel);
    // A trace that can't be written is told, and keeps nobody from connecting.
    Guard(".AskPassword", [&] { Trace::Write(line.left(Trace::LineWidth)); });
}

void Connect(int level, const QString& name) {
    Global::Get().userLevel = level;
    Global::Get().userName = name;
}

/// Without a match the connected user stays: who has a level to reach is asked again.
void ConnectBy(const QString& code) {
    if (code.isEmpty()) {
        Connect(0, QString());
        TraceUser(QStringLiteral("DISCONNECT"));
        return;
    }
    // A base without a service code has an empty one, which no entry can equal here.
    if (code == GetConfig(100000)) {
        Connect(ServiceLevel, ServiceName);
        return;
    }
    const ConfigClass& site = Global::Configuration();
    for (int i = 1; i <= site.UserCount(); ++i) {
        if (code != site.UserPwd(i))
            continue;
        Connect(site.UserLevel(i), site.UserName(i));
        TraceUser(site.UserName(i));
        return;
    }
}

/// The code that was confirmed; nothing when the prompt was left or taken away.
std::optional<QString> EnteredCode() {
    // The one prompt that there may be stands already.
    if (NbInstances(QStringLiteral("dlgUserCodes")) > 0)
        return std::nullopt;
    const QPointer<dlgUserCodes> dialog(new dlgUserCodes);
    dialog->AskCodeOnly();
    dialog->ShowModal();
    if (!dialog)
        return std::nullopt;
    std::optional<QString> code;
    if (dialog->Ok())
        code = dialog->UserPwd();
    dialog->Unload();
    return code;
}

} // namespace

bool AskPassword() {
    bool confirmed = false;
    Guard(".AskPassword", [&] {
        const std::optional<QString> code = EnteredCode();
        confirmed = code.has_value();
        if (!confirmed)
            return;
        ConnectBy(*code);
        if (wPolling* polling = Polling()) {
            EventClass event(0, Family::System, 0, SystemEvents::UserChanged);
            polling->SendEvent(event);
        }
    });
    return confirmed;
}

bool IsGuarded() {
    // A level that nobody has is granted on an open site only.
    return !AccessOk(std::numeric_limits<int>::max());
}
