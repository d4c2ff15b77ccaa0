/// What a request costs on its way through a file's queue to a reader that does nothing, and back.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/support/NullFile.h"

namespace bench {
namespace {

/// One request at a time: the caller sleeps until its read has ended.
void roundTrip(benchmark::State& state) {
    NullFile file;
    CountingIssuer issuer;
    std::uint32_t frame = 0;
    for (auto _ : state) {
        Ox::Ptr<VideoReadRequest> const request = file.ask(frame++, issuer);
        issuer.waitFor(frame);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(roundTrip)->UseRealTime();

/// The reads of `count` frames from 0 on, all of them ended and all still held.
std::vector<Ox::Ptr<VideoReadRequest>> readAndHold(NullFile& file, CountingIssuer& issuer,
                                                   std::uint32_t count) {
    std::vector<Ox::Ptr<VideoReadRequest>> held(count);
    for (std::uint32_t frame = 0; frame < count; ++frame) {
        held[frame] = file.ask(frame, issuer);
        issuer.waitFor(frame + 1);
    }
    return held;
}

/// Asks for one frame after the other, from `frame` on, and waits for each only when `window` more have
/// been asked for.
void askAhead(benchmark::State& state, NullFile& file, CountingIssuer& issuer, std::uint32_t frame,
              std::uint32_t window) {
    std::vector<Ox::Ptr<VideoReadRequest>> underWay(window);
    for (auto _ : state) {
        issuer.waitFor(frame + 1 > window ? frame + 1 - window : 0);
        underWay[frame % window] = file.ask(frame, issuer);
        ++frame;
    }
    issuer.waitFor(frame);
    state.SetItemsProcessed(state.iterations());
}

/// As many requests ahead of the one that is waited for as the argument says.
void pipelined(benchmark::State& state) {
    NullFile file;
    CountingIssuer issuer;
    askAhead(state, file, issuer, 0, static_cast<std::uint32_t>(state.range(0)));
}
BENCHMARK(pipelined)->Arg(8)->Arg(32)->Arg(128)->UseRealTime();

/// Requests that are like none of those held, which all have been read.
void askWithRequestsHeld(benchmark::State& state) {
    constexpr std::uint32_t window = 64;
    auto const heldCount = static_cast<std::uint32_t>(state.range(0));
    NullFile file;
    CountingIssuer issuer;
    auto const held = readAndHold(file, issuer, heldCount);
    askAhead(state, file, issuer, heldCount, window);
    state.SetComplexityN(heldCount);
}
BENCHMARK(askWithRequestsHeld)
    ->RangeMultiplier(10)
    ->Range(1, 10000)
    ->Complexity(benchmark::oN)
    ->UseRealTime();

/// A request that the newest of those held serves: all the others are looked at before it.
void mergeWithRequestsHeld(benchmark::State& state) {
    auto const heldCount = static_cast<std::uint32_t>(state.range(0));
    NullFile file;
    CountingIssuer issuer;
    auto const held = readAndHold(file, issuer, heldCount);
    for (auto _ : state) {
        benchmark::DoNotOptimize(file.ask(heldCount - 1, issuer));
    }
    state.SetComplexityN(heldCount);
}
BENCHMARK(mergeWithRequestsHeld)->RangeMultiplier(10)->Range(1, 10000)->Complexity(benchmark::oN);

}  // namespace
}  // namespace bench
