#include "events/Klaxon.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"

void Alarme(qint16 priority) {
    ErrorHandling::Guard("Klaxon.Alarme", [&] {
        Global::State& state = Global::Get();
        if (priority == StopAlarme) {
            state.currentPriority = 0;
            if (state.sound)
                state.sound->Stop();
            return;
        }
        if (priority <= state.currentPriority)
            return;
        state.currentPriority = priority;
        const int number = Global::Configuration().AlarmPrioSound(priority);
        if (state.sound)
            state.sound->StartLooped(
                Global::InApplicationFolder(QStringLiteral("AlarmSound%1").arg(number)),
                [number] { return Config::Sound(number).value_or(QByteArray()); });
    });
}
