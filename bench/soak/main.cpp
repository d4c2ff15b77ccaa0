/// Does at random, on many threads and for as long as it is told, what an editor does with its clips, and says
/// whether it ever got another picture than before and whether the process grew.
#include <CLI/CLI.hpp>
#include <cinttypes>
#include <filesystem>
#include <thread>

#include "bench/soak/Growth.h"
#include "bench/soak/Worker.h"
#include "bench/support/LinkFolder.h"
#include "bench/support/Silence.h"
#include "playfile/playfile.h"
#include "toolkit/plugins/Plugin.h"

namespace {

namespace files = std::filesystem;
using namespace soak;

/// A shorter run is still warming up in its last half: its figures are said and not judged.
constexpr double leastJudgedSeconds = 60.0;
constexpr double samplesPerRun = 400.0;
constexpr double shortestIntervalSeconds = 0.02;

struct Options {
    std::vector<std::string> media;
    std::string pluginFolder;
    double seconds = 60;
    unsigned threads = 4;
    std::uint32_t seed = std::random_device()();
};

std::string pluginsBesideProgram() {
    files::path const program = files::read_symlink("/proc/self/exe");
    return program.parent_path().parent_path() / "lib/playfile/plugins";
}

/// All files of the arguments, those of folders and all that is below them, in a fixed order.
std::vector<std::string> filesOf(std::vector<std::string> const& media) {
    std::vector<std::string> found;
    for (std::string const& path : media) {
        if (!files::is_directory(path)) {
            found.push_back(path);
            continue;
        }
        for (files::directory_entry const& entry : files::recursive_directory_iterator(path)) {
            if (entry.is_regular_file()) {
                found.push_back(entry.path());
            }
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

Clips openClips(std::vector<std::string> const& paths, std::string const& folder) {
    Clips clips;
    for (std::string const& path : paths) {
        for (CookieType const type : {'V', 'S'}) {
            if (auto clip = SoakClip::open(path, folder, type)) {
                clips.push_back(std::move(clip));
            }
        }
    }
    return clips;
}

/// Lets the workers go and looks at the process meanwhile.
std::vector<Footprint> runWorkers(Options const& options, Clips const& clips, Tally& tally) {
    std::atomic<bool> mustStop{false};
    std::vector<std::jthread> threads;
    for (unsigned i = 0; i < options.threads; ++i) {
        threads.emplace_back([&, i] { Worker(clips, tally, options.seed + i).run(mustStop); });
    }
    using Clock = std::chrono::steady_clock;
    std::chrono::duration<double> const interval(
        std::max(options.seconds / samplesPerRun, shortestIntervalSeconds));
    auto const end = Clock::now() + std::chrono::duration<double>(options.seconds);
    std::vector<Footprint> samples;
    while (Clock::now() < end || samples.size() < 4) {
        std::this_thread::sleep_for(interval);
        samples.push_back(Footprint::now());
    }
    mustStop.store(true);
    return samples;
}

void print(char const* what, Tally::Count const& count) {
    std::printf("%-34s %10" PRIu64 "\n", what, count.load());
}

void printTally(Tally const& tally) {
    print("pictures asked for", tally.picturesAsked);
    print("pictures compared", tally.picturesCompared);
    print("blocks of a channel asked for", tally.soundsAsked);
    print("blocks of a channel compared", tally.soundsCompared);
    print("cancelled", tally.cancelled);
    print("refused", tally.refused);
    print("unreadable, each time", tally.unreadable);
    print("opened ahead", tally.preOpened);
    print("closed", tally.closed);
    print("evicted", tally.evicted);
    print("renamed", tally.renamed);
    print("repository events", tally.repositoryEvents);
    for (std::string const& fault : tally.faults()) {
        std::printf("FAULT: %s\n", fault.c_str());
    }
    std::printf("%-34s %10" PRIu64 "\n", "faults", tally.faultCount());
}

/// True if nothing has grown, or the run was too short to tell.
bool printGrowth(Options const& options, std::vector<Footprint> const& samples) {
    bool const isJudged = options.seconds >= leastJudgedSeconds;
    bool hasGrown = false;
    for (Growth const& growth : growthOf(samples)) {
        std::printf("%s\n", growth.text().c_str());
        hasGrown = hasGrown || growth.hasGrown();
    }
    if (!isJudged) {
        std::printf("growth isn't judged in less than %.0f seconds\n", leastJudgedSeconds);
    }
    return !isJudged || !hasGrown;
}

int run(Options const& options) {
    bench::Silence const silence;
    bench::LinkFolder const folder;
    playfile_init();
    loadPlugins(fromUTF8(options.pluginFolder.c_str()));
    Clips const clips = openClips(filesOf(options.media), folder.path());
    if (clips.empty()) {
        std::fprintf(stderr,
                     "playfile_soak: nothing there can be read; name clips that `playfile info` shows\n");
        return 2;
    }
    std::printf("seed %" PRIu32 ", %.0f seconds, %u threads, %zu media\n", options.seed, options.seconds,
                options.threads, clips.size());
    std::fflush(stdout);
    Tally tally;
    std::vector<Footprint> const samples = runWorkers(options, clips, tally);
    playfile_exit();
    printTally(tally);
    bool const isSteady = printGrowth(options, samples);
    return isSteady && tally.faultCount() == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    options.pluginFolder = pluginsBesideProgram();
    CLI::App app("Reads clips at random for long, and looks for wrong pictures and for growth.");
    app.add_option("media", options.media, "Clips, and folders of them")
        ->required()
        ->check(CLI::ExistingPath);
    app.add_option("--seconds", options.seconds, "How long")->check(CLI::PositiveNumber);
    app.add_option("--threads", options.threads, "How many threads act")->check(CLI::Range(1, 256));
    app.add_option("--seed", options.seed, "What is done; printed if it isn't given");
    app.add_option("--plugins", options.pluginFolder, "Folders with the readers, separated by ':'");
    CLI11_PARSE(app, argc, argv);
    return run(options);
}
