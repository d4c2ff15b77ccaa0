#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>

#include "tests/tools/Process.h"
#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string contentsOf(std::string const& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

class ExtractCommand : public ToolTest {
protected:
    ExtractCommand() { std::filesystem::create_directory(path("out")); }

    /// The sums of frames alone.
    [[nodiscard]] std::vector<std::string> sums(std::string const& file, std::string const& frames) const {
        std::vector<std::string> sums;
        for (std::string const& line : linesOf(run({"frames", file, "--frames", frames, "--md5"}).out)) {
            sums.push_back(fieldsOf(line).back());
        }
        return sums;
    }
    /// The sums of all channels from a sample on.
    [[nodiscard]] std::vector<std::string> soundSums(std::string const& file, Arguments const& part) const {
        Arguments arguments{"audio", file, "--md5"};
        arguments.insert(arguments.end(), part.begin(), part.end());
        std::vector<std::string> sums;
        for (std::string const& line : linesOf(run(arguments).out)) {
            sums.push_back(fieldsOf(line).back());
        }
        return sums;
    }
    /// Pictures with two channels of sound, 30 frames and 57600 samples.
    [[nodiscard]] std::string makeSoundClip() const {
        return makeClip("clip.mov", {"-f", "lavfi", "-i", "aevalsrc=0.5*sin(900*t*t)|0.1*random(0):s=48000",
                                     "-t", "1.2", "-c:v", "libx264", "-pix_fmt", "yuv420p", "-bf", "2",
                                     "-c:a", "pcm_s16le", "-timecode", "01:00:00:00"});
    }
    /// Long enough to be met at work.
    [[nodiscard]] std::string makeLongClip() const {
        return makeClip("long.mp4", {"-frames:v", "1200", "-c:v", "mpeg4"});
    }
    /// What lies in the folder for output.
    [[nodiscard]] std::vector<std::string> made() const {
        std::vector<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(path("out"))) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    /// Runs a script in which $PLAYFILE extracts $CLIP into $OUT, mounts of its own at work.
    [[nodiscard]] Ended runApart(std::string const& clip, std::string const& script) {
        environment["PLAYFILE"] = PLAYFILE_CLI;
        environment["CLIP"] = clip;
        environment["OUT"] = path("out");
        return runOther({"unshare", "--mount", "sh", "-c", script});
    }
    /// Waits until a copy that is under way has come so far.
    void waitForPartial(std::uintmax_t byteCount) const {
        auto const isThere = [&] {
            std::error_code error;
            auto const folder = std::filesystem::directory_iterator(path("out"));
            return std::any_of(begin(folder), end(folder), [&](auto const& entry) {
                return entry.path().extension() == ".mov" ||
                       (entry.path().extension() == ".partial" &&
                        std::filesystem::file_size(entry.path(), error) >= byteCount);
            });
        };
        while (!isThere()) {
        }
    }
    /// Asks an extraction to stop once it has written so much; its exit code. One that was over before the
    /// signal reached it on a busy machine says nothing, so that another is begun.
    [[nodiscard]] int stopOnceThereAre(std::uintmax_t byteCount, std::string const& clip) const {
        constexpr int mostAttempts = 5;
        int exitCode = 0;
        for (int attempt = 0; attempt < mostAttempts && exitCode == 0; ++attempt) {
            std::filesystem::remove_all(path("out"));
            std::filesystem::create_directory(path("out"));
            Process process({PLAYFILE_CLI, "extract", clip, "-o", path("out/a.mov")}, environment);
            waitForPartial(byteCount);
            process.send(SIGINT);
            std::string out;
            std::string err;
            exitCode = process.wait(out, err);
            EXPECT_THAT(err, IsEmpty());
        }
        return exitCode;
    }
};

TEST_F(ExtractCommand, KeepsEveryPixelAndSample) {
    std::string const clip = makeSoundClip();
    Ended const ended = run({"extract", clip, "--from", "5", "--to", "20", "-o", path("out/a.mov")});
    ASSERT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(ended.out, "wrote " + path("out/a.mov") + "\n");
    EXPECT_EQ(sums(path("out/a.mov"), "all"), sums(clip, "5-19"));
    EXPECT_EQ(soundSums(path("out/a.mov"), {}), soundSums(clip, {"--from", "9600", "--count", "28800"}));
    EXPECT_THAT(made(), ElementsAre("a.mov", "a.sav"));
}

TEST_F(ExtractCommand, TakesSecondsTimeCodesAndTheEnd) {
    std::string const clip = makeSoundClip();
    for (Arguments const& part : {Arguments{"--from", "0.2s", "--to", "0.8s"},
                                  Arguments{"--from", "01:00:00:05", "--to", "01:00:00:20"}}) {
        Arguments arguments{"extract", clip, "-o", path("out/a.mov")};
        arguments.insert(arguments.end(), part.begin(), part.end());
        ASSERT_EQ(run(arguments).exitCode, 0);
        EXPECT_EQ(sums(path("out/a.mov"), "all"), sums(clip, "5-19"));
    }
    ASSERT_EQ(run({"extract", clip, "--from", "20", "-o", path("out/b.mov")}).exitCode, 0);
    EXPECT_EQ(sums(path("out/b.mov"), "all"), sums(clip, "20-29"));
}

TEST_F(ExtractCommand, CountsTheTimeCodeOn) {
    std::string const clip = makeSoundClip();
    ASSERT_EQ(run({"extract", clip, "--from", "27", "-o", path("out/a.mov")}).exitCode, 0);
    EXPECT_THAT(run({"info", path("out/a.mov")}).out, HasSubstr("01:00:01:02"));
}

TEST_F(ExtractCommand, WritesSoundAloneIntoAWaveFile) {
    std::string const clip = makeSoundClip();
    Ended const ended = run({"extract", clip, "--from", "100", "--to", "50000", "-o", path("out/a.wav")});
    ASSERT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(soundSums(path("out/a.wav"), {}), soundSums(clip, {"--from", "100", "--count", "49900"}));
}

TEST_F(ExtractCommand, LeavesOutWhatIsNotWanted) {
    std::string const clip = makeSoundClip();
    ASSERT_EQ(run({"extract", clip, "--only", "picture", "-o", path("out/a.mov")}).exitCode, 0);
    EXPECT_THAT(run({"audio", path("out/a.mov"), "--md5"}).err, HasSubstr("has no sound"));
    ASSERT_EQ(run({"extract", clip, "--only", "sound", "-o", path("out/b.mov")}).exitCode, 0);
    EXPECT_THAT(run({"frames", path("out/b.mov"), "--md5"}).err, HasSubstr("has no video"));
}

TEST_F(ExtractCommand, CopiesPacketsThatStandForThemselves) {
    std::string const clip = makeClip("a.mov", {"-frames:v", "10", "-c:v", "prores_ks"});
    ASSERT_EQ(run({"extract", clip, "--from", "3", "--to", "7", "-o", path("out/a.mov")}).exitCode, 0);
    EXPECT_THAT(run({"info", path("out/a.mov")}).out, HasSubstr("prores"));
    EXPECT_EQ(sums(path("out/a.mov"), "all"), sums(clip, "3-6"));
}

TEST_F(ExtractCommand, NeedsPicturesOfOneSize) {
    std::string const small = makeClip("small.h264", {"-frames:v", "5", "-c:v", "libx264", "-bf", "0"});
    std::string const large =
        makeClip("large.h264", {"-frames:v", "5", "-c:v", "libx264", "-bf", "0", "-s", "320x240"});
    std::string const clip = writeFile("both.h264", contentsOf(small) + contentsOf(large));
    ASSERT_EQ(run({"extract", clip, "--from", "5", "-o", path("out/a.mov")}).exitCode, 0);
    EXPECT_EQ(sums(path("out/a.mov"), "all"), sums(large, "all"));
    EXPECT_THAT(run({"extract", clip, "--from", "2", "-o", path("out/b.mov")}).err,
                HasSubstr("frame 5 has another size or pixel format than those before it; extract"));
    EXPECT_THAT(made(), ElementsAre("a.mov", "a.sav"));
}

TEST_F(ExtractCommand, TellsAsJsonWhatItWrote) {
    Ended const ended =
        run({"extract", makeSoundClip(), "--from", "5", "--to", "20", "-o", path("out/a.mov"), "--json"});
    for (char const* const part :
         {"\"firstFrame\": 5", "\"frames\": 15", "\"firstSample\": 9600", "\"samples\": 28800"}) {
        EXPECT_THAT(ended.out, HasSubstr(part));
    }
}

TEST_F(ExtractCommand, RefusesWhatMakesNoSense) {
    std::string const clip = makeSoundClip();
    auto const refusal = [&](Arguments const& part) {
        Arguments arguments{"extract", clip, "-o", path("out/a.mov")};
        arguments.insert(arguments.end(), part.begin(), part.end());
        Ended const ended = run(arguments);
        EXPECT_NE(ended.exitCode, 0);
        return ended.err;
    };
    EXPECT_THAT(refusal({"--from", "30"}), HasSubstr("has 30 frames; --from names number 30"));
    EXPECT_THAT(refusal({"--from", "9", "--to", "9"}), HasSubstr("the section would be empty"));
    EXPECT_THAT(refusal({"--to", "31"}), HasSubstr("has only 30 frames"));
    EXPECT_THAT(refusal({"--from", "x"}), HasSubstr("--from 'x' isn't understood"));
    EXPECT_THAT(made(), IsEmpty());
}

TEST_F(ExtractCommand, RefusesOtherFormatsAndTheSourceItself) {
    std::string const clip = makeSoundClip();
    std::string const before = contentsOf(clip);
    EXPECT_THAT(run({"extract", clip, "-o", path("out/a.mp4")}).err, HasSubstr("named .mov or .wav"));
    EXPECT_THAT(run({"extract", clip, "-o", clip}).err, HasSubstr("it is the source itself"));
    EXPECT_EQ(contentsOf(clip), before);
    EXPECT_THAT(made(), IsEmpty());
}

TEST_F(ExtractCommand, DoesNotMakeTheFolderOfADriveThatIsGone) {
    Ended const ended = run({"extract", makeH264Clip(), "-o", path("gone/a.mov")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("its folder isn't there; choose another one"));
    EXPECT_FALSE(std::filesystem::exists(path("gone")));
}

TEST_F(ExtractCommand, OnAFullDiskLeavesNothing) {
    std::string const clip = makeLongClip();
    std::string const before = contentsOf(clip);
    Ended const ended =
        runApart(clip,
                 "mount -t tmpfs -o size=1500k none \"$OUT\" && "
                 "\"$PLAYFILE\" extract \"$CLIP\" -o \"$OUT/a.mov\"; echo $?; ls -A \"$OUT\"");
    EXPECT_EQ(ended.out, "1\n");
    EXPECT_THAT(ended.err, HasSubstr("cannot write \"" + path("out/a.mov") + "\""));
    EXPECT_THAT(ended.err, HasSubstr("make room on the drive, or choose another one"));
    EXPECT_EQ(contentsOf(clip), before);
}

TEST_F(ExtractCommand, OnAFullDiskKeepsTheFileThatWasThere) {
    Ended const ended = runApart(makeLongClip(),
                                 "mount -t tmpfs -o size=1500k none \"$OUT\" && echo old >\"$OUT/a.mov\" && "
                                 "\"$PLAYFILE\" extract \"$CLIP\" -o \"$OUT/a.mov\"; cat \"$OUT\"/*");
    EXPECT_EQ(ended.out, "old\n");
}

TEST_F(ExtractCommand, IntoAReadOnlyFolderWritesNothing) {
    Ended const ended = runApart(makeH264Clip(),
                                 "mount -t tmpfs -o ro none \"$OUT\" && "
                                 "\"$PLAYFILE\" extract \"$CLIP\" -o \"$OUT/a.mov\"; echo $?");
    EXPECT_EQ(ended.out, "1\n");
    EXPECT_THAT(ended.err, HasSubstr("choose a folder that may be written to"));
}

/// Lets a copy begin, does something to its folder, and waits for its end.
constexpr char const* beginExtract =
    "\"$PLAYFILE\" extract \"$CLIP\" -o \"$OUT/a.mov\" & "
    "until ls -A \"$OUT\" | grep -q partial; do :; done; kill -STOP $!; ";

TEST_F(ExtractCommand, OfADriveThatVanishesSaysSo) {
    std::string const clip = makeLongClip();
    std::string const before = contentsOf(clip);
    Ended const ended =
        runApart(clip, "mount -t tmpfs none \"$OUT\"; " + std::string(beginExtract) +
                           "umount -l \"$OUT\"; kill -CONT $!; wait $!; echo $?; ls -A \"$OUT\"");
    EXPECT_EQ(ended.out, "1\n");
    EXPECT_THAT(ended.err, HasSubstr("see whether the drive is still there"));
    EXPECT_EQ(contentsOf(clip), before);
}

TEST_F(ExtractCommand, OfAFolderThatVanishesSaysSo) {
    Ended const ended = runApart(makeLongClip(), std::string(beginExtract) +
                                                     "rm -r \"$OUT\"; kill -CONT $!; wait $!; echo $?; "
                                                     "test -e \"$OUT\"; echo $?");
    EXPECT_EQ(ended.out, "1\n1\n");
    EXPECT_THAT(ended.err, HasSubstr("see whether the drive is still there"));
}

TEST_F(ExtractCommand, WithoutRoomForItsHeaderLeavesNoMaterial) {
    static_cast<void>(writeFile("out/a.sav", "something else\n"));
    Ended const ended = run({"extract", makeH264Clip(), "-o", path("out/a.mov")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("the header of"));
    EXPECT_THAT(made(), ElementsAre("a.sav"));
}

TEST_F(ExtractCommand, WithoutRoomForItsHeaderKeepsTheFileThatWasThere) {
    static_cast<void>(writeFile("out/a.sav", "something else\n"));
    static_cast<void>(writeFile("out/a.mov", "old\n"));
    Ended const ended = run({"extract", makeH264Clip(), "-o", path("out/a.mov")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("holds something else; move that away"));
    EXPECT_EQ(contentsOf(path("out/a.mov")), "old\n");
    EXPECT_EQ(contentsOf(path("out/a.sav")), "something else\n");
}

TEST_F(ExtractCommand, StoppedAnywhereLeavesNothing) {
    std::string const clip = makeLongClip();
    for (std::uintmax_t const byteCount : {0U, 1U << 20, 5U << 20}) {
        EXPECT_EQ(stopOnceThereAre(byteCount, clip), 128 + SIGINT);
        EXPECT_THAT(made(), IsEmpty()) << byteCount;
    }
}

TEST_F(ExtractCommand, KilledAnywhereNeverLeavesHalfAFileUnderTheName) {
    std::string const clip = makeClip("a.mov", {"-frames:v", "300", "-c:v", "mpeg4"});
    ASSERT_EQ(run({"extract", clip, "-o", path("whole.mov")}).exitCode, 0);
    std::string const whole = contentsOf(path("whole.mov"));
    constexpr int killCount = 30;
    for (int turn = 0; turn < killCount; ++turn) {
        Ended const ended = runApart(
            clip,
            "timeout -s KILL 0.$(( $(od -An -N2 -tu2 /dev/urandom) % 600 + 100 )) \"$PLAYFILE\" extract "
            "\"$CLIP\" -o \"$OUT/a.mov\"");
        bool const isNamed = std::filesystem::exists(path("out/a.mov"));
        EXPECT_TRUE(!isNamed || contentsOf(path("out/a.mov")) == whole) << turn;
        EXPECT_TRUE(isNamed || ended.exitCode != 0);
        std::filesystem::remove_all(path("out"));
        std::filesystem::create_directory(path("out"));
    }
}

}  // namespace
}  // namespace tooltest
