#include "bench/soak/Growth.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

namespace {

using soak::Footprint;
using soak::Growth;

/// A run whose figures are those of `at` for every hundredth of it.
template <class At>
std::vector<Growth> run(At const& at) {
    std::vector<Footprint> samples;
    for (int i = 0; i < 100; ++i) {
        samples.push_back(at(i));
    }
    return soak::growthOf(samples);
}

TEST(SoakGrowth, FindsMemoryThatGrowsToTheEnd) {
    auto const growth = run([](int i) { return Footprint{100.0 + 2 * i, 10, 20}; });
    EXPECT_TRUE(growth[0].hasGrown());
    EXPECT_FALSE(growth[1].hasGrown());
    EXPECT_FALSE(growth[2].hasGrown());
}

TEST(SoakGrowth, FindsThreadsThatAreLeftBehind) {
    auto const growth = run([](int i) { return Footprint{100, 10 + i * 0.5, 20}; });
    EXPECT_TRUE(growth[1].hasGrown());
}

TEST(SoakGrowth, FindsDescriptorsThatAreLeftOpen) {
    auto const growth = run([](int i) { return Footprint{100, 10, 20.0 + i}; });
    EXPECT_TRUE(growth[2].hasGrown());
}

TEST(SoakGrowth, ForgivesWhatGrewInTheFirstHalf) {
    auto const growth = run([](int i) { return Footprint{i < 50 ? 10.0 * i : 500, i < 50 ? 1.0 : 90, 20}; });
    EXPECT_FALSE(growth[0].hasGrown());
    EXPECT_FALSE(growth[1].hasGrown());
}

TEST(SoakGrowth, ForgivesAPeakThatPasses) {
    auto const growth = run([](int i) { return Footprint{i > 80 && i < 90 ? 4000.0 : 300, 10, 20}; });
    EXPECT_FALSE(growth[0].hasGrown());
}

TEST(SoakGrowth, SaysWhatItCompared) {
    Growth const growth{"threads", 10, 20, {0.1, 3}};
    EXPECT_EQ(growth.text(),
              "threads      third quarter     10.0, last     20.0, may grow by 10 % and 3: IT GREW");
}

/// A sanitizer's own thread begins with the first thread of the process.
TEST(SoakFootprint, CountsTheThreadsAndDescriptorsOfTheProcess) {
    std::jthread([] {}).join();
    Footprint const before = Footprint::now();
    int const file = open("/dev/null", O_RDONLY | O_CLOEXEC);
    std::jthread const thread([](std::stop_token const& stop) {
        while (!stop.stop_requested()) {
            std::this_thread::yield();
        }
    });
    Footprint const after = Footprint::now();
    close(file);
    EXPECT_EQ(after.descriptors, before.descriptors + 1);
    EXPECT_EQ(after.threads, before.threads + 1);
}

TEST(SoakFootprint, SeesMemoryThatIsTouched) {
    Footprint const before = Footprint::now();
    std::vector<char> const block(std::size_t{64} << 20, 'x');
    EXPECT_GT(Footprint::now().residentMiB, before.residentMiB + 60) << block.back();
}

}  // namespace
