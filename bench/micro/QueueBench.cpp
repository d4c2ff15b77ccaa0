/// What a request costs on its way through a file's queue to a reader that does nothing, and back.
#include <benchmark/benchmark.h>

#include "bench/support/NullFile.h"

namespace bench {
namespace {

/// Requests that one iteration of a pipelined bench asks for.
constexpr std::uint32_t batch = 1000;

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

/// Requests ahead of the one that is waited for, as many as the argument says.
void pipelined(benchmark::State& state) {
    NullFile file;
    CountingIssuer issuer;
    std::uint32_t frame = 0;
    for (auto _ : state) {
        file.askAhead(frame, batch, static_cast<std::uint32_t>(state.range(0)), issuer);
        frame += batch;
    }
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(pipelined)->Arg(8)->Arg(32)->Arg(128)->UseRealTime();

/// The same with requests held that have all been read, as many as the argument says, and are like none
/// of the new ones.
void pipelinedWithRequestsHeld(benchmark::State& state) {
    constexpr std::uint32_t window = 128;
    auto const heldCount = static_cast<std::uint32_t>(state.range(0));
    NullFile file;
    CountingIssuer issuer;
    auto const held = file.readAndHold(heldCount, issuer);
    std::uint32_t frame = heldCount;
    for (auto _ : state) {
        file.askAhead(frame, batch, window, issuer);
        frame += batch;
    }
    state.SetItemsProcessed(state.iterations() * batch);
    state.SetComplexityN(heldCount);
}
BENCHMARK(pipelinedWithRequestsHeld)
    ->RangeMultiplier(10)
    ->Range(1, 10000)
    ->Complexity(benchmark::oN)
    ->UseRealTime();

/// A request that the newest of those held serves: all the others are looked at before it.
void mergeWithRequestsHeld(benchmark::State& state) {
    auto const heldCount = static_cast<std::uint32_t>(state.range(0));
    NullFile file;
    CountingIssuer issuer;
    auto const held = file.readAndHold(heldCount, issuer);
    for (auto _ : state) {
        benchmark::DoNotOptimize(file.ask(heldCount - 1, issuer));
    }
    state.SetComplexityN(heldCount);
}
BENCHMARK(mergeWithRequestsHeld)->RangeMultiplier(10)->Range(1, 10000)->Complexity(benchmark::oN);

}  // namespace
}  // namespace bench
