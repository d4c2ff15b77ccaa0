/// The examples as a newcomer runs them, and the one that the README shows.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <sstream>

#include "tests/examples/Ppm.h"

namespace {

struct Outcome {
    int code = -1;
    std::string output;
};

/// Runs a program of the build with both outputs in one.
Outcome run(std::string const& program, std::string const& arguments) {
    std::string const command = std::string(PLAYFILE_BIN_DIR) + "/" + program + " " + arguments + " 2>&1";
    Outcome outcome;
    std::FILE* const pipe = popen(command.c_str(), "r");
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        outcome.output.push_back(static_cast<char>(c));
    }
    int const status = pclose(pipe);
    outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

std::string contentOf(std::string const& path) {
    std::ostringstream content;
    content << std::ifstream(std::string(PLAYFILE_SOURCE_DIR) + "/" + path).rdbuf();
    return content.str();
}

/// What stands between the first fence of C++ and its end.
std::string firstCodeOf(std::string const& page) {
    std::string const fence = "```cpp\n";
    std::size_t const begin = page.find(fence);
    if (begin == std::string::npos) {
        return {};
    }
    std::size_t const text = begin + fence.size();
    return page.substr(text, page.find("```\n", text) - text);
}

std::string quoted(std::string const& path) {
    return " '" + path + "'";
}

class ExamplePrograms : public ::testing::Test {
protected:
    PpmFolder folder_;
    std::string const plugins_ = quoted(PLAYFILE_EXAMPLE_PLUGIN_DIR);
};

TEST_F(ExamplePrograms, ReadAFrameSaysTheSizeOfTheFirstFrame) {
    std::string const clip = folder_.write("clip.ppm", PpmFolder::picture(5, 3, 10));
    Outcome const outcome = run("example_read_a_frame", plugins_ + quoted(clip));
    EXPECT_NE(outcome.output.find("frame 0 is 5 x 3\n"), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.code, 0);
}

TEST_F(ExamplePrograms, ReadAFrameFailsWhereThereIsNoFile) {
    EXPECT_EQ(run("example_read_a_frame", plugins_ + quoted(folder_.pathOf("none.ppm"))).code, 1);
}

TEST_F(ExamplePrograms, OwnHostIsAskedForEverythingThatItBrings) {
    std::string const clip = folder_.write("clip.ppm", PpmFolder::picture(5, 3, 10));
    Outcome const outcome = run("example_own_host", plugins_ + quoted(clip));
    EXPECT_EQ(outcome.output, "[log] Open   \"" + clip +
                                  "\" with PPM example for video\n"
                                  "frame 0 is 5 x 3\n"
                                  "2 files were opened through this host's file manager\n");
    EXPECT_EQ(outcome.code, 0);
}

TEST_F(ExamplePrograms, OwnHostFailsOnAFileThatNobodyReads) {
    std::string const clip = folder_.write("clip.ppm", "words");
    EXPECT_EQ(run("example_own_host", plugins_ + quoted(clip)).code, 1);
}

/// Each of the programs that wait for a read, on reads of whose end nobody is told.
class WaitingProgram : public ::testing::TestWithParam<char const*> {
protected:
    WaitingProgram() {
        std::filesystem::create_symlink(PLAYFILE_TEST_PLUGIN_DIR "/tells_nobody.so",
                                        folder_.pathOf("tells_nobody.so"));
    }
    [[nodiscard]] Outcome runOn(std::string const& content) const {
        return run(GetParam(), quoted(folder_.pathOf("")) + quoted(folder_.write("clip.late", content)));
    }

    PpmFolder folder_;
};

TEST_P(WaitingProgram, SeesByTheStatusThatTheReadIsComplete) {
    Outcome const outcome = runOn("good");
    EXPECT_NE(outcome.output.find("frame 0 is 5 x 3\n"), std::string::npos) << outcome.output;
}

TEST_P(WaitingProgram, SeesByTheStatusThatTheReadHasFailed) {
    EXPECT_EQ(runOn("fail").code, 1);
}

INSTANTIATE_TEST_SUITE_P(Examples, WaitingProgram,
                         ::testing::Values("example_read_a_frame", "example_own_host"),
                         [](::testing::TestParamInfo<char const*> const& program) {
                             return std::string(program.param);
                         });

TEST(Readme, ShowsTheExampleThatReadsAFrame) {
    std::string const example = contentOf("examples/read_a_frame.cpp");
    ASSERT_FALSE(example.empty());
    EXPECT_EQ(firstCodeOf(contentOf("README.md")), example);
}

}  // namespace
