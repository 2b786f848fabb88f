#include "bus/ProgramEnd.h"

#include "bus/wPolling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "core/Yield.h"
#include "model/CurrentConfig.h"
#include "platform/Replacement.h"

#include <QCoreApplication>

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

bool BeginRehearsal() {
    if (Global::Configuration().Modified() && SaveCurrentConfig() != ConfigClass::Saved)
        return false;
    IniWrite(QStringLiteral("Files"), QStringLiteral("LastConfigModified"),
             QString::number(Global::Configuration().Modified() ? 1 : 0));
    Trace::Note(QStringLiteral("REHEARSAL BEGINS"));
    platform::Replacement::Ask(Rehearsal::BeginArguments(), "rehearsal begins");
    EndProgram();
    return true;
}
