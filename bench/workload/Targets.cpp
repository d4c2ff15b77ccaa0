/// The speeds that playfile sets itself.
#include <algorithm>
#include <string_view>

#include "bench/support/Figures.h"
#include "bench/workload/Report.h"

namespace bench {
namespace {

constexpr double bytesPerMiB = 1024.0 * 1024.0;
constexpr double mostExtraMiB = 64.0;
/// Of a process that reads a streamed file backward.
constexpr double mostBackwardMiB = 512.0;
constexpr double mostDecodesPerFrame = 2.0;
constexpr double leastInterleavedRatio = 0.95;
/// Of a folder of short clips that are all held.
constexpr double leastBinRatio = 2.0;
constexpr double mostThreadsPerClip = 2.2;
constexpr double mostMiBPerClip = 4.0;
/// From so many frames to a key on the groups are long, and from so many columns on pictures are UHD.
constexpr std::uint32_t longGroup = 100;
constexpr std::uint32_t uhdWidth = 3840;
constexpr double mostHeldAgainUs = 2.0;
constexpr double mostCachedOpenUs = 0.2;
constexpr double leastRequestsPerSecond = 200000.0;
constexpr double mostWith1000HeldUs = 10.0;
constexpr double mostGrowthPerTenfold = 10.0;

/// One line: what was measured, the bound, and whether it holds.
class Line {
public:
    explicit Line(std::FILE* out) : out_(out) {}

    void atLeast(std::string const& what, double value, double bound) const {
        print(what, value, "at least", bound, value >= bound);
    }
    void atMost(std::string const& what, double value, double bound) const {
        print(what, value, "at most", bound, value <= bound);
    }

private:
    void print(std::string const& what, double value, char const* relation, double bound, bool holds) const {
        std::fprintf(out_, "%s  %-58s %11.2f  %s %.6g\n", holds ? "pass" : "FAIL", what.c_str(), value,
                     relation, bound);
    }

    std::FILE* out_;
};

/// What is set for files of which most frames need others: H.264 in long and short groups, HEVC in UHD.
struct GroupBounds {
    double longH264;
    double shortH264;
    double uhdHevc;
};

double boundOf(ClipFacts const& facts, GroupBounds const& bounds) {
    std::string_view const codec = facts.codec;
    if (codec == "hevc") {
        return facts.width >= uhdWidth ? bounds.uhdHevc : 0.0;
    }
    if (codec != "h264" || facts.framesPerKey <= 1) {
        return 0.0;
    }
    return facts.framesPerKey >= longGroup ? bounds.longH264 : bounds.shortH264;
}

/// How many times as fast as a plain loop a case has to be for a codec; 0 where nothing is set.
double leastRatio(eCase which, ClipFacts const& facts) {
    std::string_view const codec = facts.codec;
    bool const isEditingCodec = codec == "prores" || codec == "dnxhd";
    switch (which) {
        case eCase::inOrder:
            return 0.97;
        case eCase::openAndFirst:
            return isEditingCodec ? 3.0 : codec == "h264" ? 1.5 : 0.0;
        case eCase::random:
            return isEditingCodec                       ? 2.5
                   : codec == "mjpeg" || codec == "png" ? 0.9
                   : facts.isIntraOnly                  ? 0.0
                   : facts.framesPerKey >= longGroup    ? 2.0
                                                        : 1.2;
        case eCase::backward:
            return boundOf(facts, {.longH264 = 35.0, .shortH264 = 6.0, .uhdHevc = 22.0});
        case eCase::scrub:
            return boundOf(facts, {.longH264 = 22.0, .shortH264 = 3.5, .uhdHevc = 16.0});
        case eCase::interleaved:
            return leastInterleavedRatio;
        default:
            return 0.0;
    }
}

void printClip(Line const& line, ClipResult const& clip) {
    std::string const clipName = std::string(clip.facts.codec) + " " + std::to_string(clip.facts.width) +
                                 " x " + std::to_string(clip.facts.height) + ", ";
    for (CaseResult const& result : clip.cases) {
        std::string const what = clipName + nameOf(result.which);
        if (double const bound = leastRatio(result.which, clip.facts); bound > 0.0) {
            line.atLeast(what + ", times the plain loop", result.ratio(), bound);
        }
        if (result.which == eCase::inOrder) {
            line.atMost(what + ", MiB above the plain loop", result.extraBytes() / bytesPerMiB, mostExtraMiB);
        }
        bool const isStreamed = !clip.facts.isIntraOnly && clip.facts.framesPerKey > 1;
        if (result.which == eCase::backward && isStreamed) {
            line.atMost(what + ", MiB of the process", medianOf(result.library, &peakMiBOf), mostBackwardMiB);
        }
        if (result.which == eCase::scrub && isStreamed) {
            line.atMost(what + ", decodes of a frame", result.decodesPerFrame(), mostDecodesPerFrame);
        }
        if (result.which == eCase::heldAgain) {
            line.atMost(what + ", us", result.librarySecondsPerRead() * 1e6, mostHeldAgainUs);
        }
    }
}

void printBin(Line const& line, BinResult const& bin) {
    double const count = std::max(bin.library.front().reads, 1U);
    std::string const what = std::to_string(bin.library.front().reads) + " clips, ";
    line.atLeast(what + "times the plain loops", ratioTo(bin.plain, bin.library), leastBinRatio);
    line.atMost(what + "threads a clip at rest", medianOf(bin.library, &restThreadsOf) / count,
                mostThreadsPerClip);
    line.atMost(what + "MiB a clip at rest", restMiBAbove(bin.library) / count, mostMiBPerClip);
}

}  // namespace

void printTargets(std::FILE* out, std::vector<ClipResult> const& clips, std::optional<BinResult> const& bin,
                  NullCosts const& costs) {
    Line const line(out);
    for (ClipResult const& clip : clips) {
        printClip(line, clip);
    }
    if (bin) {
        printBin(line, *bin);
    }
    line.atMost("cached open, us", costs.cachedOpenUs, mostCachedOpenUs);
    line.atLeast("requests a second, null reader", 1e6 / costs.requestUs, leastRequestsPerSecond);
    line.atMost("a request with 1000 held, us", costs.requestWith1000HeldUs, mostWith1000HeldUs);
    line.atMost("a request with 10000 held, times one with 1000",
                costs.requestWith10000HeldUs / costs.requestWith1000HeldUs, mostGrowthPerTenfold);
}

}  // namespace bench
