#pragma once

#include <vector>

#include "toolkit/tasks/BackgroundTaskQueue.h"

/// In force while it lives in the place of the queue of tasks: it takes them and does nothing with them.
///
/// Threads  One at a time.
class TaskShelf : public iBackgroundTaskQueue {
public:
    TaskShelf() : before_(UIBackgroundTasksQueue::install(this)) {}
    ~TaskShelf() override { UIBackgroundTasksQueue::install(before_); }
    TaskShelf(TaskShelf const&) = delete;
    TaskShelf& operator=(TaskShelf const&) = delete;

    void queue(Ox::Ptr<iBackgroundTask> const& task, bool option) override {
        tasks.push_back(task);
        options.push_back(option);
    }

    std::vector<Ox::Ptr<iBackgroundTask>> tasks;
    std::vector<bool> options;

private:
    iBackgroundTaskQueue* const before_;
};
