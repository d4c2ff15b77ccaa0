#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>
#include <string>

#include "ole/os/OS.h"
#include "tests/fakes/LogRecorder.h"

namespace test {
namespace {

constexpr std::uint32_t noTimeLimit = iThread::noTimeLimit;

int runFunction(void* function) {
    (*static_cast<std::function<void()>*>(function))();
    return 0;
}

/// One thread of the thread service that runs `work`, and has ended by the end of the test.
class ThreadContract : public ::testing::Test {
protected:
    void TearDown() override {
        if (thread_) {
            EXPECT_TRUE(thread_->waitForEnd(noTimeLimit));
        }
    }

    Ox::Ptr<iThread> const& start(std::function<void()> work) {
        work_ = std::move(work);
        description_.entry = &runFunction;
        description_.argument = &work_;
        thread_ = OS()->getThreads().makeThread(description_);
        return thread_;
    }
    /// Runs it to its end.
    void run(std::function<void()> work) { start(std::move(work))->waitForEnd(noTimeLimit); }

    static int processorsOfThisThread() {
        cpu_set_t processors;
        sched_getaffinity(0, sizeof(processors), &processors);
        return CPU_COUNT(&processors);
    }
    static int maskOfOneProcessor() {
        cpu_set_t processors;
        sched_getaffinity(0, sizeof(processors), &processors);
        int first = 0;
        while (!CPU_ISSET(first, &processors)) {
            ++first;
        }
        return 1 << first;
    }
    static int niceOfThisThread() { return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); }

    ThreadDescription description_;
    Ox::Ptr<iThread> thread_;
    ThreadEventPtr const go_ = OS()->getThreads().makeEvent(true, false, 0);

private:
    std::function<void()> work_;
};

TEST_F(ThreadContract, RunsItsEntryFunctionWithItsArgument) {
    bool hasRun = false;
    run([&] { hasRun = true; });
    EXPECT_TRUE(hasRun);
}

TEST_F(ThreadContract, TellsThatItHasNotEnded) {
    start([this] { go_->wait(noTimeLimit); });
    EXPECT_FALSE(thread_->waitForEnd(1));
    go_->set();
}

TEST_F(ThreadContract, TellsItsEndToAllWhoAsk) {
    run([] {});
    EXPECT_TRUE(thread_->waitForEnd(0));
    EXPECT_TRUE(thread_->waitForEnd(0));
}

TEST_F(ThreadContract, DoesNotWaitForItsOwnEnd) {
    bool hasEnded = true;
    start([&] {
        go_->wait(noTimeLimit);
        hasEnded = thread_->waitForEnd(noTimeLimit);
    });
    go_->set();
    thread_->waitForEnd(noTimeLimit);
    EXPECT_FALSE(hasEnded);
}

TEST_F(ThreadContract, KnowsItself) {
    bool isItself = false;
    start([&] {
        go_->wait(noTimeLimit);
        isItself = thread_->isThisThread();
    });
    EXPECT_FALSE(thread_->isThisThread());
    go_->set();
    thread_->waitForEnd(noTimeLimit);
    EXPECT_TRUE(isItself);
}

TEST_F(ThreadContract, RunsOnWhenItsPointerIsDropped) {
    auto const ended = OS()->getThreads().makeEvent(true, false, 0);
    start([&] {
        go_->wait(noTimeLimit);
        ended->set();
    });
    thread_ = nullptr;
    go_->set();
    EXPECT_EQ(iThreadEvent::signalled, ended->wait(noTimeLimit));
}

TEST_F(ThreadContract, KeepsItsWholeNameAndShowsTheKernelItsStart) {
    description_.name = "DQ<Ox::PreOpenRequest>";
    char shown[16] = {};
    run([&] { pthread_getname_np(pthread_self(), shown, sizeof(shown)); });
    EXPECT_STREQ("DQ<Ox::PreOpenR", shown);
    EXPECT_STREQ("DQ<Ox::PreOpenRequest>", thread_->getName().c_str());
}

TEST_F(ThreadContract, CutsNoCharacterOfItsNameInTwo) {
    description_.name = "Vierzehn-Bytes\xC3\xA4rgerlich";
    char shown[16] = {};
    run([&] { pthread_getname_np(pthread_self(), shown, sizeof(shown)); });
    EXPECT_STREQ("Vierzehn-Bytes", shown);
}

TEST_F(ThreadContract, TakesTheSmallestStackThatThereIs) {
    description_.stackSize = 1;
    bool hasRun = false;
    run([&] { hasRun = true; });
    EXPECT_TRUE(hasRun);
}

TEST_F(ThreadContract, HasTheStackThatWasAskedFor) {
    constexpr std::uint32_t stackSize = 0x80000;
    description_.stackSize = stackSize;
    std::size_t given = 0;
    run([&] {
        pthread_attr_t attributes;
        pthread_getattr_np(pthread_self(), &attributes);
        pthread_attr_getstacksize(&attributes, &given);
        pthread_attr_destroy(&attributes);
    });
    EXPECT_GE(given, stackSize);
}

TEST_F(ThreadContract, HandsAnExceptionToItsHandlerAndEnds) {
    static std::string said;
    description_.name = "worker";
    description_.exceptionHandler = [](iThread::Exception const& exception) {
        said = exception.threadName.str() + ": " + exception.message.str();
    };
    run([] { throw std::runtime_error("out of order"); });
    EXPECT_EQ("worker: out of order", said);
}

TEST_F(ThreadContract, HandsOnWhatIsNoException) {
    static std::string said;
    description_.exceptionHandler = [](iThread::Exception const& exception) {
        said = exception.message.str();
    };
    run([] { throw 7; });
    EXPECT_EQ("unknown exception", said);
}

TEST_F(ThreadContract, TheQueuesHandlerLogsThreadAndMessage) {
    LogRecorder log;
    description_.name = "video %s";
    description_.exceptionHandler = &threadExceptionHandler;
    run([] { throw std::runtime_error("no %n frame"); });
    EXPECT_EQ(1U, log.count("video %s"));
    EXPECT_EQ(1U, log.count("no %n frame"));
}

TEST_F(ThreadContract, WithoutAHandlerAnExceptionEndsTheProcess) {
    EXPECT_DEATH(run([] { throw std::runtime_error("nobody listens"); }), "nobody listens");
}

TEST_F(ThreadContract, ABackgroundThreadIsOneStepBehind) {
    int after = 0;
    start([&] {
        go_->wait(noTimeLimit);
        after = niceOfThisThread();
    });
    EXPECT_TRUE(thread_->setPriority(iThread::background));
    go_->set();
    thread_->waitForEnd(noTimeLimit);
    EXPECT_EQ(niceOfThisThread() + 1, after);
}

TEST_F(ThreadContract, ANormalPriorityIsNeverRefused) {
    start([&] { go_->wait(noTimeLimit); });
    EXPECT_TRUE(thread_->setPriority(iThread::background));
    EXPECT_TRUE(thread_->setPriority(iThread::normal));
    go_->set();
}

TEST_F(ThreadContract, AThreadThatHasEndedTakesNoPriority) {
    run([] {});
    EXPECT_FALSE(thread_->setPriority(iThread::background));
}

TEST_F(ThreadContract, RunsOnTheProcessorsOfItsMask) {
    auto const looked = OS()->getThreads().makeEvent(false, false, 0);
    int count = 0;
    start([&] {
        go_->wait(noTimeLimit);
        count = processorsOfThisThread();
        looked->set();
    });
    thread_->setAffinity(maskOfOneProcessor());
    go_->set();
    looked->wait(noTimeLimit);
    EXPECT_EQ(1, count);
}

TEST_F(ThreadContract, AMaskOfAllTakesABindingBack) {
    int count = 0;
    start([&] {
        go_->wait(noTimeLimit);
        count = processorsOfThisThread();
    });
    thread_->setAffinity(maskOfOneProcessor());
    thread_->setAffinity(-1);
    go_->set();
    thread_->waitForEnd(noTimeLimit);
    EXPECT_EQ(processorsOfThisThread(), count);
}

TEST(ProcessorCount, IsThatOfTheProcessorsThatTheProcessMayUse) {
    cpu_set_t own;
    ASSERT_EQ(0, sched_getaffinity(0, sizeof(own), &own));
    EXPECT_EQ(static_cast<unsigned>(CPU_COUNT(&own)), OS()->getProcessorCount());
}

TEST(DebugService, TellsTheStack) {
    EXPECT_NE("", OS()->getDebug().takeStackTrace().view());
}

}  // namespace
}  // namespace test
