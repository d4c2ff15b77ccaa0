/// Copies a large file through playfile and with the program cp, in turn in one run, with the file on its device at the
/// end of both; stops such copies; and relocates many small files, beside cp and a flush of each.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "bench/support/Figures.h"
#include "bench/support/Program.h"
#include "bench/support/Silence.h"
#include "bench/transfer/Relocation.h"
#include "ole/os/OS.h"

namespace {

using namespace bench;
using Clock = std::chrono::steady_clock;

constexpr double bytesPerMiB = 1024.0 * 1024.0;
constexpr double leastCopyRatio = 1.0;
constexpr double mostAbortMs = 100.0;
constexpr double leastRelocationRatio = 0.9;
constexpr double mostGrowthMiB = 4.0;

struct Options {
    std::string folder = ".";
    std::uint64_t sizeMiB = 2048;
    unsigned files = 10'000;
    unsigned bytesPerFile = 16'384;
    unsigned rounds = 5;
    bool isJson = false;
    bool showsTargets = false;
};

std::string pathIn(Options const& options, char const* name) {
    return (std::filesystem::absolute(options.folder) / (std::string("playfile-transferbench-") + name))
        .string();
}

/// Takes a file away at its end.
struct Removed {
    explicit Removed(std::string path) : name(std::move(path)) {}
    ~Removed() {
        std::error_code error;
        std::filesystem::remove(name, error);
    }
    Removed(Removed const&) = delete;
    Removed& operator=(Removed const&) = delete;

    std::string const name;
};

bool makeSource(std::string const& path, std::uint64_t sizeMiB) {
    std::ofstream out(path, std::ios::binary);
    std::string piece(static_cast<std::size_t>(bytesPerMiB), 'x');
    for (std::uint64_t number = 0; number < sizeMiB && out; ++number) {
        std::copy_n(reinterpret_cast<char const*>(&number), sizeof(number), piece.begin());
        out << piece;
    }
    out.close();
    return static_cast<bool>(out);
}

iFileManager::eCopyRC copy(std::string const& from, std::string const& to,
                           iFileManager::CopyProgress progress, void* context) {
    return OS()->getFileManager().copyFile(fromUTF8(from.c_str()), fromUTF8(to.c_str()), true, progress,
                                           context);
}

Sample timed(std::function<bool()> const& work) {
    Sample sample;
    measureTime(sample, work);
    sample.reads = 1;
    return sample;
}

/// How long after it was asked to stop a copy comes back, at several moments of it; the longest of them.
double longestAbortMs(std::string const& from, std::string const& to, double copySeconds) {
    double longest = 0.0;
    for (double const moment : {0.1, 0.3, 0.5, 0.7, 0.9}) {
        std::atomic<bool> isStopped{false};
        Clock::time_point asked;
        std::thread asker([&] {
            std::this_thread::sleep_for(std::chrono::duration<double>(copySeconds * moment));
            asked = Clock::now();
            isStopped = true;
        });
        auto const goOn = [](void* context, unsigned long, unsigned long) {
            return *static_cast<std::atomic<bool>*>(context) ? 0 : 1;
        };
        iFileManager::eCopyRC const code = copy(from, to, goOn, &isStopped);
        Clock::time_point const back = Clock::now();
        asker.join();
        if (code == iFileManager::copyStopped) {
            longest = std::max(longest, std::chrono::duration<double, std::milli>(back - asked).count());
        }
    }
    return longest;
}

void judge(bool isShown, bool isReached, char const* what, double figure) {
    if (isShown) {
        std::fprintf(stderr, "%s  %s: %.2f\n", isReached ? "reached" : "MISSED ", what, figure);
    }
}

int compare(Options const& options) {
    Removed const source(pathIn(options, "from"));
    Removed const target(pathIn(options, "to"));
    std::vector<Sample> ours;
    std::vector<Sample> theirs;
    bool isGood = makeSource(source.name, options.sizeMiB) && isOnItsDevice(source.name);
    for (unsigned round = 0; round < options.rounds && isGood; ++round) {
        std::filesystem::remove(target.name);
        ours.push_back(
            timed([&] { return copy(source.name, target.name, nullptr, nullptr) == iFileManager::copied; }));
        std::filesystem::remove(target.name);
        theirs.push_back(timed([&] {
            return runProgram({"cp", source.name, target.name}) && isOnItsDevice(target.name);
        }));
    }
    isGood = isGood && areGood(ours) && areGood(theirs);
    std::filesystem::remove(target.name);
    double const copySeconds = medianOf(ours, [](Sample const& sample) { return sample.seconds; });
    double const abortMs = isGood ? longestAbortMs(source.name, target.name, copySeconds) : 0.0;
    RelocationFigures const many = isGood
                                       ? measureRelocation(std::filesystem::absolute(options.folder).string(),
                                                           options.files, options.bytesPerFile)
                                       : RelocationFigures();
    if (!isGood || !many.isGood) {
        std::fprintf(stderr, "playfile_transferbench: the copies failed; make room in \"%s\"\n",
                     options.folder.c_str());
        return 1;
    }
    double const ratio = ratioTo(theirs, ours);
    double const relocationRatio = many.plainSeconds / many.seconds;
    nlohmann::ordered_json const report = {
        {"copyMiBPerSecond", double(options.sizeMiB) / copySeconds},
        {"cpMiBPerSecond",
         double(options.sizeMiB) / medianOf(theirs, [](Sample const& sample) { return sample.seconds; })},
        {"copyRatio", ratio},
        {"longestAbortMs", abortMs},
        {"relocatedFiles", double(options.files)},
        {"relocationMsPerFile", many.secondsPerFile * 1000.0},
        {"firstTenthMsPerFile", many.firstSecondsPerFile * 1000.0},
        {"plainMsPerFile", many.plainSeconds / options.files * 1000.0},
        {"allTogetherMsPerFile", many.programSeconds / options.files * 1000.0},
        {"relocationRatio", relocationRatio},
        {"relocationGrowthMiB", many.growthMiB}};
    if (options.isJson) {
        std::printf("%s\n", report.dump(2).c_str());
    } else {
        for (auto const& [key, value] : report.items()) {
            std::printf("%-32s %10.2f\n", key.c_str(), value.get<double>());
        }
    }
    judge(options.showsTargets, ratio >= leastCopyRatio, "copy as fast as cp and a flush", ratio);
    judge(options.showsTargets, abortMs <= mostAbortMs, "stopped within 100 ms", abortMs);
    judge(options.showsTargets, relocationRatio >= leastRelocationRatio,
          "relocation at least 0.9 of a copy and a flush of each file", relocationRatio);
    judge(options.showsTargets, many.growthMiB <= mostGrowthMiB, "no growth of memory, MiB", many.growthMiB);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Compares copies of files and relocations through playfile with the program cp.");
    app.add_option("--folder", options.folder, "Where to write")->capture_default_str();
    app.add_option("--size", options.sizeMiB, "MiB of the large file")->check(CLI::Range(16, 1 << 20));
    app.add_option("--files", options.files, "How many small files")->check(CLI::Range(100, 10'000'000));
    app.add_option("--bytes", options.bytesPerFile, "Bytes of each small file")
        ->check(CLI::Range(1, 1 << 30));
    app.add_option("--rounds", options.rounds, "Repetitions, both sides in turn")->check(CLI::Range(1, 1000));
    app.add_flag("--json", options.isJson, "Print JSON instead of a table");
    app.add_flag("--target", options.showsTargets, "Say which of the set figures are reached");
    CLI11_PARSE(app, argc, argv);
    Silence const silence;
    return compare(options);
}
