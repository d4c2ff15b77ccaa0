#include <algorithm>
#include <filesystem>
#include <set>

#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class FramesCommand : public ToolTest {
protected:
    /// The sums that the command tells, which must be all it does.
    [[nodiscard]] std::vector<std::string> sums(std::string const& file, Arguments const& options) const {
        Arguments arguments{"frames", file, "--md5"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        Ended const ended = run(arguments);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        EXPECT_THAT(ended.err, IsEmpty());
        return sumsOf(ended.out);
    }

    /// The frame numbers that the command tells, in its order.
    [[nodiscard]] std::vector<std::string> numbers(std::string const& file, Arguments const& options) const {
        std::vector<std::string> result;
        for (std::string const& sum : sums(file, options)) {
            result.push_back(fieldsOf(sum).front());
        }
        return result;
    }

    /// A fact that ffprobe tells of a picture.
    [[nodiscard]] std::string probe(std::string const& file, std::string const& entries) const {
        Ended const ended = runOther({"ffprobe", "-v", "error", "-select_streams", "v:0", "-show_entries",
                                      "stream=" + entries, "-of", "csv=p=0", file});
        EXPECT_EQ(ended.err, "");
        return linesOf(ended.out).empty() ? "" : linesOf(ended.out).front();
    }

    /// The sum of a picture's RGB pixels as ffmpeg reads it.
    [[nodiscard]] std::string rgbSum(std::string const& picture, std::string const& filter = "null") const {
        Ended const ended = runOther({"ffmpeg", "-v", "error", "-nostdin", "-i", picture, "-vf", filter,
                                      "-pix_fmt", "rgb24", "-frames:v", "1", "-f", "framemd5", "-"});
        return fieldsOf(linesOf(ended.out).back()).back();
    }
};

TEST_F(FramesCommand, TellsTheSumsOfALinearDecode) {
    std::string const file = makeH264Clip();
    EXPECT_EQ(sums(file, {}), linearSums(file));
}

TEST_F(FramesCommand, TellsNumberTimeFormatAndSum) {
    std::string const file = makeH264Clip();
    Ended const ended = run({"frames", file, "--md5", "--frames", "25"});
    std::vector<std::string> const fields = fieldsOf(ended.out);
    ASSERT_THAT(fields, SizeIs(4));
    EXPECT_EQ(fields[0], "25");
    EXPECT_EQ(fields[1], "1.000000");
    EXPECT_EQ(fields[2], "yuv420p");
    EXPECT_EQ(fields[3], fieldsOf(linearSums(file)[25]).back());
}

TEST_F(FramesCommand, ManyThreadsTellTheSameInTheSameOrder) {
    std::string const file = makeH264Clip();
    std::vector<std::string> const linear = linearSums(file);
    for (char const* const threads : {"1", "2", "4", "16"}) {
        EXPECT_EQ(sums(file, {"--threads", threads}), linear) << threads;
    }
}

TEST_F(FramesCommand, EveryOrderGivesEachFrameItsOwnPicture) {
    std::string const file = makeH264Clip();
    std::vector<std::string> const linear = linearSums(file);
    for (char const* const order : {"backward", "random:5", "scrub:5"}) {
        for (std::string const& sum : sums(file, {"--order", order, "--count", "100", "--threads", "4"})) {
            EXPECT_EQ(sum, linear[std::stoul(sum)]) << order;
        }
    }
}

TEST_F(FramesCommand, OrdersAndCountsAreKept) {
    std::string const file = makeH264Clip();
    EXPECT_THAT(numbers(file, {"--frames", "0,5,7-9"}), ElementsAre("0", "5", "7", "8", "9"));
    EXPECT_THAT(numbers(file, {"--frames", "0,5,7-9", "--order", "backward", "--count", "3"}),
                ElementsAre("9", "8", "7"));
    EXPECT_THAT(numbers(file, {"--order", "random:9", "--count", "75"}), SizeIs(75));
    EXPECT_EQ(numbers(file, {"--order", "random:9"}),
              numbers(file, {"--order", "random:9", "--threads", "4"}));
}

TEST_F(FramesCommand, AFileOfOneFrameHasItAtEveryNumber) {
    std::string const file = makeClip("one.mp4", {"-frames:v", "1", "-c:v", "mpeg4"});
    std::string const sum = fieldsOf(linearSums(file).front()).back();
    EXPECT_THAT(sums(file, {"--frames", "0,7"}), ElementsAre("0 " + sum, "7 " + sum));
}

/// Half a second at 25 frames a second, then every fifth frame only: 20 frames in 2 seconds.
class VaryingClip : public FramesCommand {
protected:
    std::string const file_ =
        makeClip("varying.mp4", {"-t", "2", "-vf", "select='lt(n,13)+not(mod(n,5))'", "-fps_mode", "vfr",
                                 "-c:v", "libx264", "-pix_fmt", "yuv420p", "-threads", "2"});
    std::vector<std::string> const linear_ = linearSums(file_);
};

TEST_F(VaryingClip, SamplesAreTheStoredFrames) {
    EXPECT_EQ(sums(file_, {"--samples", "all"}), linear_);
    EXPECT_THAT(sums(file_, {"--samples", "2-3"}), ElementsAre(linear_[2], linear_[3]));
}

TEST_F(VaryingClip, FramesAreThoseOfTheTimeLine) {
    std::vector<std::string> const frames = sums(file_, {"--frames", "all"});
    EXPECT_GT(frames.size(), linear_.size());
    EXPECT_EQ(frames, sums(file_, {}));
    EXPECT_EQ(frames[7], linear_[7]);
    EXPECT_EQ(fieldsOf(frames[26]).back(), fieldsOf(linear_[15]).back());
}

TEST_F(VaryingClip, ATimeMeansTheFrameThatIsOnShowThen) {
    EXPECT_THAT(sums(file_, {"--at", "0,0.28"}), ElementsAre(linear_[0], linear_[7]));
    EXPECT_EQ(sums(file_, {"--at", "1.04"}), sums(file_, {"--frames", "26"}));
}

TEST_F(VaryingClip, ATimeBehindTheEndIsRefused) {
    Ended const ended = run({"frames", file_, "--md5", "--at", "7"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("shows no frame at 7.000 s; it lasts "));
}

TEST_F(VaryingClip, OnlyOneWayToNameFramesIsTaken) {
    EXPECT_EQ(run({"frames", file_, "--md5", "--frames", "1", "--samples", "1"}).exitCode, 2);
    EXPECT_EQ(run({"frames", file_, "--md5", "--samples", "1", "--at", "1"}).exitCode, 2);
}

TEST_F(FramesCommand, SamplesOfAConstantRateAreItsFrames) {
    std::string const file = makeH264Clip();
    EXPECT_EQ(sums(file, {"--samples", "0-9"}), sums(file, {"--frames", "0-9"}));
}

TEST_F(FramesCommand, PacksEveryKindOfPlanes) {
    for (char const* const format : {"yuv420p", "yuv422p10le", "yuv444p", "gray", "gray16le", "gbrp", "rgb24",
                                     "bgra", "yuva420p", "yuv410p", "yuv444p12le", "gbrap"}) {
        std::string const file = makeClip(
            "planes.nut", {"-frames:v", "2", "-vf", "scale=35:27", "-pix_fmt", format, "-c:v", "rawvideo"});
        EXPECT_EQ(sums(file, {}), linearSums(file)) << format;
    }
}

TEST_F(FramesCommand, PacksThePaletteBehindItsPicture) {
    std::string const file = makeClip("palette.gif", {"-frames:v", "3", "-vf", "scale=35:27"});
    Ended const ended = run({"frames", file, "--md5"});
    EXPECT_THAT(sumsOf(ended.out), SizeIs(3));
    EXPECT_EQ(sumsOf(ended.out), linearSums(file));
}

TEST_F(FramesCommand, WritesPicturesThatOthersCanRead) {
    Ended const ended = run({"frames", makeH264Clip(), "--frames", "0,7", "--out", path("new/out")});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(linesOf(ended.out),
                ElementsAre(path("new/out/frame_000000.png"), path("new/out/frame_000007.png")));
    EXPECT_EQ(probe(path("new/out/frame_000007.png"), "codec_name,width,height,pix_fmt"),
              "png,160,120,rgb24");
}

TEST_F(FramesCommand, WritesTheColoursOfTheFrame) {
    std::string const file =
        makeClip("colours.avi", {"-frames:v", "3", "-pix_fmt", "bgr24", "-c:v", "rawvideo"});
    EXPECT_EQ(run({"frames", file, "--frames", "2", "--out", path("out")}).exitCode, 0);
    EXPECT_EQ(rgbSum(path("out/frame_000002.png")), rgbSum(file, "select=eq(n\\,2)"));
}

TEST_F(FramesCommand, WritesTheSizeThatIsAskedFor) {
    Ended const ended =
        run({"frames", makeH264Clip(), "--frames", "3", "--out", path("out"), "--size", "81x33"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(probe(path("out/frame_000003.png"), "width,height"), "81,33");
}

TEST_F(FramesCommand, WritesTurnedPicturesUpright) {
    std::string const plain = makeH264Clip();
    std::string const turned = path("turned.mp4");
    ASSERT_EQ(runOther({"ffmpeg", "-v", "error", "-nostdin", "-i", plain, "-c", "copy", "-metadata:s:v",
                        "rotate=90", turned})
                  .exitCode,
              0);
    EXPECT_EQ(run({"frames", turned, "--frames", "3", "--out", path("out")}).exitCode, 0);
    EXPECT_EQ(run({"frames", plain, "--frames", "3", "--out", path("plain")}).exitCode, 0);
    EXPECT_EQ(rgbSum(path("out/frame_000003.png")),
              rgbSum(path("plain/frame_000003.png"), std::string("transpose=") + "cclock"));
    EXPECT_EQ(run({"frames", turned, "--frames", "3", "--out", path("out"), "--size", "60x80"}).exitCode, 0);
    EXPECT_EQ(probe(path("out/frame_000003.png"), "width,height"), "60,80");
}

TEST_F(FramesCommand, RepeatedFramesAreWrittenWhole) {
    std::string const file = makeH264Clip();
    Ended const ended = run({"frames", file, "--frames", "0-3", "--order", "random:1", "--count", "40",
                             "--threads", "4", "--out", path("out")});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(linesOf(ended.out), SizeIs(40));
    auto const entries = std::filesystem::directory_iterator(path("out"));
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 4);
}

TEST_F(FramesCommand, ReplacesPicturesOfAnEarlierRun) {
    std::string const file = makeH264Clip();
    std::filesystem::create_directory(path("out"));
    writeFile("out/frame_000000.png", "old");
    EXPECT_EQ(run({"frames", file, "--frames", "0", "--out", path("out")}).exitCode, 0);
    EXPECT_EQ(probe(path("out/frame_000000.png"), "width"), "160");
}

TEST_F(FramesCommand, FramesThatCannotBeReadAreNamedAndTheOthersGoOn) {
    std::string const file = writeFile("20f_64x48_25fps.synth", "fault = 3\nfault = 7\n");
    Ended const ended = run({"frames", file, "--md5", "--frames", "0-9", "--threads", "4"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(linesOf(ended.out), SizeIs(8));
    EXPECT_THAT(linesOf(ended.err),
                ElementsAre(HasSubstr("frame 3 of '" + file + "' cannot be read"), HasSubstr("frame 7 of")));
}

TEST_F(FramesCommand, AFrameThatFailsOftenNeverHangs) {
    std::string const file = writeFile("5f_64x48_25fps.synth", "fault = 3\n");
    Ended const ended =
        run({"frames", file, "--md5", "--order", "random:1", "--count", "200", "--threads", "8"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(linesOf(ended.out), SizeIs(160));
    EXPECT_THAT(linesOf(ended.err), SizeIs(40));
}

TEST_F(FramesCommand, NumbersAreKeptWhateverTheFileCallsItsFirstFrame) {
    std::string const plain = writeFile("20f_64x48_25fps.synth", "# plain\n");
    std::string const shifted = writeFile("20f_64x48_25fps_shifted.synth", "origin = 1000\n");
    EXPECT_EQ(numbers(shifted, {"--order", "backward"}), numbers(plain, {"--order", "backward"}));
    EXPECT_THAT(sums(shifted, {}), SizeIs(20));
}

TEST_F(FramesCommand, FramesThatAreStoredInGroupsKeepTheirPictures) {
    std::string const grouped = writeFile("20f_64x48_25fps.synth", "group = 4\n");
    std::vector<std::string> const forward = sums(grouped, {"--threads", "4"});
    ASSERT_THAT(forward, SizeIs(20));
    for (std::string const& sum : sums(grouped, {"--order", "random:3", "--count", "60"})) {
        EXPECT_EQ(sum, forward[std::stoul(sum)]);
    }
    EXPECT_EQ(std::set<std::string>(forward.begin(), forward.end()).size(), 20U);
}

TEST_F(FramesCommand, TakesNamesInEveryScript) {
    std::string const file = makeH264Clip("Gr\xC3\xBC\xC3\x9F\x65 \xE6\x98\xA0\xE7\x94\xBB '\".mp4");
    EXPECT_EQ(sums(file, {"--frames", "1"}).front(), linearSums(file)[1]);
}

TEST_F(FramesCommand, TakesRelativeNames) {
    std::string const file = makeH264Clip();
    std::string const relative = std::filesystem::relative(file).string();
    EXPECT_EQ(sums(relative, {"--frames", "1"}).front(), linearSums(file)[1]);
}

}  // namespace
}  // namespace tooltest
