#include "bench/workload/Report.h"

#include <filesystem>
#include <nlohmann/json.hpp>

#include "bench/support/Figures.h"

namespace bench {
namespace {

constexpr double bytesPerMiB = 1024.0 * 1024.0;

std::string nameOfFile(std::string const& path) {
    return std::filesystem::path(path).filename();
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

void printTable(std::FILE* out, ClipResult const& clip) {
    std::fprintf(out, "%s: %s in %s, %u x %u, %u frames\n", nameOfFile(clip.path).c_str(), clip.facts.codec,
                 clip.facts.container, clip.facts.width, clip.facts.height, clip.facts.frameCount);
    std::fprintf(out, "  %-14s %8s %14s %14s %8s %12s\n", "case", "reads", "playfile ms", "plain loop ms",
                 "ratio", "memory MiB");
    for (CaseResult const& result : clip.cases) {
        std::fprintf(out, "  %-14s %8u %14.4f %14.4f %8.2f %+12.1f%s\n", nameOf(result.which),
                     result.library.front().reads, result.librarySecondsPerRead() * 1000,
                     result.plainSecondsPerRead() * 1000, result.ratio(), result.extraBytes() / bytesPerMiB,
                     result.isGood() ? "" : "  (reads failed)");
    }
    std::fflush(out);
}

void printLegend(std::FILE* out) {
    std::fprintf(out,
                 "ms: one read. ratio: how many times as fast as the plain loop. memory: the most that was\n"
                 "resident in playfile's process, less that of the plain loop's.\n");
}

void printJson(std::FILE* out, std::vector<ClipResult> const& clips) {
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
                             {"extraBytes", result.extraBytes()}});
        }
        all.push_back({{"file", clip.path},
                       {"codec", clip.facts.codec},
                       {"container", clip.facts.container},
                       {"width", clip.facts.width},
                       {"height", clip.facts.height},
                       {"frames", clip.facts.frameCount},
                       {"cases", cases}});
    }
    std::fprintf(out, "%s\n", all.dump(2).c_str());
}

}  // namespace bench
