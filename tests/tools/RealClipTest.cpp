#include <cstdlib>
#include <filesystem>

#include <map>

#include "tests/tools/ToolTest.h"
#include "tools/playfile/Md5.h"

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

class RealFile : public ToolTest, public testing::WithParamInterface<std::string> {
protected:
    /// Holds each line of `playfile audio --md5` against the ffmpeg program's decode of that channel.
    void expectSoundOfALinearDecode(Ended const& ended) const {
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        std::map<std::string, std::vector<std::string>> linesOfStream;
        for (std::string const& line : linesOf(ended.out)) {
            linesOfStream[fieldsOf(line).at(1)].push_back(line);
        }
        EXPECT_FALSE(linesOfStream.empty());
        for (auto const& [stream, lines] : linesOfStream) {
            expectStream(stream, lines);
        }
    }

private:
    void expectStream(std::string const& stream, std::vector<std::string> const& lines) const {
        std::string const form = fieldsOf(lines.front()).at(2);
        std::string const samples = decode(stream, form + (form == "u8" ? "" : "le"));
        std::size_t const bytes = form == "u8" ? 1 : std::stoul(form.substr(1)) / 8;
        for (std::size_t channel = 0; channel < lines.size(); ++channel) {
            std::string alone;
            for (std::size_t at = channel * bytes; at < samples.size(); at += lines.size() * bytes) {
                alone.append(samples, at, bytes);
            }
            std::vector<std::string> const fields = fieldsOf(lines[channel]);
            EXPECT_EQ(fields.at(4), std::to_string(alone.size() / bytes)) << lines[channel];
            EXPECT_EQ(fields.at(5), cli::asHex(cli::Md5::of(alone.data(), alone.size()))) << lines[channel];
        }
    }
    [[nodiscard]] std::string decode(std::string const& stream, std::string const& form) const {
        Ended const ended = runOther({"ffmpeg", "-v", "quiet", "-nostdin", "-i", GetParam(), "-map",
                                      "0:a:" + stream, "-c:a", "pcm_" + form, "-f", form, "-"});
        return ended.out;
    }
};
class RealClip : public RealFile {};
class RealSound : public RealFile {};

/// False for codecs whose output after a jump is near the linear decode's, but not the same.
bool isRepeatable(std::string const& path) {
    return path.find("opus") == std::string::npos;
}

class DamagedFile : public ToolTest, public testing::WithParamInterface<std::string> {};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealClip);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealSound);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DamagedFile);

INSTANTIATE_TEST_SUITE_P(Of, RealClip, testing::ValuesIn(realFiles({"video", "images"})), testName);
INSTANTIATE_TEST_SUITE_P(Of, RealSound, testing::ValuesIn(realFiles({"audio"})), testName);
INSTANTIATE_TEST_SUITE_P(Of, DamagedFile, testing::ValuesIn(realFiles({"damaged"})), testName);

TEST_P(RealClip, FramesFromFourThreadsAreThoseOfALinearDecode) {
    Ended const ended = run({"frames", GetParam(), "--samples", "all", "--md5", "--threads", "4"});
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

TEST_P(RealSound, EveryChannelIsThatOfALinearDecode) {
    expectSoundOfALinearDecode(run({"audio", GetParam(), "--md5"}));
}

TEST_P(RealSound, BlocksAtRandomAreThoseOfALinearDecodeOrNearIt) {
    Ended const forward = run({"audio", GetParam(), "--md5"});
    Ended const random = run({"audio", GetParam(), "--md5", "--order", "random:1", "--threads", "4"});
    EXPECT_EQ(random.exitCode, 0) << random.err;
    if (isRepeatable(GetParam())) {
        EXPECT_EQ(random.out, forward.out);
    } else {
        EXPECT_EQ(linesOf(random.out).size(), linesOf(forward.out).size());
    }
}

TEST_P(RealSound, IsShown) {
    Ended const ended = run({"show", GetParam(), "--out", path("out")});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(runOther({"ffprobe", "-v", "error", path("out/waveform_01.png")}).err, "");
}

TEST_P(RealClip, ItsSoundIsThatOfALinearDecode) {
    Ended const probed = runOther({"ffprobe", "-v", "error", "-select_streams", "a", "-show_entries",
                                   "stream=index", "-of", "csv=p=0", GetParam()});
    Ended const ended = run({"audio", GetParam(), "--md5"});
    if (linesOf(probed.out).empty()) {
        EXPECT_EQ(ended.exitCode, 1);
        EXPECT_THAT(ended.err, HasSubstr("has no sound"));
    } else {
        expectSoundOfALinearDecode(ended);
    }
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
