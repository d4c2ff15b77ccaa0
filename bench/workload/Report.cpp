#include "bench/workload/Report.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "bench/support/Figures.h"

namespace bench {
namespace {

constexpr double bytesPerMiB = 1024.0 * 1024.0;

std::string nameOfFile(std::string const& path) {
    return std::filesystem::path(path).filename();
}

double decodedOf(Sample const& sample) {
    return static_cast<double>(sample.decodedFrames);
}

void printTaken(std::FILE* out, std::vector<Sample> const& samples) {
    std::fprintf(out, " %8.1f %8.0f %8.0f %8.0f %8.0f", medianOf(samples, &restMiBOf),
                 medianOf(samples, &peakThreadsOf), medianOf(samples, &restThreadsOf),
                 medianOf(samples, &peakDescriptorsOf), medianOf(samples, &restDescriptorsOf));
}

nlohmann::json describe(std::vector<Sample> const& samples) {
    return {{"secondsPerRead", medianSecondsPerRead(samples)},
            {"peakMiB", medianOf(samples, &peakMiBOf)},
            {"restMiB", medianOf(samples, &restMiBOf)},
            {"peakThreads", medianOf(samples, &peakThreadsOf)},
            {"restThreads", medianOf(samples, &restThreadsOf)},
            {"peakDescriptors", medianOf(samples, &peakDescriptorsOf)},
            {"restDescriptors", medianOf(samples, &restDescriptorsOf)},
            {"decodedFrames", medianOf(samples, &decodedOf)}};
}

}  // namespace

bool CaseResult::isGood() const {
    return areGood(library) && areGood(plain);
}

double CaseResult::librarySecondsPerRead() const {
    return medianSecondsPerRead(library);
}

double CaseResult::plainSecondsPerRead() const {
    return medianSecondsPerRead(plain);
}

double CaseResult::ratio() const {
    return ratioTo(plain, library);
}

double CaseResult::extraBytes() const {
    return bytesAbove(plain, library);
}

double CaseResult::decodesPerFrame() const {
    return spannedFrames == 0 ? 0.0 : medianOf(library, &decodedOf) / spannedFrames;
}

bool BinResult::isGood() const {
    return areGood(library) && areGood(ahead) && areGood(plain);
}

void printTable(std::FILE* out, ClipResult const& clip) {
    std::fprintf(out, "%s: %s in %s, %u x %u, %u frames, %u to a key\n", nameOfFile(clip.path).c_str(),
                 clip.facts.codec, clip.facts.container, clip.facts.width, clip.facts.height,
                 clip.facts.frameCount, clip.facts.framesPerKey);
    std::fprintf(out, "  %-14s %8s %14s %14s %8s %12s %8s %8s %8s %8s %8s\n", "case", "reads", "playfile ms",
                 "plain loop ms", "ratio", "memory MiB", "rest MiB", "threads", "at rest", "files",
                 "at rest");
    for (CaseResult const& result : clip.cases) {
        std::fprintf(out, "  %-14s %8u %14.4f %14.4f %8.2f %+12.1f", nameOf(result.which),
                     result.library.front().reads, result.librarySecondsPerRead() * 1000,
                     result.plainSecondsPerRead() * 1000, result.ratio(), result.extraBytes() / bytesPerMiB);
        printTaken(out, result.library);
        std::fprintf(out, "%s\n", result.isGood() ? "" : "  (reads failed)");
    }
    std::fflush(out);
}

void printBin(std::FILE* out, std::optional<BinResult> const& bin) {
    if (!bin) {
        return;
    }
    double const count = std::max(bin->library.front().reads, 1U);
    std::fprintf(out, "%.0f clips, opened with a first frame each, all held\n", count);
    std::fprintf(out, "  %-14s %10s %8s %12s %12s %12s\n", "", "seconds", "ratio", "MiB a clip", "threads",
                 "files");
    using Line = std::pair<char const*, std::vector<Sample> const*>;
    for (auto const& [name, samples] : {Line{"playfile", &bin->library}, Line{"opened ahead", &bin->ahead},
                                        Line{"plain loops", &bin->plain}}) {
        std::fprintf(out, "  %-14s %10.3f %8.2f %12.2f %12.2f %12.2f\n", name,
                     medianSecondsPerRead(*samples) * count, ratioTo(bin->plain, *samples),
                     restMiBAbove(*samples) / count, medianOf(*samples, &restThreadsOf) / count,
                     medianOf(*samples, &restDescriptorsOf) / count);
    }
    std::fprintf(out, "  MiB, threads and files are those of a clip after a second of rest\n");
    std::fflush(out);
}

void printLegend(std::FILE* out) {
    std::fprintf(
        out,
        "ms: one read. ratio: how many times as fast as the plain loop. memory: the most that was\n"
        "resident in playfile's process, less that of the plain loop's. rest: what is resident after\n"
        "a second of rest. threads, files: at most, and after that second.\n");
}

void printJson(std::FILE* out, std::vector<ClipResult> const& clips, std::optional<BinResult> const& bin) {
    nlohmann::json all = nlohmann::json::array();
    for (ClipResult const& clip : clips) {
        nlohmann::json cases = nlohmann::json::array();
        for (CaseResult const& result : clip.cases) {
            cases.push_back({{"case", nameOf(result.which)},
                             {"good", result.isGood()},
                             {"reads", result.library.front().reads},
                             {"playfileMsPerRead", result.librarySecondsPerRead() * 1000},
                             {"plainMsPerRead", result.plainSecondsPerRead() * 1000},
                             {"ratio", result.ratio()},
                             {"extraBytes", result.extraBytes()},
                             {"decodesPerFrame", result.decodesPerFrame()},
                             {"playfile", describe(result.library)},
                             {"plain", describe(result.plain)}});
        }
        all.push_back({{"file", clip.path},
                       {"codec", clip.facts.codec},
                       {"container", clip.facts.container},
                       {"width", clip.facts.width},
                       {"height", clip.facts.height},
                       {"frames", clip.facts.frameCount},
                       {"cases", cases}});
    }
    if (bin) {
        all.push_back({{"good", bin->isGood()},
                       {"clips", bin->library.front().reads},
                       {"playfile", describe(bin->library)},
                       {"openedAhead", describe(bin->ahead)},
                       {"plain", describe(bin->plain)}});
    }
    std::fprintf(out, "%s\n", all.dump(2).c_str());
}

}  // namespace bench
