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
