#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <memory>
#include <random>
#include <thread>

#include "tests/real/OpenClip.h"
#include "tests/real/RealMedia.h"

namespace test {
namespace {

constexpr std::uint32_t readCount = turns(10'000);

/// Clips of different codecs beside the frames that are shown of them.
class RandomDecode : public testing::Test {
protected:
    struct Known {
        std::unique_ptr<OpenClip> clip;
        std::vector<std::string> shown;
    };

    void SetUp() override {
        for (std::string const& path : smallClips()) {
            std::vector<std::string> shown = shownFrames(path);
            if (!shown.empty()) {
                clips_.push_back({std::make_unique<OpenClip>(path), std::move(shown)});
            }
        }
        ASSERT_GE(clips_.size(), 6U);
    }

    /// Reads frames at random; how many weren't the ones that are shown.
    [[nodiscard]] std::uint32_t readAtRandom(std::uint32_t seed, std::uint32_t count) const {
        std::mt19937 random(seed);
        std::uint32_t wrong = 0;
        for (std::uint32_t i = 0; i < count; ++i) {
            Known const& known = clips_[random() % clips_.size()];
            auto const frame = static_cast<std::uint32_t>(random() % known.shown.size());
            wrong += known.clip->sumOf(frame) != known.shown[frame];
        }
        return wrong;
    }

    std::vector<Known> clips_;
};

TEST_F(RandomDecode, FramesAtRandomAreThoseThatAreShown) {
    EXPECT_EQ(readAtRandom(20261121, readCount), 0U);
}

TEST_F(RandomDecode, FramesAtRandomFromFourThreadsAreThoseThatAreShown) {
    constexpr std::uint32_t threadCount = 4;
    std::atomic<std::uint32_t> wrong{0};
    std::vector<std::thread> threads;
    for (std::uint32_t seed = 1; seed <= threadCount; ++seed) {
        threads.emplace_back([&, seed] { wrong += readAtRandom(seed, readCount / threadCount); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0U);
}

}  // namespace
}  // namespace test
