#include "events/Klaxon.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"

#include <utility>

/// What the trial leaves behind is told when the horn has what it needs.
static void TellTrialEnded() {
    if (const auto ended = std::exchange(Global::Get().soundTrial, nullptr))
        ended();
}

void Alarme(qint16 priority) {
    ErrorHandling::Guard("Klaxon.Alarme", [&] {
        Global::State& state = Global::Get();
        if (priority == StopAlarme) {
            state.currentPriority = 0;
            if (state.sound)
                state.sound->Stop();
            TellTrialEnded();
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
        TellTrialEnded();
    });
}

void Alarme(const ChannelClass& channel) {
    const qint16 priority = channel.AlmPrio();
    Alarme(priority >= 1 && priority <= HighestPriority ? priority : HighestPriority);
}

bool TrySound(const QString& path, const platform::SoundReserve& reserve,
              std::function<void()> ended) {
    Global::State& state = Global::Get();
    if (state.currentPriority > 0)
        return false;
    ErrorHandling::Guard("Klaxon.TrySound", [&] {
        if (state.sound)
            state.sound->StartLooped(path, reserve);
        state.soundTrial = std::move(ended);
    });
    return true;
}

void EndSoundTrial() {
    Global::State& state = Global::Get();
    if (!std::exchange(state.soundTrial, nullptr))
        return;
    ErrorHandling::Guard("Klaxon.EndSoundTrial", [&] {
        if (state.sound)
            state.sound->Stop();
    });
}
