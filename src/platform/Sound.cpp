#include "platform/Sound.h"

#include "platform/SoundOutput.h"
#include "platform/SoundThread.h"

#include <QFileInfo>
#include <QTimer>
#include <utility>

namespace platform {

namespace {

/// Between two looks whether what should sound does, ms.
constexpr int LookInterval = 250;
/// The server may come later than the program, and a new one may take its time, ms.
constexpr int IdlePatience = 10'000;

class MachineSound : public Sound {
public:
    explicit MachineSound(SoundNews news)
        : news_(std::move(news))
        , madeAt_(SoundTime()) {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Look(); });
        timer_.start(LookInterval);
    }

    void StartLooped(const QString& path, const SoundReserve& reserve) override {
        const QString file = path.endsWith(QLatin1String(".wav"), Qt::CaseInsensitive)
                                 ? path
                                 : path + QLatin1String(".wav");
        SoundChoice choice = ChooseSound(file, reserve);
        thread_.Play(std::make_shared<const Wave>(std::move(choice.wave)));
        if (!choice.standIn.isEmpty() && news_.replaced)
            news_.replaced(QFileInfo(file).fileName(), choice.standIn);
    }

    void Stop() override { thread_.Play(nullptr); }

private:
    void Look() {
        const SoundThread::Account account = thread_.Look();
        const qint64 proof = account.wanted ? account.heard : qMax(account.heard, account.there);
        if (silentSince_ != 0) {
            if (proof > silentSince_)
                Tell(true);
        } else if (IsSilent(account)) {
            Tell(false);
        } else if (account.gap) {
            // Over before this thread could look.
            Tell(false);
            Tell(true);
        }
    }

    bool IsSilent(const SoundThread::Account& account) const {
        if (account.wanted)
            return SoundTime() - qMax(account.since, account.heard) > SoundThread::LongestSilence;
        return SoundTime() - qMax(madeAt_, account.there) > IdlePatience;
    }

    void Tell(bool canBeHeard) {
        silentSince_ = canBeHeard ? 0 : SoundTime();
        if (news_.heard)
            news_.heard(canBeHeard);
    }

    SoundNews news_;
    qint64 madeAt_;
    qint64 silentSince_ = 0; // when the silence was told; 0 when none stands
    SoundThread thread_;
    QTimer timer_;
};

} // namespace

std::unique_ptr<Sound> MakeSound(SoundNews news) {
    return std::make_unique<MachineSound>(std::move(news));
}

} // namespace platform
