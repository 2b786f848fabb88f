#include "platform/BackgroundTask.h"

#include "platform/RunTimeError.h"

#include <atomic>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace platform {

namespace {

/// The watch of the bus comes first where both want the processor.
constexpr int Niceness = 10;

} // namespace

struct BackgroundTask::Shared : Progress {
    bool Stopped() const override { return stopped; }
    void Tell(qint64 newDone, qint64 newAll) override {
        done = newDone;
        all = newAll;
    }

    std::atomic<bool> stopped = false;
    std::atomic<bool> ended = false;
    std::atomic<bool> cutShort = false;
    std::atomic<int> error = 0;
    std::atomic<qint64> done = 0;
    std::atomic<qint64> all = 0;
};

/// Threads that nobody waits for any more but the end of the program. What has ended keeps its
/// stack until it is joined.
class BackgroundTask::Leaving {
public:
    ~Leaving() {
        for (Left& left : left_)
            left.thread.join();
    }
    static Leaving& All() {
        static Leaving all;
        return all;
    }
    void Take(std::thread thread, std::shared_ptr<Shared> shared) {
        left_.push_back({std::move(thread), std::move(shared)});
        for (auto left = left_.begin(); left != left_.end();) {
            if (!left->shared->ended) {
                ++left;
                continue;
            }
            left->thread.join();
            left = left_.erase(left);
        }
    }

private:
    struct Left {
        std::thread thread;
        std::shared_ptr<Shared> shared;
    };
    std::vector<Left> left_;
};

void BackgroundTask::Progress::Check() const {
    if (Stopped())
        throw Ended();
}

BackgroundTask::BackgroundTask(Work work)
    : shared_(std::make_shared<Shared>()) {
    Leaving::All();
    thread_ = std::thread([shared = shared_, work = std::move(work)] { Run(shared, work); });
}

BackgroundTask::~BackgroundTask() {
    Stop();
    Leaving::All().Take(std::move(thread_), shared_);
}

void BackgroundTask::Run(const std::shared_ptr<Shared>& shared, const Work& work) {
    setpriority(PRIO_PROCESS, id_t(syscall(SYS_gettid)), Niceness);
    try {
        work(*shared);
    } catch (const Ended&) {
        shared->cutShort = true;
    } catch (const RunTimeError& error) {
        shared->error = error.Number();
    } catch (const std::exception&) {
        shared->error = errors::Internal;
    }
    shared->ended = true;
}

void BackgroundTask::Stop() {
    shared_->stopped = true;
}

bool BackgroundTask::Done() const {
    return shared_->ended;
}

int BackgroundTask::Error() const {
    return shared_->error;
}

bool BackgroundTask::WasStopped() const {
    return shared_->cutShort;
}

int BackgroundTask::Percent() const {
    const qint64 all = shared_->all;
    return all <= 0 ? 0 : int(qBound(qint64(0), qint64(shared_->done) * 100 / all, qint64(100)));
}

} // namespace platform
