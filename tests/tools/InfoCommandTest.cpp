#include <nlohmann/json.hpp>

#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

class InfoCommand : public ToolTest {
protected:
    [[nodiscard]] json info(std::string const& file) const {
        Ended const ended = run({"info", file, "--json"});
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return json::parse(ended.out, nullptr, false);
    }

    [[nodiscard]] std::string makeTone(std::string const& name) const {
        Ended const ended = runOther({"ffmpeg", "-v", "error", "-nostdin", "-f", "lavfi", "-i",
                                      "sine=duration=1:sample_rate=48000", path(name)});
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return path(name);
    }
};

TEST_F(InfoCommand, TellsCountRateAndSizeExactly) {
    json const video =
        info(makeClip("ntsc.mov", {"-frames:v", "31", "-r", "30000/1001", "-c:v", "mpeg4"}))["video"];
    EXPECT_EQ(video["frames"], 31);
    EXPECT_EQ(video["frameRate"]["numerator"], 30000);
    EXPECT_EQ(video["frameRate"]["denominator"], 1001);
    EXPECT_EQ(video["frameRate"]["isNonStandard"], false);
    EXPECT_EQ(video["picture"]["width"], 160);
    EXPECT_EQ(video["picture"]["height"], 120);
    EXPECT_EQ(video["picture"]["pixelFormat"], "yuv420p");
}

TEST_F(InfoCommand, TellsColourAndFields) {
    json const video =
        info(makeClip("colour.mov", {"-frames:v", "3", "-c:v", "libx264", "-pix_fmt", "yuv420p",
                                     "-color_primaries", "bt709", "-color_trc", "bt709", "-colorspace",
                                     "bt709", "-color_range", "tv"}))["video"];
    EXPECT_EQ(video["colour"]["primaries"]["name"], "bt709");
    EXPECT_EQ(video["colour"]["matrix"]["code"], 1);
    EXPECT_EQ(video["colour"]["range"], "limited");
    EXPECT_EQ(video["fields"], "progressive");
}

TEST_F(InfoCommand, SaysThatARangeIsNotStatedAndWhatItIsReadAs) {
    std::string const silent = makeClip("silent.mov", {"-frames:v", "3", "-c:v", "mpeg4"});
    EXPECT_EQ(info(silent)["video"]["colour"]["range"], "not stated (read as limited)");
    EXPECT_THAT(run({"info", silent}).out, HasSubstr("range: not stated (read as limited)"));
}

TEST_F(InfoCommand, ReadsRedGreenAndBlueAsFullRange) {
    std::string const pictures =
        makeClip("rgb.mov", {"-frames:v", "3", "-c:v", "qtrle", "-pix_fmt", "rgb24"});
    EXPECT_EQ(info(pictures)["video"]["colour"]["range"], "not stated (read as full)");
}

TEST_F(InfoCommand, TellsTheOrientation) {
    std::string const plain = makeH264Clip();
    std::string const turned = path("turned.mp4");
    ASSERT_EQ(runOther({"ffmpeg", "-v", "error", "-nostdin", "-i", plain, "-c", "copy", "-metadata:s:v",
                        "rotate=180", turned})
                  .exitCode,
              0);
    EXPECT_EQ(info(plain)["video"]["orientation"]["name"], "upright");
    EXPECT_EQ(info(turned)["video"]["orientation"]["name"], "turn by 180 degrees");
}

TEST_F(InfoCommand, CountsTheFramesOfEachDuration) {
    std::string const file =
        makeClip("varying.mp4", {"-t", "2", "-vf", "select='lt(n,13)+not(mod(n,5))'", "-fps_mode", "vfr",
                                 "-c:v", "libx264", "-pix_fmt", "yuv420p", "-threads", "2"});
    json const durations = info(file)["video"]["frameDurations"];
    ASSERT_EQ(durations.size(), 3U);
    EXPECT_EQ(durations[0], (json{{"seconds", 0.04}, {"frames", 13}}));
    EXPECT_EQ(durations[1]["seconds"], 0.12);
    EXPECT_EQ(durations[2]["seconds"], 0.2);
    EXPECT_THAT(run({"info", file}).out, HasSubstr("0.040000 s: 13 ######"));
}

TEST_F(InfoCommand, TellsWhichFrameIsOnShowAtATime) {
    std::string const file = makeH264Clip();
    Ended const ended = run({"info", file, "--json", "--at", "0.2"});
    json const moment = json::parse(ended.out)["at"][0];
    EXPECT_EQ(moment["frame"], 5);
    EXPECT_EQ(moment["storedFrame"], 5);
}

TEST_F(InfoCommand, NamesTheReader) {
    json const reader = info(makeH264Clip())["reader"];
    EXPECT_FALSE(reader["name"].get<std::string>().empty());
    EXPECT_THAT(reader["serves"].get<std::string>(), HasSubstr("video"));
    EXPECT_EQ(reader["openedFor"], "video");
}

TEST_F(InfoCommand, HasEveryPartOfTheDescription) {
    json const report = info(makeH264Clip());
    for (char const* const part : {"file", "bytes", "clip", "isQuarantined", "reader", "video", "audio",
                                   "label", "extra", "decodeOptions"}) {
        EXPECT_TRUE(report.contains(part)) << part;
    }
    EXPECT_EQ(report["isQuarantined"], false);
    EXPECT_FALSE(report["extra"].empty());
}

TEST_F(InfoCommand, ListsTheAudioStreams) {
    std::string const tone = makeTone("tone.wav");
    json const audio = info(
        makeClip("both.mov", {"-i", tone, "-frames:v", "25", "-c:v", "mpeg4", "-c:a", "pcm_s16le"}))["audio"];
    ASSERT_EQ(audio["streams"].size(), 1U);
    EXPECT_EQ(audio["streams"][0]["channels"], 1);
    EXPECT_EQ(audio["streams"][0]["sampleRate"], 48000.0);
}

TEST_F(InfoCommand, DescribesAFileWithoutPicture) {
    json const report = info(makeTone("tone.wav"));
    EXPECT_EQ(report["video"]["streams"], 0);
    EXPECT_EQ(report["audio"]["streams"].size(), 1U);
}

TEST_F(InfoCommand, LeavesNoMarkOnAFileThatMerelyLacksAPicture) {
    std::string const tone = makeTone("tone.wav");
    EXPECT_EQ(run({"info", tone}).exitCode, 0);
    EXPECT_THAT(run({"quarantine", "list"}).out, IsEmpty());
}

TEST_F(InfoCommand, TellsPeopleTheSame) {
    Ended const ended = run({"info", makeH264Clip()});
    EXPECT_EQ(ended.exitCode, 0);
    EXPECT_THAT(ended.out, HasSubstr("file: " + path("clip.mp4") + "\n"));
    EXPECT_THAT(ended.out, HasSubstr("  frames: 30\n"));
    EXPECT_THAT(ended.out, HasSubstr("    numerator: 25\n"));
    EXPECT_THAT(ended.err, IsEmpty());
}

TEST_F(InfoCommand, DisarmsTagsThatATerminalWouldObey) {
    std::string const file =
        makeClip("tags.mkv", {"-frames:v", "2", "-c:v", "mpeg4", "-metadata", "title=a\x1b[2Jb\nc"});
    Ended const ended = run({"info", file});
    EXPECT_EQ(ended.out.find('\x1b'), std::string::npos);
    EXPECT_THAT(ended.out, HasSubstr("a\\x1b[2Jb\\nc"));
}

TEST_F(InfoCommand, ShowsTheLibrarysMessagesOnlyWhenAsked) {
    std::string const file = makeH264Clip();
    EXPECT_THAT(run({"info", file}).err, IsEmpty());
    EXPECT_THAT(run({"info", file, "--verbose"}).err, HasSubstr("Open   \"" + file + "\" with "));
}

TEST_F(InfoCommand, HelpAndVersionAreNoErrors) {
    for (Arguments const& arguments :
         {Arguments{"--help"}, Arguments{"info", "--help"}, Arguments{"frames", "--help"},
          Arguments{"show", "--help"}, Arguments{"quarantine", "release", "--help"}}) {
        Ended const ended = run(arguments);
        EXPECT_EQ(ended.exitCode, 0);
        EXPECT_THAT(ended.out, HasSubstr("Usage: playfile"));
    }
    EXPECT_THAT(run({"--version"}).out, testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
}  // namespace tooltest
