#include <cstdlib>
#include <filesystem>

#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using testing::HasSubstr;

/// The files of the folders below the one that PLAYFILE_REAL_MEDIA names; none without it.
std::vector<std::string> realFiles(std::vector<std::string> const& folders) {
    std::vector<std::string> files;
    char const* const root = std::getenv("PLAYFILE_REAL_MEDIA");
    if (!root) {
        return files;
    }
    for (std::string const& folder : folders) {
        for (auto const& entry :
             std::filesystem::recursive_directory_iterator(std::filesystem::path(root) / folder)) {
            if (entry.is_regular_file()) {
                files.push_back(entry.path().string());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string testName(testing::TestParamInfo<std::string> const& info) {
    std::string name = std::filesystem::path(info.param).filename().string();
    for (char& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    }
    return name;
}

class RealClip : public ToolTest, public testing::WithParamInterface<std::string> {};
class RealSound : public ToolTest, public testing::WithParamInterface<std::string> {};
class DamagedFile : public ToolTest, public testing::WithParamInterface<std::string> {};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealClip);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealSound);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DamagedFile);

INSTANTIATE_TEST_SUITE_P(Of, RealClip, testing::ValuesIn(realFiles({"video", "images"})), testName);
INSTANTIATE_TEST_SUITE_P(Of, RealSound, testing::ValuesIn(realFiles({"audio"})), testName);
INSTANTIATE_TEST_SUITE_P(Of, DamagedFile, testing::ValuesIn(realFiles({"damaged"})), testName);

TEST_P(RealClip, FramesFromFourThreadsAreThoseOfALinearDecode) {
    Ended const ended = run({"frames", GetParam(), "--md5", "--threads", "4"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(sumsOf(ended.out), linearSums(GetParam()));
}

TEST_P(RealClip, IsShown) {
    Ended const ended = run({"show", GetParam(), "--out", path("out")});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(runOther({"ffprobe", "-v", "error", path("out/contact_sheet.png")}).err, "");
}

TEST_P(RealSound, IsDescribedAndHasNoFrames) {
    Ended const info = run({"info", GetParam()});
    EXPECT_EQ(info.exitCode, 0) << info.err;
    EXPECT_THAT(info.out, HasSubstr("codec: "));
    Ended const frames = run({"frames", GetParam(), "--md5"});
    EXPECT_EQ(frames.exitCode, 1);
    EXPECT_THAT(frames.err, HasSubstr("has no video stream"));
}

/// How much of it can be read is the reader's matter; what is said of it must be plain.
TEST_P(DamagedFile, EndsWithoutACrashAndInPlainWords) {
    for (Arguments const& arguments :
         {Arguments{"info", GetParam()}, Arguments{"frames", GetParam(), "--md5"},
          Arguments{"show", GetParam(), "--out", path("out")}}) {
        Ended const ended = run(arguments);
        EXPECT_THAT(ended.exitCode, testing::AnyOf(0, 1)) << ended.err;
        EXPECT_EQ(ended.exitCode == 0 || !ended.err.empty(), true);
        for (std::string const& line : linesOf(ended.err)) {
            EXPECT_TRUE(line.starts_with("playfile: ")) << line;
        }
    }
}

}  // namespace
}  // namespace tooltest
