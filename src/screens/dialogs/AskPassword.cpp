#include "screens/dialogs/AskPassword.h"

#include "bus/AlarmConsole.h"
#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Trace.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "screens/dialogs/dlgUserCodes.h"

#include <QPointer>
#include <limits>

using ErrorHandling::Guard;

namespace {

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

/// False for a code that nobody has: the connected user stays.
bool ConnectBy(const QString& code) {
    if (code.isEmpty()) {
        Connect(0, QString());
        TraceUser(QStringLiteral("DISCONNECT"));
        return true;
    }
    // A base without a service code has an empty one, which no entry can equal here.
    if (code == GetConfig(100000)) {
        Connect(Levels::Service, ServiceName);
        return true;
    }
    const ConfigClass& site = Global::Configuration();
    for (int i = 1; i <= site.UserCount(); ++i) {
        if (code != site.UserPwd(i))
            continue;
        Connect(site.UserLevel(i), site.UserName(i));
        TraceUser(site.UserName(i));
        return true;
    }
    return false;
}

/// Takes a code that was confirmed. Each one is an event, an unknown one as well.
dlgUserCodes::Verdict Take(const QString& code, int insistedLevel) {
    const bool known = ConnectBy(code);
    const bool enough = insistedLevel == 0 || AccessOk(insistedLevel);
    if (wPolling* polling = Polling()) {
        EventClass event(0, Family::System, 0, SystemEvents::UserChanged);
        polling->SendEvent(event);
    }
    using Verdict = dlgUserCodes::Verdict;
    return !known ? Verdict::Unknown : enough ? Verdict::Taken : Verdict::TooLow;
}

/// False when the prompt was given up. With `insist` it takes no code below the level.
bool Ask(ScreenForm* caller, int level, bool insist) {
    // The one prompt that there may be stands already.
    if (NbInstances(FormNames::dlgUserCodes) > 0)
        return false;
    const QPointer<ScreenForm> asking(caller);
    const QPointer<dlgUserCodes> prompt(new dlgUserCodes);
    prompt->AskCodeOnly(caller, level, [insistedLevel = insist ? level : 0](const QString& code) {
        return Take(code, insistedLevel);
    });
    // The list of alarms stays in use above the prompt, which covers the rest of the console.
    const bool overConsole = dynamic_cast<AlarmConsole*>(caller) != nullptr;
    prompt->ShowModal(overConsole ? Qt::NonModal : Qt::ApplicationModal);
    auto* shows = dynamic_cast<ShowsLogin*>(asking.data());
    if (shows != nullptr && ScreenForm::IsLoaded(asking.data()))
        shows->ShowLogin();
    if (!prompt)
        return false;
    const bool ok = prompt->Ok();
    prompt->Unload();
    return ok;
}

bool Reach(ScreenForm& caller, int level, bool insist) {
    if (AccessOk(level))
        return true;
    const QPointer<const ScreenForm> asking(&caller);
    bool confirmed = false;
    Guard(".AskPassword", [&] { confirmed = Ask(&caller, level, insist); });
    return confirmed && ScreenForm::IsLoaded(asking.data()) && AccessOk(level);
}

} // namespace

bool AskPassword(ScreenForm* caller, int level) {
    bool confirmed = false;
    Guard(".AskPassword", [&] { confirmed = Ask(caller, level, false); });
    return confirmed;
}

bool InsistOnLevel(ScreenForm& caller, int level) {
    return Reach(caller, level, true);
}

bool TryLevel(ScreenForm& caller, int level) {
    return Reach(caller, level, false);
}

bool IsGuarded() {
    // A level that nobody has is granted on an open site only.
    return !AccessOk(std::numeric_limits<int>::max());
}
