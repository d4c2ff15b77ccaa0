#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

#include "tests/real/OpenClip.h"
#include "tests/real/RealMedia.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

constexpr std::uint32_t mutationCount = turns(500);
constexpr std::size_t largestOriginal = 700'000;

std::string bytesOf(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// Opens a file and asks for its first frames, its last and one past that; whatever comes of it.
void readWhatCanBeHad(std::string const& path) {
    OpenClip const clip(path);
    std::uint32_t const count = clip.frameCount();
    for (std::uint32_t const frame : {0U, 1U, 2U, count / 2, count - 1, count}) {
        static_cast<void>(clip.sumOf(frame));
    }
}

class DamagedFile : public testing::TestWithParam<std::string> {};

TEST_P(DamagedFile, IsReadAsFarAsItCanBeOrRefused) {
    readWhatCanBeHad(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedFile, testing::ValuesIn(damagedFiles()),
                         [](testing::TestParamInfo<std::string> const& file) {
                             return std::to_string(file.index) + "_" + testNameOf(file.param);
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DamagedFile);

/// Damages good files at random, each time another.
class Mutations : public testing::Test {
protected:
    void SetUp() override {
        for (std::string const& clip : smallClips()) {
            std::string bytes = bytesOf(clip);
            if (!bytes.empty() && bytes.size() <= largestOriginal) {
                originals_.push_back(std::move(bytes));
            }
        }
        ASSERT_FALSE(originals_.empty());
    }

    [[nodiscard]] std::string const& anOriginal() { return originals_[random_() % originals_.size()]; }
    [[nodiscard]] std::size_t below(std::size_t limit) { return random_() % limit; }

    void readDamaged(std::string const& bytes, std::uint32_t number) {
        std::string const name = "damaged" + std::to_string(number);
        folder_.write(name, bytes);
        readWhatCanBeHad(folder_.file(name));
        std::filesystem::remove(folder_.file(name));
    }

    TemporaryFolder folder_;
    std::mt19937 random_{20261121};
    std::vector<std::string> originals_;
};

TEST_F(Mutations, FilesCutAtRandomNeitherCrashNorHang) {
    for (std::uint32_t i = 0; i < mutationCount / 2; ++i) {
        std::string const& whole = anOriginal();
        readDamaged(whole.substr(0, below(whole.size())), i);
    }
}

TEST_F(Mutations, FilesWithFlippedBitsNeitherCrashNorHang) {
    for (std::uint32_t i = 0; i < mutationCount / 2; ++i) {
        std::string bytes = anOriginal();
        for (std::size_t flips = 1 + below(8); flips > 0; --flips) {
            bytes[below(bytes.size())] ^= static_cast<char>(1U << below(8));
        }
        readDamaged(bytes, i);
    }
}

/// Frames that can't be decoded, of a file whose index says that they are there.
TEST(DamagedFrame, FailsAndShiftsNoOther) {
    std::vector<std::string> const files = damagedFiles();
    auto const found = std::find_if(files.begin(), files.end(), [](std::string const& file) {
        return file.ends_with("bad_nal_sizes.mp4");
    });
    if (found == files.end()) {
        return;
    }
    std::vector<std::string> const shown = shownFrames(*found);
    OpenClip const clip(*found);
    std::vector<std::string> good;
    for (std::uint32_t frame = 0; frame < clip.frameCount(); ++frame) {
        std::string const sum = clip.sumOf(frame);
        if (!sum.empty()) {
            good.push_back(sum);
        }
    }
    EXPECT_EQ(clip.frameCount(), 50U);
    EXPECT_EQ(good, shown);
}

}  // namespace
}  // namespace test
