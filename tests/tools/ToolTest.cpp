#include "tests/tools/ToolTest.h"

#include <unistd.h>

#include <fstream>
#include <sstream>

#include "tests/tools/Process.h"

namespace tooltest {

ToolTest::ToolTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "playfile-tool-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
    environment["HOME"] = folder_.string();
    environment["XDG_CONFIG_HOME"] = path("config");
}

ToolTest::~ToolTest() {
    std::error_code error;
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
    std::filesystem::remove_all(folder_, error);
}

Ended ToolTest::runOther(Arguments const& program) const {
    Ended ended;
    Process process(program, environment);
    ended.exitCode = process.wait(ended.out, ended.err);
    return ended;
}

Ended ToolTest::run(Arguments const& arguments) const {
    Arguments program{PLAYFILE_CLI};
    program.insert(program.end(), arguments.begin(), arguments.end());
    return runOther(program);
}

Ended ToolTest::runWithoutPrivileges(Arguments const& arguments) const {
    Arguments program;
    if (::geteuid() == 0) {
        program = {"setpriv", "--inh-caps=-all", "--bounding-set=-dac_override,-dac_read_search"};
    }
    program.emplace_back(PLAYFILE_CLI);
    program.insert(program.end(), arguments.begin(), arguments.end());
    return runOther(program);
}

std::string ToolTest::writeFile(std::string const& name, std::string const& contents) const {
    std::ofstream(path(name), std::ios::binary) << contents;
    return path(name);
}

std::string ToolTest::makeClip(std::string const& name, Arguments const& options) const {
    Arguments program{
        "ffmpeg", "-v", "error", "-nostdin", "-y", "-f", "lavfi", "-i", "testsrc2=size=160x120:rate=25"};
    program.insert(program.end(), options.begin(), options.end());
    program.push_back(path(name));
    Ended const ended = runOther(program);
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    return path(name);
}

std::string ToolTest::makeH264Clip(std::string const& name) const {
    return makeClip(name, {"-frames:v", "30", "-c:v", "libx264", "-pix_fmt", "yuv420p", "-g", "12", "-bf",
                           "3", "-threads", "2"});
}

std::vector<std::string> ToolTest::linearSums(std::string const& file) const {
    Ended const ended = runOther({"ffmpeg", "-v", "error", "-nostdin", "-noautorotate", "-i", file, "-map",
                                  "0:v:0", "-fps_mode", "passthrough", "-f", "framemd5", "-"});
    std::vector<std::string> sums;
    for (std::string const& line : linesOf(ended.out)) {
        if (line.starts_with('#')) {
            continue;
        }
        sums.push_back(std::to_string(sums.size()) + ' ' + fieldsOf(line).back());
    }
    return sums;
}

std::vector<std::string> linesOf(std::string const& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> fieldsOf(std::string const& line) {
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; stream >> field;) {
        fields.push_back(field);
    }
    return fields;
}

std::vector<std::string> sumsOf(std::string const& output) {
    std::vector<std::string> sums;
    for (std::string const& line : linesOf(output)) {
        std::vector<std::string> const fields = fieldsOf(line);
        sums.push_back(fields.size() == 4 ? fields[0] + ' ' + fields[3] : "malformed: " + line);
    }
    return sums;
}

}  // namespace tooltest
