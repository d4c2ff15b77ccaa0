/// What it takes to split interleaved sound into channels, beside a plain loop over each channel and beside
/// copying the same bytes.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "toolkit/sound/AudioInterleaver.h"
#include "toolkit/sound/ByteBufferImpl.h"

namespace bench {
namespace {

/// A second of sound, in the channels and bytes of a sample that the arguments say.
class Second {
public:
    explicit Second(benchmark::State const& state) {
        format.channels = static_cast<std::uint32_t>(state.range(0));
        format.bytesPerSample = static_cast<std::uint32_t>(state.range(1));
        interleaved->setUsed(samples * format.channels * format.bytesPerSample);
        std::memset(interleaved->getBuffer(), 1, interleaved->getUsed());
        split();
    }
    void split() { static_cast<void>(AudioInterleaver::deinterleaveAudio(format, interleaved, list)); }
    void count(benchmark::State& state) const {
        state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * interleaved->getUsed()));
    }

    static constexpr std::uint32_t samples = 48000;
    Aud::Metadata format;
    Ox::Ptr<ByteBufferImpl> const interleaved = Ox::makePtr<ByteBufferImpl>(0U);
    Aud::StreamBufferList list;
};

void split(benchmark::State& state) {
    Second second(state);
    for (auto _ : state) {
        second.split();
        benchmark::ClobberMemory();
    }
    second.count(state);
}

/// Sample by sample, channel by channel.
template <std::size_t Bytes>
void splitByPlainLoops(Second& second) {
    std::size_t const stride = second.list.size() * Bytes;
    auto const* from = static_cast<std::uint8_t const*>(second.interleaved->getBuffer());
    for (Aud::StreamBuffer const& buffer : second.list) {
        auto* const to = static_cast<std::uint8_t*>(buffer.getBuffer());
        for (std::size_t i = 0; i < Second::samples; ++i) {
            std::memcpy(to + i * Bytes, from + i * stride, Bytes);
        }
        from += Bytes;
    }
}

void plainLoops(benchmark::State& state) {
    Second second(state);
    auto const loops = state.range(1) == 1   ? &splitByPlainLoops<1>
                       : state.range(1) == 2 ? &splitByPlainLoops<2>
                       : state.range(1) == 3 ? &splitByPlainLoops<3>
                       : state.range(1) == 4 ? &splitByPlainLoops<4>
                                             : &splitByPlainLoops<8>;
    for (auto _ : state) {
        loops(second);
        benchmark::ClobberMemory();
    }
    second.count(state);
}

void copy(benchmark::State& state) {
    Second const second(state);
    std::vector<std::uint8_t> to(second.interleaved->getUsed());
    for (auto _ : state) {
        std::memcpy(to.data(), second.interleaved->getBuffer(), to.size());
        benchmark::ClobberMemory();
    }
    second.count(state);
}

void channelsAndBytes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"channels", "bytes"})->ArgsProduct({{1, 2, 6, 16, 64}, {1, 2, 3, 4, 8}});
}

BENCHMARK(split)->Apply(channelsAndBytes);
BENCHMARK(plainLoops)->Apply(channelsAndBytes);
BENCHMARK(copy)->Apply(channelsAndBytes);

}  // namespace
}  // namespace bench
