#include "bus/ProgramEnd.h"

#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "core/Yield.h"
#include "model/CurrentConfig.h"
#include "platform/Replacement.h"

#include <QCoreApplication>

namespace {
enum Texts { BeginIt = 718010, EndIt = 718022, StartByHand = 718023 };
} // namespace

void EndProgram(Rehearsal::Ending ending) {
    if (Rehearsal::Runs())
        platform::Replacement::Ask(Rehearsal::EndArguments(), Rehearsal::NoteOf(ending));
    if (wPolling* polling = Polling()) {
        EventClass event(0, Family::System, 0, SystemEvents::ApplicationStopped);
        polling->SendEvent(event);
        polling->setRun(false);
    }
    while (NbInstances(FormNames::wPolling) >= 1) {
        Forms::Unload(FormNames::wPolling);
        Yield();
    }
    Forms::UnloadAllBut({FormNames::wMain});
    Forms::Unload(FormNames::wMain);
    QCoreApplication::quit();
}

QString AndWhatOfTheBus(int text) {
    return GetText(text) + (Global::Configuration().AutoStart()
                                ? QString()
                                : QStringLiteral("\r\n") + GetText(StartByHand));
}

void BeginRehearsal() {
    if (Message(AndWhatOfTheBus(BeginIt), Messages::Warning | Messages::OkCancel) != Messages::Ok)
        return;
    if (Global::Configuration().Modified()) {
        if (const qint32 failure = SaveCurrentConfig(); failure != ConfigClass::Saved) {
            Message(GetText(failure), Messages::Critical);
            return;
        }
    }
    IniWrite(QStringLiteral("Files"), QStringLiteral("LastConfigModified"),
             QString::number(Global::Configuration().Modified() ? 1 : 0));
    Trace::Note(QStringLiteral("REHEARSAL BEGINS"));
    platform::Replacement::Ask(Rehearsal::BeginArguments(), "rehearsal begins");
    EndProgram();
}

void EndRehearsal() {
    if (Message(AndWhatOfTheBus(EndIt), Messages::Question | Messages::OkCancel) == Messages::Ok)
        EndProgram();
}
