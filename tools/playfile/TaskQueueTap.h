#pragma once

#include <vector>

#include "toolkit/tasks/BackgroundTaskBase.h"
#include "toolkit/tasks/BackgroundTaskQueue.h"
#include "tools/playfile/TransferLog.h"

namespace cli {

/// Stands before the queue of tasks while it lives: it gives each task a log that can be watched, keeps it, and hands
/// it on.
///
/// Threads  One at a time.
class TaskQueueTap final : public iBackgroundTaskQueue {
public:
    struct Watched {
        Ox::Ptr<BackgroundTaskBase> task;
        Ox::Ptr<TransferLog> log;
    };

    TaskQueueTap()
        : real_(UIBackgroundTasksQueue::instance()), before_(UIBackgroundTasksQueue::install(this)) {}
    ~TaskQueueTap() override { UIBackgroundTasksQueue::install(before_); }
    TaskQueueTap(TaskQueueTap const&) = delete;
    TaskQueueTap& operator=(TaskQueueTap const&) = delete;

    void queue(Ox::Ptr<iBackgroundTask> const& task, bool option) override {
        if (Ox::Ptr<BackgroundTaskBase> const base = Ox::dynamicPtrCast<BackgroundTaskBase>(task)) {
            Watched const watched{base, Ox::makePtr<TransferLog>()};
            base->setLog(watched.log);
            tasks_.push_back(watched);
        }
        real_.queue(task, option);
    }

    /// In the order in which they came.
    [[nodiscard]] std::vector<Watched> const& tasks() const { return tasks_; }

private:
    iBackgroundTaskQueue& real_;
    iBackgroundTaskQueue* const before_;
    std::vector<Watched> tasks_;
};

}  // namespace cli
