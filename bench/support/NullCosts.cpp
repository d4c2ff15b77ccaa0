#include "bench/support/NullCosts.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>

#include "bench/support/NullClip.h"
#include "bench/support/NullFile.h"
#include "files/PlayFileCache.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int runs = 5;
constexpr std::uint32_t window = 128;

double bestUs(std::uint32_t operations, std::function<void()> const& work) {
    double best = std::numeric_limits<double>::max();
    for (int run = 0; run < runs; ++run) {
        auto const start = Clock::now();
        work();
        best = std::min(best, std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    return best / operations;
}

double measureCachedOpen() {
    constexpr std::uint32_t operations = 200000;
    NullClip const clip;
    PlayFileCache& cache = *PlayFileCache::Shared();
    DecodeFormat const format = DecodeFormat::getDefault();
    return bestUs(operations, [&] {
        for (std::uint32_t i = 0; i < operations; ++i) {
            static_cast<void>(cache.open(clip.filename(), clip.cookie(), format, OpenType::video, 0));
        }
    });
}

double measureRequest(std::uint32_t heldCount, std::uint32_t operations) {
    NullFile file;
    CountingIssuer issuer;
    auto const held = file.readAndHold(heldCount, issuer);
    std::uint32_t frame = heldCount;
    return bestUs(operations, [&] {
        file.askAhead(frame, operations, window, issuer);
        frame += operations;
    });
}

}  // namespace

NullCosts measureNullCosts() {
    NullCosts costs;
    costs.cachedOpenUs = measureCachedOpen();
    costs.requestUs = measureRequest(0, 100000);
    costs.requestWith1000HeldUs = measureRequest(1000, 20000);
    costs.requestWith10000HeldUs = measureRequest(10000, 2000);
    return costs;
}

}  // namespace bench
