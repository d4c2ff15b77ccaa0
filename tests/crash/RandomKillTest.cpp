/// Processes killed at random instants of opening and closing files.
///
/// The seed is printed; the environment's PLAYFILE_TEST_SEED sets it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <random>
#include <thread>

#include "tests/crash/CrashFixture.h"
#include "tests/support/PrintedSeed.h"

namespace {

using testing::IsEmpty;

constexpr int killCount = 200;
constexpr int mostLinesBefore = 40;
constexpr int longestDelayUs = 1500;
constexpr char const* forEver = "1000000000";

class RandomKill : public test::CrashFixture {
protected:
    int pick(int most) { return std::uniform_int_distribution<int>(0, most)(numbers); }

    /// Lets a process work for a while, kills it, and gives the last thing that it said.
    std::string lastWordsOf(test::ChildProcess& process) {
        for (int line = pick(mostLinesBefore); line >= 0; --line) {
            EXPECT_NE(process.readLine(), "");
        }
        std::this_thread::sleep_for(std::chrono::microseconds(pick(longestDelayUs)));
        process.kill();
        auto const lines = test::linesOf(process.waitForEnd().output);
        return lines.empty() ? "" : lines.back();
    }

    std::mt19937 numbers = test::randomWithPrintedSeed();
};

/// What must hold when a process was killed after these words: a file that a reader is inside of is marked;
/// one that is open isn't; on the way into the reader and out of it both may be.
void expectMarksAfter(std::string const& words, std::set<std::string> const& marks) {
    std::string const what = words.substr(0, words.find(' '));
    std::string const name = words.substr(words.find(' ') + 1);
    if (what == "inside") {
        EXPECT_EQ(marks, std::set<std::string>{name}) << words;
    } else if (what == "end") {
        EXPECT_THAT(marks, IsEmpty()) << words;
    } else {
        EXPECT_TRUE(what == "begin" || what == "left") << words;
        EXPECT_TRUE(marks.empty() || marks == std::set<std::string>{name}) << words;
    }
}

TEST_F(RandomKill, LosesNoMarkAndLeavesTheStoreWhole) {
    std::string const a = addFile("a.slow");
    std::string const b = addFile("b.slow");
    for (int i = 0; i < killCount && !HasFailure(); ++i) {
        Process const process = start({"churn", forEver, a, b});
        std::string const words = lastWordsOf(*process);
        EXPECT_TRUE(isStoreWhole());
        expectMarksAfter(words, marks());
        removeMarks();
    }
}

TEST_F(RandomKill, LosesNoMarkOfSeveralProcesses) {
    constexpr int rounds = 20;
    std::array<std::string, 3> const files{addFile("a.slow"), addFile("b.slow"), addFile("c.slow")};
    for (int i = 0; i < rounds && !HasFailure(); ++i) {
        std::array<Process, 3> processes;
        for (std::size_t p = 0; p < files.size(); ++p) {
            processes[p] = start({"churn", forEver, files[p]});
        }
        std::set<std::string> inside;
        for (Process const& process : processes) {
            std::string const words = lastWordsOf(*process);
            if (words.starts_with("inside")) {
                inside.insert(words.substr(words.find(' ') + 1));
            }
        }
        EXPECT_THAT(marks(), testing::IsSupersetOf(inside));
        EXPECT_TRUE(isStoreWhole());
        removeMarks();
    }
}

TEST_F(RandomKill, IsNotNeededForTheMarksOfSeveralProcessesToGo) {
    std::array<std::string, 3> const files{addFile("a.slow"), addFile("b.slow"), addFile("c.slow")};
    std::vector<Process> processes;
    for (std::string const& file : files) {
        processes.push_back(start({"churn", "100", file}));
    }
    for (Process const& process : processes) {
        test::Ending const ending = process->waitForEnd();
        EXPECT_EQ(ending.exitCode, 0);
        EXPECT_THAT(ending.output, testing::Not(testing::HasSubstr("failed")));
        EXPECT_THAT(ending.errors, testing::Not(testing::HasSubstr("not written")));
    }
    EXPECT_THAT(marks(), IsEmpty());
}

}  // namespace
