#include "ole/os/BasicThread.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <utility>

#include "tests/fakes/ForwardingOS.h"
#include "tests/fakes/ForwardingThreadService.h"
#include "tests/fakes/Gate.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/fakes/WatchedThreads.h"

namespace test {
namespace {

/// A thread that does what a test tells it.
class Worker final : public BasicThread {
public:
    explicit Worker(std::function<void(Worker&)> body = [](Worker&) {}) : body_(std::move(body)) {}
    ~Worker() override { endThread(); }

    using BasicThread::endThread;
    using BasicThread::isRunning;
    using BasicThread::stopEvent;

    bool begin(char const* name = "worker", iThread::ePriority priority = iThread::normal) {
        return beginThread(name, priority);
    }
    void waitForStop() const { stopEvent()->wait(iThreadEvent::noTimeLimit); }

private:
    void threadFn() override { body_(*this); }

    std::function<void(Worker&)> const body_;
};

/// Gives no threads.
class NoThreads final : public ForwardingThreadService {
    Ox::Ptr<iThread> makeThread(ThreadDescription const&) override { return {}; }
};

class BasicThreadTest : public ::testing::Test {
protected:
    WatchedThreads& threads = WatchedThreads::instance();
};

TEST_F(BasicThreadTest, RunsItsBodyOnAThreadOfThatNameAndPriority) {
    Worker worker([](Worker& self) { self.waitForStop(); });
    ASSERT_TRUE(worker.begin("named", iThread::background));
    auto const made = threads.find("named");
    ASSERT_TRUE(made);
    EXPECT_EQ(made->priority, iThread::background);
    EXPECT_EQ(made->description.exceptionHandler, &threadExceptionHandler);
    EXPECT_EQ(made->description.stackSize, 0U);
}

TEST_F(BasicThreadTest, IsNotRunningBeforeItBegins) {
    Worker const worker;
    EXPECT_FALSE(worker.isRunning());
    EXPECT_FALSE(worker.isThisThread());
}

TEST_F(BasicThreadTest, IsRunningUntilItIsToEnd) {
    bool atFirst = false;
    bool afterStop = true;
    Gate began(true);
    Worker worker([&](Worker& self) {
        atFirst = self.isRunning();
        began.pass();
        self.waitForStop();
        afterStop = self.isRunning();
    });
    ASSERT_TRUE(worker.begin());
    ASSERT_TRUE(began.waitForArrivals(1));
    worker.endThread();
    EXPECT_TRUE(atFirst);
    EXPECT_FALSE(afterStop);
}

TEST_F(BasicThreadTest, WaitsForTheEndOfItsBody) {
    bool isOver = false;
    Worker worker([&](Worker& self) {
        self.waitForStop();
        isOver = true;
    });
    ASSERT_TRUE(worker.begin());
    worker.endThread();
    EXPECT_TRUE(isOver);
    EXPECT_EQ(threads.find("worker")->ended.arrivals(), 1U);
}

TEST_F(BasicThreadTest, ShowsItsBodyWhatWasDoneBeforeItWasToEnd) {
    int value = 0;
    int seen = -1;
    Worker worker([&](Worker& self) {
        while (self.isRunning()) {
        }
        seen = value;
    });
    ASSERT_TRUE(worker.begin());
    value = 5;
    worker.endThread();
    EXPECT_EQ(seen, 5);
}

TEST_F(BasicThreadTest, KeepsItsStopEventSet) {
    Worker worker([](Worker& self) {
        self.waitForStop();
        self.waitForStop();
    });
    ASSERT_TRUE(worker.begin());
    worker.endThread();
    EXPECT_EQ(worker.stopEvent()->wait(0), iThreadEvent::signalled);
}

TEST_F(BasicThreadTest, MayBeEndedTwiceAndWithoutAThread) {
    Worker worker([](Worker& self) { self.waitForStop(); });
    worker.endThread();
    EXPECT_EQ(worker.stopEvent()->wait(0), iThreadEvent::timedOut);
    ASSERT_TRUE(worker.begin());
    worker.endThread();
    worker.endThread();
}

TEST_F(BasicThreadTest, KnowsItsOwnThread) {
    Gate asked(false);
    bool isItself = false;
    Worker worker([&](Worker& self) {
        asked.pass();
        isItself = self.isThisThread();
    });
    ASSERT_TRUE(worker.begin());
    EXPECT_FALSE(worker.isThisThread());
    asked.open();
    worker.endThread();
    EXPECT_TRUE(isItself);
    EXPECT_FALSE(worker.isThisThread());
}

TEST_F(BasicThreadTest, LeavesAnExceptionToTheHandler) {
    LogRecorder const log;
    Worker worker([](Worker&) { throw std::runtime_error("no more"); });
    ASSERT_TRUE(worker.begin("thrower"));
    worker.endThread();
    EXPECT_EQ(log.count("thrower"), 1U);
    EXPECT_EQ(log.count("no more"), 1U);
}

TEST(BasicThreadWithoutAThread, SaysSoAndIsNotRunning) {
    NoThreads noThreads;
    ForwardingOS system;
    system.threads = &noThreads;
    Worker worker;
    EXPECT_FALSE(worker.begin());
    EXPECT_FALSE(worker.isRunning());
    worker.endThread();
}

}  // namespace
}  // namespace test
