/// Reads real clips in the ways of an editor, through playfile and through a plain loop on libavformat and
/// libavcodec, in turn in one run, and compares the two.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>

#include "bench/support/Silence.h"
#include "bench/workload/LibrarySide.h"
#include "bench/workload/PlainSide.h"
#include "bench/workload/Report.h"

namespace {

using namespace bench;

struct Options {
    std::vector<std::string> clips;
    std::vector<std::string> cases;
    std::string bin;
    std::string pluginFolder;
    std::uint32_t count = 100;
    std::uint32_t seed = 1;
    unsigned rounds = 3;
    bool isJson = false;
    bool showsTargets = false;
};

/// A repeated read of a held frame is so short that the others' count would measure the clock.
constexpr std::uint32_t heldAgainReads = 20000;

std::string pluginsBesideProgram() {
    std::filesystem::path const program = std::filesystem::read_symlink("/proc/self/exe");
    return program.parent_path().parent_path() / "lib/playfile/plugins";
}

bool isWanted(Options const& options, eCase which) {
    return options.cases.empty() ||
           std::find(options.cases.begin(), options.cases.end(), nameOf(which)) != options.cases.end();
}

ClipFacts factsOf(Options const& options, std::string const& path) {
    return runInChild(std::function<ClipFacts()>([&] {
        ClipFacts facts = lookAt(path);
        facts.frameCount = countFrames(path, options.pluginFolder);
        facts.isGood = facts.isGood && facts.frameCount != 0;
        return facts;
    }));
}

/// Runs both sides, each first in every other round: a machine that slows down under load meets both.
template <class First, class Second>
void inTurn(unsigned round, First const& first, Second const& second) {
    if (round % 2 == 0) {
        first();
        second();
    } else {
        second();
        first();
    }
}

CaseResult measureCase(Options const& options, ClipResult const& clip, eCase which) {
    CaseResult result;
    result.which = which;
    std::uint32_t const count = which == eCase::heldAgain ? heldAgainReads : options.count;
    auto const frames = framesOf(which, clip.facts.frameCount, count, options.seed);
    result.spannedFrames =
        spannedFrames(frames, clip.facts.framesPerKey) * static_cast<std::uint32_t>(placesOf(which));
    auto const measureLibrary = [&] {
        result.library.push_back(runInChild(std::function<Sample()>(
            [&] { return runLibrary(clip.path, options.pluginFolder, which, frames); })));
    };
    auto const measurePlain = [&] {
        result.plain.push_back(
            runInChild(std::function<Sample()>([&] { return runPlain(clip.path, which, frames); })));
    };
    for (unsigned round = 0; round < options.rounds; ++round) {
        inTurn(round, measureLibrary, measurePlain);
    }
    return result;
}

/// False if the clip can't be read, which is then said.
bool measureClip(Options const& options, std::string const& path, std::vector<ClipResult>& results) {
    ClipResult clip;
    clip.path = path;
    clip.facts = factsOf(options, path);
    if (!clip.facts.isGood) {
        std::fprintf(stderr,
                     "playfile_workload: \"%s\" can't be read as video; name a clip that "
                     "`playfile info` shows\n",
                     path.c_str());
        return false;
    }
    bool isGood = true;
    for (eCase const which : allCases()) {
        if (isWanted(options, which)) {
            std::fprintf(stderr, "%s: %s\n", path.c_str(), nameOf(which));
            clip.cases.push_back(measureCase(options, clip, which));
            isGood = isGood && clip.cases.back().isGood();
        }
    }
    results.push_back(clip);
    if (!options.isJson) {
        printTable(stdout, clip);
    }
    return isGood;
}

/// All files of a folder, in the order of their names.
std::vector<std::string> filesOf(std::string const& folder) {
    std::vector<std::string> paths;
    for (std::filesystem::directory_entry const& entry : std::filesystem::directory_iterator(folder)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

BinResult measureBin(Options const& options) {
    BinResult result;
    std::vector<std::string> const paths = filesOf(options.bin);
    for (unsigned round = 0; round < options.rounds; ++round) {
        std::fprintf(stderr, "%s: round %u\n", options.bin.c_str(), round + 1);
        for (bool const isOpenedAhead : {false, true}) {
            (isOpenedAhead ? result.ahead : result.library).push_back(runInChild(std::function<Sample()>([&] {
                return runLibraryBin(paths, options.pluginFolder, isOpenedAhead);
            })));
        }
        result.plain.push_back(runInChild(std::function<Sample()>([&] { return runPlainBin(paths); })));
    }
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    options.pluginFolder = pluginsBesideProgram();
    CLI::App app("Compares reading clips through playfile with a plain libavcodec loop.");
    app.add_option("clips", options.clips, "Clips to read");
    app.add_option("--bin", options.bin, "A folder of short clips, to be opened with a first frame each")
        ->check(CLI::ExistingDirectory);
    app.add_option("--cases", options.cases,
                   "Only these, separated by commas: in order, random, backward, ...")
        ->delimiter(',')
        ->allow_extra_args(false);
    app.add_option("--count", options.count, "Reads of the cases that don't take the whole clip")
        ->check(CLI::Range(1, 1000000));
    app.add_option("--rounds", options.rounds, "Repetitions, both sides in turn")->check(CLI::Range(1, 1000));
    app.add_option("--seed", options.seed, "Of the random and the scrubbed frames");
    app.add_option("--plugins", options.pluginFolder, "Folders with the readers, separated by ':'");
    app.add_flag("--json", options.isJson, "Print JSON instead of a table");
    app.add_flag("--target", options.showsTargets, "Say which of the set speeds are reached");
    CLI11_PARSE(app, argc, argv);
    if (options.clips.empty() && options.bin.empty()) {
        std::fprintf(stderr, "playfile_workload: name clips, or a folder with --bin\n");
        return 2;
    }

    Silence const silence;
    bool isGood = true;
    std::vector<ClipResult> results;
    for (std::string const& path : options.clips) {
        isGood = measureClip(options, path, results) && isGood;
    }
    std::optional<BinResult> bin;
    if (!options.bin.empty()) {
        bin = measureBin(options);
        isGood = bin->isGood() && isGood;
    }
    if (options.isJson) {
        printJson(stdout, results, bin);
    } else {
        printBin(stdout, bin);
        printLegend(stdout);
    }
    if (options.showsTargets) {
        printTargets(options.isJson ? stderr : stdout, results, bin, measureNullCosts());
    }
    return isGood ? 0 : 1;
}
