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

/// As many requests ahead of the one that is waited for as the argument says.
void pipelined(benchmark::State& state) {
    auto const window = static_cast<std::uint32_t>(state.range(0));
    NullFile file;
    CountingIssuer issuer;
    std::vector<Ox::Ptr<VideoReadRequest>> held(window);
    std::uint32_t frame = 0;
    for (auto _ : state) {
        if (frame >= window) {
            issuer.waitFor(frame - window + 1);
        }
        held[frame % window] = file.ask(frame, issuer);
        ++frame;
    }
    issuer.waitFor(frame);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(pipelined)->Arg(8)->Arg(32)->Arg(128)->UseRealTime();

/// A request that isn't like any of those held, which all have been read.
void askWithRequestsHeld(benchmark::State& state) {
    auto const heldCount = static_cast<std::uint32_t>(state.range(0));
    NullFile file;
    CountingIssuer issuer;
    std::vector<Ox::Ptr<VideoReadRequest>> held;
    for (std::uint32_t frame = 0; frame < heldCount; ++frame) {
        held.push_back(file.ask(frame, issuer));
        issuer.waitFor(frame + 1);
    }
    std::uint32_t asked = 0;
    for (auto _ : state) {
        Ox::Ptr<VideoReadRequest> request = file.request(heldCount + asked, issuer);
        ++asked;
        file.queue(request);
        state.PauseTiming();
        issuer.waitFor(heldCount + asked);
        request.decRef();
        state.ResumeTiming();
    }
    state.SetComplexityN(heldCount);
}
BENCHMARK(askWithRequestsHeld)->RangeMultiplier(10)->Range(1, 10000)->Complexity(benchmark::oN);

/// A request that the newest of those held serves: all the others are looked at before it.
void mergeWithRequestsHeld(benchmark::State& state) {
    auto const heldCount = static_cast<std::uint32_t>(state.range(0));
    NullFile file;
    CountingIssuer issuer;
    std::vector<Ox::Ptr<VideoReadRequest>> held;
    for (std::uint32_t frame = 0; frame < heldCount; ++frame) {
        held.push_back(file.ask(frame, issuer));
        issuer.waitFor(frame + 1);
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(file.ask(heldCount - 1, issuer));
    }
    state.SetComplexityN(heldCount);
}
BENCHMARK(mergeWithRequestsHeld)->RangeMultiplier(10)->Range(1, 10000)->Complexity(benchmark::oN);

}  // namespace
}  // namespace bench
