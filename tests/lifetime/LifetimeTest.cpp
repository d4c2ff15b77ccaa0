/// Programs that begin and end in odd orders. Each must end by itself, with code 0, and with nothing on
/// standard error, where the sanitizers speak, but the log's word of each file that was opened.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"

namespace {

std::string withoutOpens(std::string const& errors) {
    std::istringstream lines(errors);
    std::string others;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("Open ")) {
            others += line + "\n";
        }
    }
    return others;
}

/// Runs a program to its end and gives what it said.
std::string run(std::string const& program, std::vector<std::string> const& arguments = {}) {
    test::ChildProcess child(program, arguments);
    test::Ending const ending = child.waitForEnd();
    EXPECT_EQ(ending.exitCode, 0) << "signal " << ending.signal;
    EXPECT_EQ(withoutOpens(ending.errors), "");
    EXPECT_FALSE(ending.isOverdue);
    return ending.output;
}

TEST(Lifetime, ExitReadsTheRequestsThatWait) {
    EXPECT_EQ(run("exit_with_requests", {"main"}), "shutdown\nframes read: 20\n");
}

TEST(Lifetime, ExitFromAThreadReadsTheRequestsThatWait) {
    EXPECT_EQ(run("exit_with_requests", {"thread"}), "shutdown\nframes read: 20\n");
}

TEST(Lifetime, ExitDropsTheRequestsThatNobodyHolds) {
    EXPECT_EQ(run("exit_with_dropped_requests"), "frames read: 1\n");
}

TEST(Lifetime, ExitFromInsideAReadEndsTheProcess) {
    EXPECT_EQ(run("exit_on_worker"), "frames read: 0\n");
}

TEST(Lifetime, StaticObjectsMayHoldMediaPastMain) {
    std::string const said = "request: status 2\nfile: one gray pixel\n";
    EXPECT_EQ(run("statics_hold_media"), said + said + said);
}

TEST(Lifetime, ExitIsNotNeeded) {
    EXPECT_EQ(run("entry_points", {"init", "read"}), "status 2\nopen: 1\n");
}

TEST(Lifetime, InitIsNotNeeded) {
    EXPECT_EQ(run("entry_points", {"exit"}), "open: 0\n");
}

TEST(Lifetime, NeitherIsNeeded) {
    EXPECT_EQ(run("entry_points"), "open: 0\n");
}

TEST(Lifetime, InitAndExitMayComeTwice) {
    EXPECT_EQ(run("entry_points", {"init", "init", "read", "exit", "exit"}), "status 2\nopen: 0\n");
}

TEST(Lifetime, LibraryStaysUsableAfterExit) {
    EXPECT_EQ(run("entry_points", {"init", "read", "exit", "read", "close", "read"}),
              "status 2\nstatus 2\nstatus 2\nopen: 1\n");
}

TEST(Lifetime, InitMayComeAfterExit) {
    EXPECT_EQ(run("entry_points", {"exit", "init", "read", "exit", "init", "read"}),
              "status 2\nstatus 2\nopen: 1\n");
}

TEST(Lifetime, AllFilesMayBeClosedWhileRequestsAreHeld) {
    EXPECT_EQ(run("entry_points", {"hold", "hold", "close", "read", "exit"}),
              "status 2\nstatus 2\nstatus 2\nopen: 0\n");
}

TEST(Lifetime, LibraryStaysUsableAfterShutdownByHand) {
    EXPECT_EQ(run("entry_points", {"init", "hold", "shutdown", "exit", "read", "init", "shutdown", "exit"}),
              "status 2\nstatus 2\nopen: 0\n");
}

TEST(Lifetime, PoolsMayGoBeforeTheCache) {
    EXPECT_EQ(run("entry_points", {"hold", "pools", "read", "exit", "read"}),
              "status 2\nstatus 2\nstatus 2\nopen: 1\n");
}

TEST(Lifetime, OpeningAheadFailsAfterShutdownAndWorksAfterExit) {
    EXPECT_EQ(run("entry_points", {"ahead", "exit", "ahead", "close", "shutdown", "ahead", "exit"}),
              "ahead: 2\nahead: 2\nahead: 3\nopen: 0\n");
}

TEST(Lifetime, ExitFromInsideTheCallOfAnIssuerEndsTheProcess) {
    EXPECT_EQ(run("exit_in_callback"), "told\nframes read: 1\n");
}

TEST(Lifetime, AForkedProcessMayLeaveWithoutAWord) {
    EXPECT_EQ(run("fork_alone"), "child: 3\nframes read: 50\n");
}

TEST(PreOpenLifetime, ExitOpensWhatWasAskedFor) {
    EXPECT_EQ(run("preopen_ends", {"held"}), "shutdown\nfiles opened: 3\n");
}

TEST(PreOpenLifetime, ExitOpensAlsoWhatNobodyHolds) {
    EXPECT_EQ(run("preopen_ends", {"dropped"}), "shutdown\nfiles opened: 3\n");
}

TEST(PreOpenLifetime, ExitFromInsideAnOpenEndsTheProcess) {
    EXPECT_EQ(run("preopen_ends", {"worker"}), "files opened: 0\n");
}

TEST(PreOpenLifetime, LibraryMayExitMeanwhile) {
    EXPECT_EQ(run("preopen_ends", {"closed"}), "shutdown\nfiles opened: 3\n");
}

TEST(PreOpenLifetime, TheCacheOutlivesWhatIsStillBeingOpened) {
    EXPECT_EQ(run("preopen_ends", {"initialised"}), "files opened: 3\n");
}

TEST(StreamLifetime, ExitWhileARunIsBeingDecoded) {
    EXPECT_EQ(run("stream_ends", {"held"}), "status 2\ndecoded\n");
}

TEST(StreamLifetime, TheEndOfItsFileWaitsForTheDecoder) {
    EXPECT_EQ(run("stream_ends", {"dropped"}), "status 2\ndecoded\nfile gone\n");
}

TEST(StreamLifetime, AFileThatNobodyWantsAnyMoreGoesAfterTheExitOfTheLibrary) {
    EXPECT_EQ(run("stream_ends", {"closed"}), "status 2\ndecoded\nfile gone\n");
}

TEST(StreamLifetime, ExitFromTheDecoderEndsTheProcess) {
    EXPECT_EQ(run("stream_ends", {"decoder"}), "");
}

/// One clip that is decoded streaming and one that isn't, through the real reader.
class FFmpegLifetime : public ::testing::TestWithParam<char const*> {
protected:
    static std::string end(char const* way) {
        return run("ffmpeg_ends", {std::string(PLAYFILE_TEST_MEDIA_DIR "/") + GetParam(), way});
    }
};

TEST_P(FFmpegLifetime, MainMayReturnWhileFramesAreBeingDecoded) {
    EXPECT_EQ(end("return"), "end of main\n");
}

TEST_P(FFmpegLifetime, ProcessMayExitWhileFramesAreBeingDecoded) {
    EXPECT_EQ(end("exit"), "");
}

TEST_P(FFmpegLifetime, AnotherThreadMayExitTheProcess) {
    EXPECT_EQ(end("thread"), "");
}

TEST_P(FFmpegLifetime, RequestsMayBeDroppedBeforeTheEnd) {
    EXPECT_EQ(end("dropped"), "end of main\n");
}

TEST_P(FFmpegLifetime, LibraryMayExitAndBeUsedAgainWhileFramesAreBeingDecoded) {
    EXPECT_EQ(end("closed"), "end of main\n");
}

TEST_P(FFmpegLifetime, StaticObjectsMayHoldPicturesPastMain) {
    EXPECT_EQ(end("static"), "end of main\n");
}

TEST_P(FFmpegLifetime, ShutdownByHandFailsOldFilesAndServesNewOnes) {
    EXPECT_EQ(end("shutdown"), "late: status 3\nreopened: status 2\nend of main\n");
}

INSTANTIATE_TEST_SUITE_P(Clips, FFmpegLifetime,
                         ::testing::Values("h264-bframes-aac.mp4", "prores-422-pcm.mov"),
                         [](auto const& clip) {
                             return std::string(clip.index == 0 ? "Streamed" : "Direct");
                         });

TEST(Lifetime, ShutdownFailsRequestsOfOldFilesAndServesNewOnes) {
    EXPECT_EQ(run("use_after_shutdown"), "old file: status 3\nnew file: status 2\nfree queues: 0\n");
}

TEST(Lifetime, WorkerMayBeTheLastToHoldItsFile) {
    EXPECT_EQ(run("last_release_on_worker", {"open"}), "file gone\nstatus 2\n");
}

TEST(Lifetime, WorkerMayBeTheLastToHoldItsFileWhenThePoolIsShut) {
    EXPECT_EQ(run("last_release_on_worker", {"shut"}), "file gone\nstatus 2\n");
}

TEST(Lifetime, WorkerMayBeTheLastToHoldItsFileAtExit) {
    EXPECT_EQ(run("last_release_on_worker", {"exit"}), "file gone\n");
}

TEST(Lifetime, ServicesWorkBeforeAndAfterMain) {
    EXPECT_EQ(run("outside_main"), "before main: all well\nstatus 2\nafter main: all well\n");
}

TEST(Lifetime, AnotherProgramMayBeStartedMeanwhile) {
    EXPECT_EQ(run("fork_and_exec"), "child: 0\nframes read: 50\n");
}

TEST(SoundLifetime, ExitReadsTheRequestsThatWait) {
    EXPECT_EQ(run("sound_ends", {"main"}), "shutdown\nsounds read: 20\n");
}

TEST(SoundLifetime, ExitFromAThreadReadsTheRequestsThatWait) {
    EXPECT_EQ(run("sound_ends", {"thread"}), "shutdown\nsounds read: 20\n");
}

TEST(SoundLifetime, ExitFromInsideAReadEndsTheProcess) {
    EXPECT_EQ(run("sound_ends", {"worker"}), "sounds read: 0\n");
}

TEST(SoundLifetime, ExitDropsTheRequestsThatNobodyHolds) {
    EXPECT_EQ(run("sound_ends", {"dropped"}), "shutdown\nsounds read: 1\n");
}

TEST(SoundLifetime, StaticObjectsMayHoldARequestThatIsUnderWayPastMain) {
    EXPECT_EQ(run("sound_ends", {"held"}), "shutdown\nrequest: status 2\nsounds read: 1\n");
}

TEST(SoundLifetime, WorkerMayBeTheLastToHoldItsFile) {
    EXPECT_EQ(run("sound_ends", {"release"}), "file gone\nstatus 2\nsounds read: 2\n");
}

TEST(SoundLifetime, WorkerMayBeTheLastToHoldItsFileWhenThePoolIsShut) {
    EXPECT_EQ(run("sound_ends", {"release-shut"}), "file gone\nstatus 2\nsounds read: 2\n");
}

TEST(SoundLifetime, WorkerMayBeTheLastToHoldItsFileAtExit) {
    EXPECT_EQ(run("sound_ends", {"release-exit"}), "shutdown\nfile gone\nsounds read: 1\n");
}

TEST(SoundLifetime, ShutdownFailsRequestsOfOldFilesAndServesNewOnes) {
    EXPECT_EQ(run("sound_ends", {"after"}),
              "old file: status 3\nnew file: status 2\nfree queues: 0\nsounds read: 2\n");
}

}  // namespace
