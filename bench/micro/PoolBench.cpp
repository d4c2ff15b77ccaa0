/// What it costs to take a queue from a pool and to give it back, and to take and leave a key.
#include <benchmark/benchmark.h>

#include "ole/Ox/OxMultipleAccessQueue.h"
#include "ole/Ox/OxPool.h"
#include "ole/Ox/OxString.h"

namespace bench {
namespace {

struct Item {};

using ItemPool = Ox::Pool<Item, PlayEnginePriority>;

void poolGetAndGiveBack(benchmark::State& state) {
    // Pools enrol with the process's shutdown and are never destroyed before it.
    static auto* const pool = new ItemPool(ItemPool::noLimit);
    for (auto _ : state) {
        ItemPool::ItemPtr item = pool->getItem();
        Ox::giveBack(*pool, item);
    }
}
BENCHMARK(poolGetAndGiveBack)->Threads(1)->Threads(2)->UseRealTime();

void accessQueueBeginAndEnd(benchmark::State& state) {
    static Ox::MultipleAccessQueue<LightweightString<wchar_t>> queue;
    std::wstring const name = L"/media/clips/clip " + std::to_wstring(state.thread_index());
    LightweightString<wchar_t> const key(name);
    for (auto _ : state) {
        queue.beginAccess(key);
        queue.endAccess(key);
    }
}
BENCHMARK(accessQueueBeginAndEnd)->Threads(1)->Threads(2)->UseRealTime();

}  // namespace
}  // namespace bench
