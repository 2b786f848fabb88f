#pragma once

#include <QtGlobal>
#include <functional>
#include <memory>
#include <thread>

namespace platform {

/// Work on files that may take minutes, on a thread of its own at low priority: a slow medium holds
/// up nobody. What the work uses is its own: it sees nothing of what the main thread may change.
class BackgroundTask {
public:
    /// What the work tells and is told.
    class Progress {
    public:
        virtual ~Progress() = default;
        /// Somebody wants the work to end: it ends as soon as it can and leaves nothing half done.
        virtual bool Stopped() const = 0;
        /// How much of it is done, bytes or whatever it counts.
        virtual void Tell(qint64 done, qint64 all) = 0;
        /// Throws `Ended` when the work is to end.
        void Check() const;
    };
    /// Thrown where work ends since it is to.
    struct Ended {};

    using Work = std::function<void(Progress&)>;

    explicit BackgroundTask(Work work);
    /// Ends the work and waits for nobody; the thread is waited for at the program's end.
    ~BackgroundTask();
    BackgroundTask(const BackgroundTask&) = delete;
    BackgroundTask& operator=(const BackgroundTask&) = delete;

    void Stop();
    bool Done() const;
    /// After the end: number of the run-time error that ended the work, 0 when it came through.
    int Error() const;
    /// After the end: the work was stopped ahead of it.
    bool WasStopped() const;
    /// 0 to 100.
    int Percent() const;

private:
    struct Shared;
    class Leaving;
    static void Run(const std::shared_ptr<Shared>& shared, const Work& work);

    std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

/// Work that tells nobody and is never stopped, where a caller waits for it.
class Unwatched : public BackgroundTask::Progress {
public:
    bool Stopped() const override { return false; }
    void Tell(qint64, qint64) override {}
};

} // namespace platform
