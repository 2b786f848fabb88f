#include "platform/SoundThread.h"

#include "platform/AlsaOutput.h"
#include "platform/PulseOutput.h"

#include <condition_variable>
#include <csignal>
#include <mutex>

namespace platform {

namespace {

/// Longest rest between two looks, ms.
constexpr int AlarmStep = 100;
constexpr int IdleStep = 500;
/// A driver that hangs keeps no program from its end.
constexpr std::chrono::seconds LongestEnd{2};

} // namespace

/// Outlives the owner where the thread hangs in a driver.
struct SoundThread::Shared {
    std::mutex mutex;
    std::condition_variable ended;
    std::shared_ptr<const Wave> wanted;
    Account account;
    PulseOutput* waiting = nullptr; // while the thread runs
    bool ending = false;

    void Report(const std::shared_ptr<const Wave>& played, qint64 heard, qint64 there) {
        const std::lock_guard lock(mutex);
        account.there = qMax(account.there, there);
        if (!wanted || played != wanted || heard <= account.heard)
            return;
        if (heard - qMax(account.heard, account.since) > LongestSilence)
            account.gap = true;
        account.heard = heard;
    }
};

SoundThread::SoundThread()
    : shared_(std::make_shared<Shared>()) {
    // The program's signals are for its main thread.
    sigset_t all;
    sigset_t former;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &former);
    thread_ = std::thread([shared = shared_] { Run(shared); });
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

SoundThread::~SoundThread() {
    std::unique_lock lock(shared_->mutex);
    shared_->ending = true;
    if (shared_->waiting)
        shared_->waiting->Wake();
    const bool ended =
        shared_->ended.wait_for(lock, LongestEnd, [this] { return !shared_->waiting; });
    lock.unlock();
    if (ended)
        thread_.join();
    else
        thread_.detach();
}

void SoundThread::Play(std::shared_ptr<const Wave> wave) {
    const std::lock_guard lock(shared_->mutex);
    Account& account = shared_->account;
    // A sound in place of another doesn't begin the silence anew.
    account.since = account.wanted ? qMax(account.since, account.heard) : SoundTime();
    account.wanted = wave != nullptr;
    account.heard = 0;
    shared_->wanted = std::move(wave);
    if (shared_->waiting)
        shared_->waiting->Wake();
}

SoundThread::Account SoundThread::Look() {
    const std::lock_guard lock(shared_->mutex);
    const Account account = shared_->account;
    shared_->account.gap = false;
    return account;
}

void SoundThread::Run(const std::shared_ptr<Shared>& shared) {
    PulseOutput server;
    AlsaOutput device;
    std::unique_lock lock(shared->mutex);
    shared->waiting = &server;
    while (!shared->ending) {
        const std::shared_ptr<const Wave> wave = shared->wanted;
        lock.unlock();
        server.Play(wave);
        const bool absent = server.IsAbsent();
        device.Play(absent ? wave : nullptr);
        if (absent)
            device.Work();
        server.Work(wave ? AlarmStep : IdleStep);
        shared->Report(wave, qMax(server.Heard(), device.Heard()),
                       qMax(server.There(), device.There()));
        lock.lock();
    }
    shared->waiting = nullptr;
    shared->ended.notify_all();
}

} // namespace platform
