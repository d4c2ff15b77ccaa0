#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "host/memory/MemoryTaskLog.h"
#include "tests/fakes/Gate.h"
#include "tests/fakes/TaskShelf.h"
#include "toolkit/tasks/BackgroundTaskBase.h"
#include "toolkit/tasks/BackgroundTaskQueue.h"

namespace {

using testing::ElementsAre;

/// Does what a test says.
class Task : public BackgroundTaskBase {
public:
    explicit Task(std::function<int()> body, eLifetime lifetime = lifetimeUsual)
        : BackgroundTaskBase(importanceHigh, lifetime), body_(std::move(body)) {}

private:
    int run() override { return body_(); }

    std::function<int()> const body_;
};

Ox::Ptr<Task> taskOf(std::function<int()> body) {
    return Ox::makePtr<Task>(std::move(body));
}

TEST(BackgroundTaskTest, KnowsWhatItWasMadeWith) {
    auto const task = Ox::makePtr<Task>([] { return 1; }, iBackgroundTask::lifetimeMemorable);
    EXPECT_EQ(task->getImportance(), iBackgroundTask::importanceHigh);
    EXPECT_TRUE(task->isMemorable());
    EXPECT_TRUE(task->shouldLogDuration());
    EXPECT_TRUE(task->isAbortable());
    EXPECT_EQ(task->getDescription(), L"");
    EXPECT_FALSE(task->getID().valid());
    EXPECT_TRUE(task->getLog());
}

TEST(BackgroundTaskTest, IsUsuallyNotMemorable) {
    EXPECT_FALSE(taskOf([] { return 1; })->isMemorable());
    EXPECT_EQ(taskOf([] { return 1; })->getLifetime(), iBackgroundTask::lifetimeUsual);
}

TEST(BackgroundTaskTest, ExecuteRunsItAndKeepsItsResult) {
    auto const task = taskOf([] { return 3; });
    task->execute();
    EXPECT_EQ(task->getResult(), 3);
    EXPECT_EQ(task->getStatus(), iBackgroundTask::ended);
    task->waitForCompletion();
}

TEST(BackgroundTaskTest, AStopThatWasAskedForStays) {
    Ox::Ptr<Task> task;
    task = taskOf([&] {
        task->abort();
        return 3;
    });
    task->execute();
    EXPECT_EQ(task->getStatus(), iBackgroundTask::stopAsked);
}

TEST(BackgroundTaskTest, AnExceptionEndsItWithALineInItsLog) {
    auto const task = taskOf([]() -> int { throw std::runtime_error("no luck"); });
    task->execute();
    task->waitForCompletion();
    auto const lines = Ox::dynamicPtrCast<MemoryTaskLog>(task->getLog())->lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, L"the task was broken off: no luck");
    EXPECT_EQ(lines[0].type, LoggerBase::errorLine);
    EXPECT_EQ(task->getResult(), BackgroundTaskBase::runFailed);
}

TEST(BackgroundTaskTest, ProgressIsThatOfItsLog) {
    auto const task = taskOf([] { return 1; });
    task->getLog()->reportProgress({}, 0.25);
    EXPECT_FLOAT_EQ(task->getProgress(), 0.25F);
}

TEST(BackgroundTaskTest, ListenersHearOfEveryChangeUntilTheyLeave) {
    std::vector<int> heard;
    auto const listener = Ox::makePtr<Ox::FunctionCallback<int, iBackgroundTask::Event>>(
        [&](iBackgroundTask::Event const& event) {
            heard.push_back(static_cast<int>(event.kind) * 10 + static_cast<int>(event.status));
            return 0;
        });
    auto const task = taskOf([] { return 1; });
    Ox::Ptr<Ox::Guard> guard = task->addListener(listener);
    task->execute();
    EXPECT_THAT(heard, ElementsAre(1, 2, 12));
    guard = nullptr;
    task->abort();
    EXPECT_EQ(heard.size(), 3U);
}

TEST(BackgroundTaskTest, ASubscriptionMayOutliveTheTask) {
    auto const listener = Ox::makePtr<Ox::FunctionCallback<int, iBackgroundTask::Event>>(
        [](iBackgroundTask::Event const&) { return 0; });
    Ox::Ptr<Ox::Guard> guard = taskOf([] { return 1; })->addListener(listener);
    guard = nullptr;
}

TEST(BackgroundTaskQueueTest, DoesOneAfterTheOtherInTheOrderOfArrivalOnOneThread) {
    std::vector<int> order;
    std::vector<std::thread::id> threads;
    std::vector<Ox::Ptr<Task>> tasks;
    for (int i = 0; i < 5; ++i) {
        tasks.push_back(taskOf([&, i] {
            order.push_back(i);
            threads.push_back(std::this_thread::get_id());
            return 1;
        }));
    }
    for (auto const& task : tasks) {
        UIBackgroundTasksQueue::instance().queue(task);
    }
    for (auto const& task : tasks) {
        task->waitForCompletion();
    }
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(threads, testing::Each(threads.front()));
    EXPECT_NE(threads.front(), std::this_thread::get_id());
}

TEST(BackgroundTaskQueueTest, TheWorkerKnowsTheStatusOfItsTask) {
    Gate stopped(false);
    std::vector<int> seen;
    auto const task = taskOf([&] {
        seen.push_back(BackgroundTaskQueueBase::getCurrentTaskStatus());
        stopped.pass();
        seen.push_back(BackgroundTaskQueueBase::getCurrentTaskStatus());
        return 3;
    });
    UIBackgroundTasksQueue::instance().queue(task);
    ASSERT_TRUE(stopped.waitForArrivals(1));
    EXPECT_NE(BackgroundTaskQueueBase::getCurrentTaskStatus(), iBackgroundTask::stopAsked);
    task->abort();
    stopped.open();
    task->waitForCompletion();
    EXPECT_THAT(seen, ElementsAre(iBackgroundTask::running, iBackgroundTask::stopAsked));
}

TEST(BackgroundTaskQueueTest, ATaskKnowsItsQueueAndIsHeldUntilItHasEnded) {
    Gate gate(false);
    auto task = taskOf([&] {
        gate.pass();
        return 1;
    });
    UIBackgroundTasksQueue::instance().queue(task);
    EXPECT_EQ(task->getQueue(), &UIBackgroundTasksQueue::instance());
    ASSERT_TRUE(gate.waitForArrivals(1));
    EXPECT_GT(task.useCount(), 1U);
    gate.open();
    task->waitForCompletion();
}

TEST(BackgroundTaskQueueTest, AnotherQueueMayBeInForce) {
    TaskShelf shelf;
    UIBackgroundTasksQueue::instance().queue(taskOf([] { return 1; }));
    EXPECT_EQ(shelf.tasks.size(), 1U);
}

}  // namespace
