/// Every test has a process of its own, so that what is read once is read once for each test.
#include "playfile/Settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

#include "playfile/playfile.h"
#include "toolkit/services/Settings.h"

namespace {

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

TEST(Settings, HaveTheirDefaults) {
    EXPECT_EQ(getNumThreads(), 4);
    EXPECT_EQ(getReadPollDelay(), 50);
    EXPECT_EQ(readCacheSizeMin(), 2);
    EXPECT_EQ(readCacheSizeMax(), 4);
}

TEST(Settings, ComeFromTheStore) {
    setConfigInt("numReaderThreads", 7);
    setConfigInt("ReadPollDelay", 8);
    setConfigInt("playfileCacheSizeMin", 9);
    setConfigInt("playfileCacheSizeMax", 10);
    EXPECT_EQ(getNumThreads(), 7);
    EXPECT_EQ(getReadPollDelay(), 8);
    EXPECT_EQ(readCacheSizeMin(), 9);
    EXPECT_EQ(readCacheSizeMax(), 10);
}

TEST(Settings, ComeFromTheEnvironmentBeforeTheStore) {
    setenv("PLAYFILE_numReaderThreads", "11", 1);
    setConfigInt("numReaderThreads", 7);
    EXPECT_EQ(getNumThreads(), 11);
}

TEST(Settings, NumberOfThreadsIsReadOnce) {
    EXPECT_EQ(getNumThreads(), 4);
    setConfigInt("numReaderThreads", 7);
    EXPECT_EQ(getNumThreads(), 4);
}

TEST(Settings, PollDelayIsReadOnce) {
    EXPECT_EQ(getReadPollDelay(), 50);
    setConfigInt("ReadPollDelay", 7);
    EXPECT_EQ(getReadPollDelay(), 50);
}

TEST(Settings, InitReadsHowManyThreadsOpenAhead) {
    playfile_init();
    setConfigInt("numReaderThreads", 7);
    EXPECT_EQ(getNumThreads(), 4);
}

TEST(Settings, InitLeavesThePollDelayToTheFirstQueue) {
    playfile_init();
    setConfigInt("ReadPollDelay", 8);
    EXPECT_EQ(getReadPollDelay(), 8);
}

TEST(Settings, HaveNoLowerBound) {
    setConfigInt("numReaderThreads", lowest);
    setConfigInt("ReadPollDelay", lowest);
    setConfigInt("playfileCacheSizeMin", lowest);
    setConfigInt("playfileCacheSizeMax", lowest);
    EXPECT_EQ(getNumThreads(), lowest);
    EXPECT_EQ(getReadPollDelay(), lowest);
    EXPECT_EQ(readCacheSizeMin(), lowest);
    EXPECT_EQ(readCacheSizeMax(), lowest);
}

TEST(Settings, HaveNoUpperBound) {
    setConfigInt("numReaderThreads", highest);
    setConfigInt("playfileCacheSizeMax", highest);
    EXPECT_EQ(getNumThreads(), highest);
    EXPECT_EQ(readCacheSizeMax(), highest);
}

TEST(Settings, GiveEveryThreadTheSameFirstValue) {
    setConfigInt("numReaderThreads", 6);
    std::mutex lock;
    std::vector<int> values;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&] {
                int const value = getNumThreads();
                std::scoped_lock const scope(lock);
                values.push_back(value);
            });
        }
    }
    EXPECT_THAT(values, testing::Each(6));
}

}  // namespace
