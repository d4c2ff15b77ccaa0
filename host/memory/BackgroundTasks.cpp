#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

#include "ole/os/Immortal.h"
#include "ole/os/Shutdown.h"
#include "ole/os/WorkerThreadPool.h"
#include "toolkit/services/Log.h"
#include "toolkit/tasks/BackgroundTaskQueue.h"

namespace {

/// Before the read queues go, which a task may use.
constexpr std::uint32_t shutdownOrder = 300;

constinit std::atomic<iBackgroundTaskQueue*> installedQueue{nullptr};
thread_local iBackgroundTask* currentTask = nullptr;

using TaskPtr = Ox::Ptr<iBackgroundTask>;

/// The host's own queue.
///
/// Ownership  It holds the tasks that wait and the one that is done. Its thread lives until the process ends.
class OneWorker final : public BackgroundTaskQueueBase {
public:
    void queue(TaskPtr const& task, bool) override {
        task->setQueue(this);
        bool isTaken = false;
        {
            std::lock_guard const scope(lock_);
            isTaken = !isShut_ && ensureThread();
            if (isTaken) {
                waiting_.push_back(task);
                changed_.notify_all();
            }
        }
        if (!isTaken) {
            refuse(*task);
        }
    }

private:
    /// Requires the lock.
    bool ensureThread() {
        if (thread_) {
            return true;
        }
        thread_ =
            Ox::WorkerThreadPool::beginThread([this] { work(); }, "UIBackgroundTasks", iThread::background);
        if (thread_) {
            Shutdown::addCallback(
                Ox::makePtr<Shutdown::MethodCallback<OneWorker>>(this, &OneWorker::shutdown), shutdownOrder);
        } else {
            LogBoth("UIBackgroundTasksQueue: the system gives no thread; the task isn't done\n");
        }
        return static_cast<bool>(thread_);
    }

    static void refuse(iBackgroundTask& task) {
        task.abort();
        task.setCompletionEvent();
    }

    void work() {
        while (TaskPtr const task = next()) {
            execute(*task);
        }
    }

    /// Waits for a task; empty if the worker is to end.
    TaskPtr next() {
        std::unique_lock scope(lock_);
        underWay_ = nullptr;
        changed_.wait(scope, [this] { return isShut_ || !waiting_.empty(); });
        if (!isShut_) {
            underWay_ = waiting_.front();
            waiting_.pop_front();
        }
        return underWay_;
    }

    void shutdown(Shutdown::eExitType) {
        std::deque<TaskPtr> left;
        TaskPtr last;
        {
            std::lock_guard const scope(lock_);
            isShut_ = true;
            left.swap(waiting_);
            last = underWay_;
            changed_.notify_all();
        }
        if (last) {
            last->abort();
        }
        for (TaskPtr const& task : left) {
            refuse(*task);
        }
        Ox::WorkerThreadPool::endThread(thread_);
    }

    std::mutex lock_;
    std::condition_variable changed_;
    // Guarded by lock_:
    std::deque<TaskPtr> waiting_;
    TaskPtr underWay_;
    bool isShut_ = false;
    /// Set once.
    Ox::WorkerThreadPool::ThreadPtr thread_;
};

}  // namespace

iBackgroundTask::eStatus BackgroundTaskQueueBase::getCurrentTaskStatus() {
    return currentTask != nullptr ? currentTask->getStatus() : iBackgroundTask::running;
}

void BackgroundTaskQueueBase::execute(iBackgroundTask& task) {
    iBackgroundTask* const before = std::exchange(currentTask, &task);
    task.execute();
    currentTask = before;
}

iBackgroundTaskQueue& UIBackgroundTasksQueue::instance() {
    iBackgroundTaskQueue* const installed = installedQueue.load(std::memory_order_acquire);
    return installed != nullptr ? *installed : immortal<OneWorker>();
}

iBackgroundTaskQueue* UIBackgroundTasksQueue::install(iBackgroundTaskQueue* queue) noexcept {
    return installedQueue.exchange(queue);
}
