/// Reads the channels of sound files in the ways of an editor, each channel for itself, through playfile and in
/// the ways of programs without it, in turn in one run, and compares them.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <functional>

#include "bench/sound/LibrarySound.h"
#include "bench/sound/PlainSound.h"
#include "bench/sound/SndfileSide.h"
#include "bench/sound/SoundReport.h"
#include "bench/support/Silence.h"

namespace {

using namespace bench;
using Blocks = std::vector<SoundBlock>;

struct Options {
    std::vector<std::string> files;
    std::string pluginFolder;
    std::uint32_t blockSamples = 1920;
    std::uint32_t blocksAhead = 4;
    std::uint32_t count = 1000;
    std::uint32_t seed = 1;
    unsigned rounds = 5;
    std::string cases;
    bool isAlone = false;
    bool isJson = false;
    bool showsTargets = false;
};

/// How many times as fast as a rival the library is to be. A pass reads every block once, and so does the
/// library; what its way costs on top is bounded, and weighs less where there are many channels.
struct Least {
    double inOrder;
    double random;
};

/// A way to read, and its name.
struct Way {
    std::string name;
    Least least;
    std::function<Sample(Blocks const&)> run;
};

constexpr std::uint32_t manyChannels = 64;
constexpr Least leastToOnePass{0.8, 1 / 2.0};
constexpr Least leastToOnePassOfMany{0.9, 1 / 1.5};
constexpr Least leastToHandles{4.0, 0.0};
constexpr Least leastToPlainLoop{0.95, 1 / 1.2};

std::string pluginsBesideProgram() {
    std::filesystem::path const program = std::filesystem::read_symlink("/proc/self/exe");
    return program.parent_path().parent_path() / "lib/playfile/plugins";
}

std::vector<Way> rivalsFor(SoundResult const& file) {
    std::string const path = file.path;
    if (file.facts.isCompressed || !canSndfileRead(path)) {
        return {{"plain loop", leastToPlainLoop,
                 [path](Blocks const& blocks) { return runPlainSound(path, blocks); }}};
    }
    return {
        {"libsndfile, one pass", file.facts.channels >= manyChannels ? leastToOnePassOfMany : leastToOnePass,
         [path](Blocks const& blocks) { return runSndfile(path, eSndfileWay::onePass, blocks); }},
        {"a handle a channel", leastToHandles,
         [path](Blocks const& blocks) { return runSndfile(path, eSndfileWay::handlePerChannel, blocks); }}};
}

Sample measure(std::function<Sample()> const& work) {
    return runInChild(work);
}

SoundCaseResult measureCase(Options const& options, SoundResult const& file, eSoundCase which) {
    SoundCaseResult result;
    result.which = which;
    Blocks const blocks =
        blocksOf(which, file.facts.sampleCount, options.blockSamples, options.count, options.seed);
    std::uint32_t const ahead = which == eSoundCase::inOrder ? options.blocksAhead : 1;
    std::vector<Way> const ways = options.isAlone ? std::vector<Way>() : rivalsFor(file);
    for (Way const& way : ways) {
        double const least = which == eSoundCase::inOrder ? way.least.inOrder : way.least.random;
        result.rivals.push_back({way.name, {}, least});
    }
    for (unsigned round = 0; round < options.rounds; ++round) {
        result.library.push_back(
            measure([&] { return runLibrarySound(file.path, options.pluginFolder, blocks, ahead); }));
        for (std::size_t i = 0; i < ways.size(); ++i) {
            result.rivals[i].samples.push_back(measure([&] { return ways[i].run(blocks); }));
        }
    }
    return result;
}

/// True for a case that was chosen; without a choice all are.
bool isChosen(Options const& options, eSoundCase which) {
    return options.cases.empty() ||
           ("," + options.cases + ",").find("," + std::string(nameOf(which)) + ",") != std::string::npos;
}

/// False if the file can't be read, which is then said.
bool measureFile(Options const& options, std::string const& path, std::vector<SoundResult>& results) {
    SoundResult result;
    result.path = path;
    result.blockSamples = options.blockSamples;
    result.facts =
        runInChild(std::function<SoundFacts()>([&] { return lookAtSound(path, options.pluginFolder); }));
    if (!result.facts.isGood) {
        std::fprintf(stderr,
                     "playfile_soundbench: \"%s\" can't be read as sound; name a file that `playfile info` "
                     "shows to have some\n",
                     path.c_str());
        return false;
    }
    bool isGood = true;
    for (eSoundCase const which : allSoundCases()) {
        if (!isChosen(options, which)) {
            continue;
        }
        std::fprintf(stderr, "%s: %s\n", path.c_str(), nameOf(which));
        result.cases.push_back(measureCase(options, result, which));
        isGood = isGood && result.cases.back().isGood();
    }
    results.push_back(result);
    if (!options.isJson) {
        printSoundTable(stdout, result);
    }
    return isGood;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    options.pluginFolder = pluginsBesideProgram();
    CLI::App app("Compares reading the channels of sound files through playfile with other ways.");
    app.add_option("files", options.files, "Files to read")->required();
    app.add_option("--block", options.blockSamples, "Samples of a block")->check(CLI::Range(1, 10000000));
    app.add_option("--ahead", options.blocksAhead, "Blocks under way in order")->check(CLI::Range(1, 1000));
    app.add_option("--count", options.count, "Random blocks")->check(CLI::Range(1, 1000000));
    app.add_option("--rounds", options.rounds, "Repetitions, all sides in turn")->check(CLI::Range(1, 1000));
    app.add_option("--cases", options.cases, "Of \"in order,random\" those to measure");
    app.add_option("--seed", options.seed, "Of the random blocks");
    app.add_option("--plugins", options.pluginFolder, "Folders with the readers, separated by ':'");
    app.add_flag("--alone", options.isAlone, "Measure playfile and no rival, for a profiler");
    app.add_flag("--json", options.isJson, "Print JSON instead of a table");
    app.add_flag("--target", options.showsTargets, "Say which of the set speeds are reached");
    CLI11_PARSE(app, argc, argv);

    Silence const silence;
    bool isGood = true;
    std::vector<SoundResult> results;
    for (std::string const& path : options.files) {
        isGood = measureFile(options, path, results) && isGood;
    }
    if (options.isJson) {
        printSoundJson(stdout, results);
    } else {
        printSoundLegend(stdout);
    }
    if (options.showsTargets) {
        printSoundTargets(options.isJson ? stderr : stdout, results);
    }
    return isGood ? 0 : 1;
}
