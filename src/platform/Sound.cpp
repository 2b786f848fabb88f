#include "platform/Sound.h"

#include <QAudioDevice>
#include <QFileInfo>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QUrl>
#include <utility>

namespace platform {

namespace {

class MachineSound : public Sound {
public:
    explicit MachineSound(std::function<void()> noDevice)
        : noDevice_(std::move(noDevice)) {}

    void StartLooped(const QString& path) override {
        wanted_ = path.endsWith(QLatin1String(".wav"), Qt::CaseInsensitive)
                      ? path
                      : path + QLatin1String(".wav");
        WatchOutputs();
        Play();
    }

    void Stop() override {
        wanted_.clear();
        effect_.reset();
    }

    void Resume() override {
        if (!wanted_.isEmpty() && !effect_)
            Play();
    }

private:
    // Reaching the audio service takes its time, so the first sound does it, not the start.
    void WatchOutputs() {
        if (devices_)
            return;
        devices_ = std::make_unique<QMediaDevices>();
        QObject::connect(devices_.get(), &QMediaDevices::audioOutputsChanged, devices_.get(),
                         [this] { OutputsChanged(); });
    }

    void OutputsChanged() {
        const bool sameOutput =
            effect_ && effect_->audioDevice() == QMediaDevices::defaultAudioOutput();
        if (!wanted_.isEmpty() && !(sameOutput && effect_->isPlaying()))
            Play();
    }

    void Play() {
        effect_.reset();
        if (!QFileInfo(wanted_).isFile())
            return;
        const QAudioDevice output = QMediaDevices::defaultAudioOutput();
        if (output.isNull()) {
            TellNoDevice();
            return;
        }
        effect_ = std::make_unique<QSoundEffect>(output);
        effect_->setLoopCount(QSoundEffect::Infinite);
        effect_->setSource(QUrl::fromLocalFile(wanted_));
        effect_->play();
    }

    void TellNoDevice() {
        if (auto tell = std::exchange(noDevice_, nullptr))
            tell();
    }

    std::function<void()> noDevice_; // empty once called
    QString wanted_;                 // file that should be playing; empty when stopped
    std::unique_ptr<QMediaDevices> devices_;
    std::unique_ptr<QSoundEffect> effect_;
};

} // namespace

std::unique_ptr<Sound> MakeSound(std::function<void()> noDevice) {
    return std::make_unique<MachineSound>(std::move(noDevice));
}

} // namespace platform
