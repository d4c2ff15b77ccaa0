#include "bench/sound/SoundReport.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "bench/support/Figures.h"

namespace bench {
namespace {

constexpr double bytesPerMiB = 1024.0 * 1024.0;

double microseconds(std::vector<Sample> const& samples) {
    return medianSecondsPerRead(samples) * 1e6;
}

double processorMicroseconds(std::vector<Sample> const& samples) {
    return medianProcessorSecondsPerRead(samples) * 1e6;
}

std::string nameOfFile(std::string const& path) {
    return std::filesystem::path(path).filename();
}

nlohmann::json describe(SoundCaseResult const& result) {
    nlohmann::json rivals = nlohmann::json::array();
    for (Rival const& rival : result.rivals) {
        rivals.push_back({{"rival", rival.name},
                          {"good", areGood(rival.samples)},
                          {"usPerBlock", microseconds(rival.samples)},
                          {"processorUsPerBlock", processorMicroseconds(rival.samples)},
                          {"ratio", ratioTo(rival.samples, result.library)},
                          {"extraBytes", bytesAbove(rival.samples, result.library)}});
    }
    return {{"case", nameOf(result.which)},
            {"good", result.isGood()},
            {"blocks", result.library.front().reads},
            {"playfileUsPerBlock", microseconds(result.library)},
            {"playfileProcessorUsPerBlock", processorMicroseconds(result.library)},
            {"rivals", rivals}};
}

}  // namespace

bool SoundCaseResult::isGood() const {
    return areGood(library) &&
           std::all_of(rivals.begin(), rivals.end(), [](Rival const& each) { return areGood(each.samples); });
}

void printSoundTable(std::FILE* out, SoundResult const& result) {
    std::fprintf(out, "%s: %s, %u channels, %llu samples, blocks of %u\n", nameOfFile(result.path).c_str(),
                 result.facts.description, result.facts.channels,
                 static_cast<unsigned long long>(result.facts.sampleCount), result.blockSamples);
    std::fprintf(out, "  %-9s %-21s %7s %10s %10s %7s %17s %11s\n", "case", "rival", "blocks", "playfile us",
                 "rival us", "ratio", "processor us", "memory MiB");
    for (SoundCaseResult const& each : result.cases) {
        for (Rival const& rival : each.rivals) {
            std::fprintf(out, "  %-9s %-21s %7u %11.2f %10.2f %7.2f %8.2f %8.2f %+11.1f%s\n",
                         nameOf(each.which), rival.name.c_str(), each.library.front().reads,
                         microseconds(each.library), microseconds(rival.samples),
                         ratioTo(rival.samples, each.library), processorMicroseconds(each.library),
                         processorMicroseconds(rival.samples),
                         bytesAbove(rival.samples, each.library) / bytesPerMiB,
                         each.isGood() ? "" : "  (reads failed)");
        }
    }
    std::fflush(out);
}

void printSoundLegend(std::FILE* out) {
    std::fprintf(
        out,
        "us: one block of all channels. ratio: how many times as fast as the rival. memory: the most\n"
        "that was resident in playfile's process, less that of the rival's.\n");
}

void printSoundJson(std::FILE* out, std::vector<SoundResult> const& results) {
    nlohmann::json all = nlohmann::json::array();
    for (SoundResult const& result : results) {
        nlohmann::json cases = nlohmann::json::array();
        std::transform(result.cases.begin(), result.cases.end(), std::back_inserter(cases), describe);
        all.push_back({{"file", result.path},
                       {"description", result.facts.description},
                       {"channels", result.facts.channels},
                       {"samples", result.facts.sampleCount},
                       {"blockSamples", result.blockSamples},
                       {"cases", cases}});
    }
    std::fprintf(out, "%s\n", all.dump(2).c_str());
}

void printSoundTargets(std::FILE* out, std::vector<SoundResult> const& results) {
    for (SoundResult const& result : results) {
        for (SoundCaseResult const& each : result.cases) {
            for (Rival const& rival : each.rivals) {
                double const ratio = ratioTo(rival.samples, each.library);
                if (rival.leastRatio > 0.0) {
                    std::fprintf(out, "%s  %s, %s, times %s: %.2f  at least %.6g\n",
                                 ratio >= rival.leastRatio ? "pass" : "FAIL", nameOfFile(result.path).c_str(),
                                 nameOf(each.which), rival.name.c_str(), ratio, rival.leastRatio);
                }
            }
        }
    }
}

}  // namespace bench
