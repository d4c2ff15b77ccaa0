#pragma once

#include "toolkit/tasks/BackgroundTask.h"

/// What all queues of background tasks have in common: the worker knows which task it is doing.
class BackgroundTaskQueueBase : public iBackgroundTaskQueue {
public:
    /// The status of the task that the calling thread is doing; `running` on a thread that does none.
    [[nodiscard]] static iBackgroundTask::eStatus getCurrentTaskStatus();

protected:
    /// Does a task on the calling thread.
    static void execute(iBackgroundTask& task);
};

/// The queue of the tasks that people start: one worker, one task at a time, in the order in which they came.
///
/// The worker is begun by the first task. When the process ends, the task under way is asked to stop and waited for,
/// and those behind it are asked to stop and never begun.
///
/// Threads  Any.
class UIBackgroundTasksQueue {
public:
    /// The queue in force; the host's own unless another is installed.
    [[nodiscard]] static iBackgroundTaskQueue& instance();
    /// Puts `queue` in force, null for the host's own, and gives back the one before, null for the host's
    /// own. Not owned.
    static iBackgroundTaskQueue* install(iBackgroundTaskQueue* queue) noexcept;
};
