#pragma once

#include <condition_variable>
#include <mutex>

#include "toolkit/tasks/BackgroundTask.h"
#include "toolkit/tasks/GenericNotifier.h"

/// What every background task needs besides its work, which a subclass writes as `run`.
///
/// Ownership  It shares its log. It doesn't own its queue.
/// Threads    As the interface says. Listeners are called without a lock held.
class BackgroundTaskBase : public iBackgroundTask,
                           public GenericNotifier<iBackgroundTask::Event>,
                           public Identified {
public:
    /// The results of `run`, as far as a queue or a program may ask for them.
    static constexpr int runFailed = 0;

    void execute() override;
    void abort() override { setStatus(stopAsked); }
    void waitForCompletion() const override;
    void setCompletionEvent() override;
    [[nodiscard]] float getProgress() const override;
    [[nodiscard]] IdStamp getID() const override { return id(); }
    [[nodiscard]] LightweightString<wchar_t> getDescription() const override { return {}; }
    [[nodiscard]] eImportance getImportance() const override { return importance_; }
    [[nodiscard]] Ox::Ptr<iTaskLog> getLog() const override { return log_; }
    [[nodiscard]] eLifetime getLifetime() const override { return lifetime_; }
    [[nodiscard]] iBackgroundTaskQueue* getQueue() const override;
    void setQueue(iBackgroundTaskQueue* queue) override;
    [[nodiscard]] eStatus getStatus() const override;
    /// A task that was asked to stop stays so.
    void setStatus(eStatus status) override;
    [[nodiscard]] Ox::Ptr<Ox::Guard> addListener(Ox::Ptr<Listener> const& listener) override {
        return listen(listener);
    }

    /// What `run` answered; `runFailed` before it has ended and after an exception.
    [[nodiscard]] int getResult() const;
    /// Puts another log in the place of its own; before the task is queued.
    void setLog(Ox::Ptr<iTaskLog> const& log) { log_ = log; }

protected:
    /// With a log of its own.
    explicit BackgroundTaskBase(eImportance importance = importanceUsual, eLifetime lifetime = lifetimeUsual);

    /// The work, on the queue's worker. The result is its subclass's affair.
    virtual int run() = 0;

private:
    Ox::Ptr<iTaskLog> log_;
    eImportance const importance_;
    eLifetime const lifetime_;

    mutable std::mutex lock_;
    mutable std::condition_variable completed_;
    // Guarded by lock_:
    iBackgroundTaskQueue* queue_ = nullptr;
    eStatus status_ = queued;
    bool isComplete_ = false;
    int result_ = runFailed;
};
