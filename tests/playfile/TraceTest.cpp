#include "playfile/Trace.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "tests/fakes/LogRecorder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ThreadState.h"
#include "tests/support/TraceFile.h"

namespace {

void note(char const* name, std::int64_t number = 0) {
    TraceSlice slice("test", name);
    slice.with("number", number);
}

class TraceTest : public ::testing::Test, protected TraceFile {};

TEST_F(TraceTest, IsAnArrayOfEventsInTheOrderOfTheThread) {
    note("first");
    note("second");
    Json const all = allEvents();
    ASSERT_TRUE(all.is_array());
    EXPECT_EQ(all[0]["name"], "process_name");
    EXPECT_EQ(all[2]["name"], "first");
    EXPECT_EQ(all[3]["name"], "second");
}

TEST_F(TraceTest, ASliceHasItsThreadItsBeginningAndItsLength) {
    std::int64_t const before = PlayFileTrace::now();
    note("work", 42);
    Json const event = only("work");
    EXPECT_EQ(event["ph"], "X");
    EXPECT_EQ(event["pid"], getpid());
    EXPECT_EQ(event["tid"], gettid());
    EXPECT_GE(event["ts"].get<double>() * 1000 + 1, static_cast<double>(before));
    EXPECT_GE(event["dur"], 0.0);
    EXPECT_EQ(event["args"]["number"], 42);
}

TEST_F(TraceTest, TellsTheNameOfEachThread) {
    std::thread([] {
        pthread_setname_np(pthread_self(), "a reader");
        note("work");
    }).join();
    Json const thread = only("work")["tid"];
    Events const names = named("thread_name");
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names[0]["tid"], thread);
    EXPECT_EQ(names[0]["args"]["name"], "a reader");
}

TEST_F(TraceTest, LosesNothingOfManyThreadsThatNoteMoreThanTheyKeep) {
    constexpr std::int64_t eventsEach = 3000;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (std::int64_t number = 0; number < eventsEach; ++number) {
                note("work", number);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::map<int, std::int64_t> next;
    for (Json const& event : named("work")) {
        EXPECT_EQ(event["args"]["number"], next[event["tid"]]++);
    }
    EXPECT_EQ(next.size(), 4U);
    for (auto const& [thread, count] : next) {
        EXPECT_EQ(count, eventsEach) << thread;
    }
}

TEST_F(TraceTest, RequestsHaveNumbersOfTheirOwn) {
    std::uint64_t const first = PlayFileTrace::nextRequest();
    EXPECT_NE(first, 0U);
    EXPECT_NE(PlayFileTrace::nextRequest(), first);
}

TEST_F(TraceTest, StepsOfARequestBearItsNumberAsTheirIdentity) {
    PlayFileTrace::step(TraceEvent::requestStep, "test", "step", 7, {"into", 8});
    Json const event = only("step");
    EXPECT_EQ(event["ph"], "n");
    EXPECT_EQ(event["id"], "7");
    EXPECT_EQ(event["args"]["request"], 7);
    EXPECT_EQ(event["args"]["into"], 8);
}

TEST_F(TraceTest, StepsOfARequestWithoutANumberAreLeftOut) {
    note("another");
    PlayFileTrace::step(TraceEvent::requestStep, "test", "step", 0);
    EXPECT_TRUE(named("step").empty());
}

TEST_F(TraceTest, ItsEndIsFinal) {
    note("before");
    PlayFileTrace::finish();
    std::string const written = text();
    EXPECT_FALSE(PlayFileTrace::isOn());
    note("after");
    PlayFileTrace::finish();
    EXPECT_EQ(text(), written);
}

TEST_F(TraceTest, AThreadMayEndWithASliceThatOutlivesTheTrace) {
    {
        TraceSlice const slice("test", "late");
        EXPECT_TRUE(allEvents().is_array());
    }
    EXPECT_TRUE(named("late").empty());
}

TEST_F(TraceTest, NormalExitWritesItWhole) {
    test::ChildProcess child("traced", {"exit"});
    EXPECT_EQ(child.waitForEnd().exitCode, 0);
    EXPECT_EQ(named("before the end").size(), 10U);
}

TEST_F(TraceTest, AProcessThatIsKilledLeavesAllThatWasWritten) {
    test::ChildProcess child("traced", {"killed"});
    ASSERT_EQ(child.readLine(), "ready");
    child.kill();
    static_cast<void>(child.waitForEnd());
    Json const events = Json::parse(text() + "]");
    EXPECT_GT(events.size(), 1000U);
}

TEST_F(TraceTest, AForkedProcessLeavesItsParentsFileAlone) {
    test::ChildProcess child("traced", {"fork"});
    EXPECT_EQ(child.waitForEnd().output, "child: 0\n");
    EXPECT_EQ(named("of the parent").size(), 10U);
    EXPECT_EQ(named("of the child").size(), 0U);
}

/// Its file is a pipe, so that opening it takes until the test reads.
class SlowTraceTest : public ::testing::Test, protected TraceFile {
protected:
    SlowTraceTest() { mkfifo(folder.file("trace.json").c_str(), 0600); }
};

TEST_F(SlowTraceTest, WhoAsksWhileAnotherBeginsItWaitsForTheAnswer) {
    std::array<std::atomic<int>, 2> threads{};
    std::array<bool, 2> isOn{};
    std::ifstream reader;
    {
        std::vector<std::jthread> asking;
        for (std::size_t i = 0; i < threads.size(); ++i) {
            asking.emplace_back([&, i] {
                threads[i] = gettid();
                isOn[i] = PlayFileTrace::isOn();
            });
            test::waitForSleep(threads[i]);
        }
        reader.open(folder.file("trace.json"));
    }
    PlayFileTrace::finish();
    EXPECT_TRUE(isOn[0]);
    EXPECT_TRUE(isOn[1]);
}

class NumberedTraceTest : public ::testing::Test, protected TraceFile {
protected:
    NumberedTraceTest() : TraceFile("of-%p.json") {}
};

TEST_F(NumberedTraceTest, TheProcessNumberStandsWhereTheNameAsksForIt) {
    note("work");
    PlayFileTrace::finish();
    EXPECT_TRUE(folder.holds("of-" + std::to_string(getpid()) + ".json"));
}

class NoTraceTest : public ::testing::Test {
protected:
    static void expectNothing() {
        EXPECT_FALSE(PlayFileTrace::isOn());
        EXPECT_EQ(PlayFileTrace::nextRequest(), 0U);
        note("work");
        PlayFileTrace::finish();
    }
    std::size_t const filesBefore = countFiles();

    static std::size_t countFiles() {
        using Iterator = std::filesystem::directory_iterator;
        return static_cast<std::size_t>(std::distance(Iterator("."), Iterator()));
    }
    test::LogRecorder const log;
};

TEST_F(NoTraceTest, NothingIsTracedUnlessItIsAskedFor) {
    unsetenv("PLAYFILE_TRACE");
    expectNothing();
    EXPECT_EQ(countFiles(), filesBefore);
}

TEST_F(NoTraceTest, NothingIsTracedForAnEmptyName) {
    setenv("PLAYFILE_TRACE", "", 1);
    expectNothing();
    EXPECT_TRUE(log.log().empty());
}

TEST_F(NoTraceTest, SaysOnceThatTheFileCannotBeMade) {
    setenv("PLAYFILE_TRACE", "/no such folder/trace.json", 1);
    expectNothing();
    expectNothing();
    EXPECT_EQ(log.log(),
              (test::LogRecorder::Lines{"The trace \"/no such folder/trace.json\" can't be written (No such "
                                        "file or directory); nothing is traced\n"}));
}

TEST_F(NoTraceTest, SaysOnceThatTheDiskIsFull) {
    setenv("PLAYFILE_TRACE", "/dev/full", 1);
    expectNothing();
    expectNothing();
    EXPECT_EQ(log.count("The trace \"/dev/full\" can't be written (No space left on device)"), 1U);
}

}  // namespace
