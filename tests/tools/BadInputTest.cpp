#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "tests/tools/Process.h"
#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// What is refused, and how it is told: one line, on standard error, nothing on standard output.
class BadInput : public ToolTest {
protected:
    static void expectRefusal(Ended const& ended, std::string const& reason, int exitCode = 1) {
        EXPECT_EQ(ended.exitCode, exitCode);
        EXPECT_THAT(ended.out, IsEmpty());
        EXPECT_THAT(ended.err, AllOf(testing::StartsWith("playfile: "), HasSubstr(reason)));
        EXPECT_THAT(linesOf(ended.err), SizeIs(1)) << ended.err;
    }
};

TEST_F(BadInput, AMissingFileIsNamed) {
    expectRefusal(run({"info", path("nothing.mov")}), "there is no file '" + path("nothing.mov") + "'");
    expectRefusal(run({"frames", path("nothing.mov"), "--md5"}), "there is no file");
    expectRefusal(run({"show", path("nothing.mov"), "--out", path("out")}), "there is no file");
}

TEST_F(BadInput, AFolderIsNoFile) {
    expectRefusal(run({"info", path("")}), "is a folder; name a media file in it");
}

TEST_F(BadInput, AnEmptyFileIsCalledEmpty) {
    expectRefusal(run({"info", writeFile("empty.mov", "")}), "is empty");
}

TEST_F(BadInput, TextInAMovieFileIsKnownByNoReader) {
    std::string const file = writeFile("text.mov", "This is a letter and no film.\n");
    expectRefusal(run({"frames", file, "--md5"}), "cannot open '" + file + "': no reader knows it");
}

TEST_F(BadInput, APipeIsNoRegularFile) {
    ASSERT_EQ(::mkfifo(path("pipe.mov").c_str(), 0600), 0);
    expectRefusal(run({"info", path("pipe.mov")}), "is no regular file");
}

TEST_F(BadInput, AFileThatMayNotBeReadSaysSo) {
    std::string const file = makeH264Clip();
    std::filesystem::permissions(file, std::filesystem::perms::none);
    expectRefusal(runWithoutPrivileges({"info", file}), "no permission to read '" + file + "'");
}

TEST_F(BadInput, ANameThatIsNoTextIsRefused) {
    expectRefusal(run({"info", writeFile("bad\xFFname.mov", "x")}), "isn't a name in UTF-8");
}

TEST_F(BadInput, ANameOfTwoLinesIsToldInOne) {
    expectRefusal(run({"info", path("two\nlines.mov")}), "two\\nlines.mov");
}

TEST_F(BadInput, AFileWithoutPictureHasNoFrames) {
    std::string const file = path("tone.wav");
    ASSERT_EQ(runOther({"ffmpeg", "-v", "error", "-nostdin", "-f", "lavfi", "-i", "sine=duration=1", file})
                  .exitCode,
              0);
    std::string const reason = "'" + file + "' has no video stream; 'playfile info' tells what it holds";
    expectRefusal(run({"frames", file, "--md5"}), reason);
    expectRefusal(run({"frames", file, "--out", path("out")}), reason);
}

TEST_F(BadInput, AFrameThatTheFileLacksIsNamed) {
    expectRefusal(run({"frames", makeH264Clip(), "--frames", "3,25-30", "--md5"}),
                  "has no frame 30; its frames are 0 to 29");
}

TEST_F(BadInput, ASizeOfNothingIsRefused) {
    for (char const* const size : {"0x100", "100x0", "-5x5", "5x-5", "big"}) {
        expectRefusal(run({"frames", path("any.mov"), "--out", path("out"), std::string("--size=") + size}),
                      "is no size", 2);
    }
}

TEST_F(BadInput, ARangeOfNothingIsRefused) {
    expectRefusal(run({"frames", path("any.mov"), "--md5", "--frames", "9-7"}), "runs backwards", 2);
    expectRefusal(run({"frames", path("any.mov"), "--md5", "--frames", "1;2"}), "names no frames", 2);
}

TEST_F(BadInput, NumbersBeyondReasonAreRefused) {
    expectRefusal(run({"frames", path("any.mov"), "--md5", "--threads", "0"}), "--threads", 2);
    expectRefusal(run({"frames", path("any.mov"), "--md5", "--threads", "65"}), "--threads", 2);
    expectRefusal(run({"frames", path("any.mov"), "--md5", "--count", "0"}), "--count", 2);
    expectRefusal(run({"frames", path("any.mov"), "--md5", "--count=-3"}), "--count", 2);
    expectRefusal(run({"frames", path("any.mov"), "--md5", "--order", "random"}), "--order", 2);
}

TEST_F(BadInput, FramesWantsExactlyOneKindOfResult) {
    expectRefusal(run({"frames", path("any.mov")}), "--help", 2);
    expectRefusal(run({"frames", path("any.mov"), "--md5", "--out", path("out")}), "--help", 2);
    expectRefusal(run({"frames", path("any.mov"), "--md5", "--size", "5x5"}), "--size", 2);
}

TEST_F(BadInput, ACommandLineOfNoSenseIsAnErrorOfUsage) {
    expectRefusal(run({}), "--help", 2);
    expectRefusal(run({"dance"}), "--help", 2);
    expectRefusal(run({"info"}), "FILE", 2);
    expectRefusal(run({"info", "a.mov", "--wrong"}), "--wrong", 2);
    expectRefusal(run({"quarantine"}), "--help", 2);
    expectRefusal(run({"quarantine", "release"}), "--all", 2);
}

TEST_F(BadInput, AnOutputFolderUnderAFileCannotBeWritten) {
    std::string const file = makeH264Clip();
    std::string const out = path("clip.mp4/out");
    expectRefusal(run({"frames", file, "--out", out}), "cannot write to the folder '" + out + "'");
    expectRefusal(run({"show", file, "--out", out}), "cannot write to the folder '" + out + "'");
}

TEST_F(BadInput, AFileIsNoOutputFolder) {
    std::string const file = makeH264Clip();
    expectRefusal(run({"frames", file, "--out", file}), "cannot write to the folder '" + file + "'");
}

TEST_F(BadInput, AnOutputFolderThatMayNotBeWrittenSaysSo) {
    std::filesystem::create_directory(path("closed"));
    std::filesystem::permissions(path("closed"),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    expectRefusal(runWithoutPrivileges({"frames", makeH264Clip(), "--out", path("closed")}),
                  "Permission denied");
    expectRefusal(runWithoutPrivileges({"show", makeH264Clip(), "--out", path("closed/in")}),
                  "Permission denied");
}

TEST_F(BadInput, WithoutPlugInsTheirFolderIsAskedFor) {
    std::string const file = makeH264Clip();
    std::filesystem::create_directory(path("plugins"));
    expectRefusal(run({"info", file, "--plugin-path", path("plugins")}),
                  "no reader was loaded from '" + path("plugins") + "'");
}

TEST_F(BadInput, APlugInThatDoesNotLoadIsNamedAndTheOthersGoOn) {
    std::string const file = makeH264Clip();
    std::filesystem::create_directory(path("plugins"));
    std::string const broken = writeFile("plugins/broken.so", "This is no program.\n");
    Ended const ended =
        run({"info", file, "--plugin-path", path("plugins") + ":" + PLAYFILE_BUILD_PLUGIN_DIR});
    EXPECT_EQ(ended.exitCode, 0);
    EXPECT_THAT(ended.out, HasSubstr("frames: 30"));
    EXPECT_THAT(ended.err,
                AllOf(HasSubstr("the plug-in '" + broken + "' doesn't load: "),
                      testing::AnyOf(HasSubstr("invalid ELF header"), HasSubstr("file too short"))));
}

TEST_F(BadInput, AFolderOfPlugInsThatIsMissingIsNamed) {
    Ended const ended =
        run({"info", makeH264Clip(), "--plugin-path", path("nowhere") + ":" + PLAYFILE_BUILD_PLUGIN_DIR});
    EXPECT_EQ(ended.exitCode, 0);
    EXPECT_THAT(ended.err, HasSubstr(path("nowhere")));
}

TEST_F(BadInput, AFullDiskIsNoSuccess) {
    std::string out;
    std::string err;
    Process process({PLAYFILE_CLI, "frames", makeH264Clip(), "--md5"}, environment, "/dev/full");
    EXPECT_EQ(process.wait(out, err), 1);
    EXPECT_THAT(err, HasSubstr("cannot write to standard output: No space left on device"));
}

TEST_F(BadInput, AReaderThatGoesAwayEndsTheWorkWithoutAWord) {
    Process process(
        {PLAYFILE_CLI, "frames", makeH264Clip(), "--md5", "--order", "random:1", "--count", "10000000"},
        environment);
    static_cast<void>(process.readLine());
    process.closeOutput();
    std::string out;
    std::string err;
    EXPECT_EQ(process.wait(out, err), 128 + SIGPIPE);
    EXPECT_THAT(err, IsEmpty());
}

TEST_F(BadInput, ARequestToStopEndsTheWorkCleanly) {
    for (int const signalNumber : {SIGINT, SIGTERM}) {
        Process process(
            {PLAYFILE_CLI, "frames", makeH264Clip(), "--md5", "--order", "random:1", "--count", "10000000"},
            environment);
        static_cast<void>(process.readLine());
        process.send(signalNumber);
        std::string out;
        std::string err;
        EXPECT_EQ(process.wait(out, err), 128 + signalNumber);
        EXPECT_THAT(err, IsEmpty());
        EXPECT_TRUE(out.empty() || out.ends_with('\n')) << "the last line is cut";
    }
}

TEST_F(BadInput, StoppedPicturesAreWholeOrAbsent) {
    Process process({PLAYFILE_CLI, "frames", makeClip("long.mp4", {"-frames:v", "500", "-c:v", "mpeg4"}),
                     "--out", path("out")},
                    environment);
    static_cast<void>(process.readLine());
    process.send(SIGINT);
    std::string out;
    std::string err;
    EXPECT_EQ(process.wait(out, err), 128 + SIGINT);
    for (auto const& entry : std::filesystem::directory_iterator(path("out"))) {
        EXPECT_EQ(entry.path().extension(), ".png");
        EXPECT_EQ(runOther({"ffprobe", "-v", "error", entry.path().string()}).err, "");
    }
}

}  // namespace
}  // namespace tooltest
