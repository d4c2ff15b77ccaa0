#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace tooltest {

/// How a program has ended and what it wrote.
struct Ended {
    /// As the shell would show it: 128 and the signal's number for one that a signal has ended.
    int exitCode = -1;
    std::string out;
    std::string err;
};

/// A test of the real command, in a folder of its own, with preferences of its own.
class ToolTest : public testing::Test {
protected:
    using Arguments = std::vector<std::string>;

    ToolTest();
    ~ToolTest() override;

    /// Runs the command and waits for its end.
    [[nodiscard]] Ended run(Arguments const& arguments) const;
    /// The same without the right to pass over the modes of files, which root has.
    [[nodiscard]] Ended runWithoutPrivileges(Arguments const& arguments) const;
    /// Runs another program.
    [[nodiscard]] Ended runOther(Arguments const& program) const;

    /// The path of a file in the test's folder.
    [[nodiscard]] std::string path(std::string const& name) const { return (folder_ / name).string(); }
    std::string writeFile(std::string const& name, std::string const& contents) const;

    /// Makes a clip with the ffmpeg program from its test picture, and gives its path.
    ///
    /// @param options  of the output: frame count, codec and so on
    std::string makeClip(std::string const& name, Arguments const& options) const;
    /// H.264 with B-frames: 30 frames of 160x120 at 25 a second.
    [[nodiscard]] std::string makeH264Clip(std::string const& name = "clip.mp4") const;

    /// "frame number, MD5" of all frames in display order, as the ffmpeg program decodes them.
    [[nodiscard]] std::vector<std::string> linearSums(std::string const& file) const;

    /// The command's environment beside what the test itself runs in.
    std::map<std::string, std::string> environment;

private:
    std::filesystem::path folder_;
};

/// The lines of a text without their ends.
[[nodiscard]] std::vector<std::string> linesOf(std::string const& text);

/// The fields of a line, which blanks separate.
[[nodiscard]] std::vector<std::string> fieldsOf(std::string const& line);

/// "frame number, MD5" of each line of `playfile frames --md5`.
[[nodiscard]] std::vector<std::string> sumsOf(std::string const& output);

}  // namespace tooltest
