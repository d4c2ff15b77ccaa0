/// Copies a file from a server on this machine, through playfile and with the program curl, in turn in one run, and
/// compares the times. Both ends with the file on its device.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "bench/remote/FileServer.h"
#include "bench/support/Figures.h"
#include "bench/support/Program.h"
#include "bench/support/Silence.h"
#include "host/remote/RemoteStores.h"
#include "ole/os/OS.h"

namespace {

using namespace bench;

constexpr std::uint64_t bytesPerMiB = 1024 * 1024;
/// Of the speed of the program curl.
constexpr double leastRatio = 0.8;

struct Options {
    std::string folder = ".";
    std::uint64_t sizeMiB = 1024;
    unsigned rounds = 5;
    bool isJson = false;
    bool showsTargets = false;
};

/// A file for one copy, which goes at the end.
class Target {
public:
    explicit Target(std::string const& folder)
        : path_((std::filesystem::absolute(folder) / ("playfile-remotebench-" + std::to_string(getpid())))
                    .string()) {}
    ~Target() { unlink(path_.c_str()); }
    Target(Target const&) = delete;
    Target& operator=(Target const&) = delete;

    [[nodiscard]] std::string const& path() const { return path_; }
    [[nodiscard]] bool holds(std::uint64_t byteCount) const {
        std::error_code error;
        return std::filesystem::file_size(path_, error) == byteCount && !error;
    }

private:
    std::string const path_;
};

/// The program's own end isn't that of the file's way to its device: that is waited for, as playfile does.
bool copyWithProgram(std::string const& url, std::string const& path) {
    return runProgram({"curl", "--silent", "--noproxy", "127.0.0.1", "--output", path, url}) &&
           isOnItsDevice(path);
}

bool copyWithPlayfile(std::string const& url, std::string const& path) {
    return OS()->getFileManager().copyFile(fromUTF8(url.c_str()), fromUTF8(path.c_str()), false, nullptr,
                                           nullptr) == iFileManager::copied;
}

Sample measureCopy(Options const& options, std::string const& url,
                   bool (*copy)(std::string const& url, std::string const& path)) {
    Sample sample;
    Target const target(options.folder);
    measureTime(sample,
                [&] { return copy(url, target.path()) && target.holds(options.sizeMiB * bytesPerMiB); });
    sample.reads = 1;
    return sample;
}

double speed(Options const& options, std::vector<Sample> const& samples) {
    return double(options.sizeMiB) / medianOf(samples, [](Sample const& sample) { return sample.seconds; });
}

void print(Options const& options, nlohmann::ordered_json const& report) {
    if (options.isJson) {
        std::printf("%s\n", report.dump(2).c_str());
        return;
    }
    for (auto const& [key, value] : report.items()) {
        std::printf("%-32s %10.2f\n", key.c_str(), value.get<double>());
    }
}

int compare(Options const& options) {
    FileServer const server(options.sizeMiB * bytesPerMiB);
    RemoteStores const stores;
    std::vector<Sample> ours;
    std::vector<Sample> theirs;
    for (unsigned round = 0; round < options.rounds && server.isUsable(); ++round) {
        ours.push_back(measureCopy(options, server.url(), &copyWithPlayfile));
        theirs.push_back(measureCopy(options, server.url(), &copyWithProgram));
    }
    if (!server.isUsable() || !areGood(ours) || !areGood(theirs)) {
        std::fprintf(
            stderr,
            "playfile_remotebench: the copies failed; check the room in \"%s\" and in memory, and that the "
            "program curl is installed\n",
            options.folder.c_str());
        return 1;
    }
    double const ratio = ratioTo(theirs, ours);
    print(options, {{"MiB", double(options.sizeMiB)},
                    {"playfileMiBPerSecond", speed(options, ours)},
                    {"curlMiBPerSecond", speed(options, theirs)},
                    {"ratio", ratio}});
    if (options.showsTargets) {
        std::fprintf(stderr, "%s  at least %.2f as fast as curl: %.2f\n",
                     ratio >= leastRatio ? "reached" : "MISSED ", leastRatio, ratio);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app(
        "Compares copies from a server on this machine, through playfile and with the program curl.");
    app.add_option("--folder", options.folder, "Where to write")->capture_default_str();
    app.add_option("--size", options.sizeMiB, "MiB of the file, which has to fit into memory")
        ->check(CLI::Range(1, 65536));
    app.add_option("--rounds", options.rounds, "Repetitions, both sides in turn")->check(CLI::Range(1, 1000));
    app.add_flag("--json", options.isJson, "Print JSON instead of a table");
    app.add_flag("--target", options.showsTargets, "Say whether the set figure is reached");
    CLI11_PARSE(app, argc, argv);

    setenv("no_proxy", "127.0.0.1", 1);
    Silence const silence;
    return compare(options);
}
