/// What it costs to ask for a file that is open, and for a frame whose request is still held.
#include <benchmark/benchmark.h>

#include <memory>

#include "bench/support/CountingIssuer.h"
#include "bench/support/NullClip.h"
#include "files/PlayFileCache.h"
#include "ole/os/OS.h"
#include "video/VideoReadRequest.h"

namespace bench {
namespace {

/// Another file beside the one that is asked for, so that the look-up has something to compare.
constexpr int otherFiles = 3;

class CacheBench : public benchmark::Fixture {
public:
    void SetUp(benchmark::State&) override {
        clip_ = std::make_unique<NullClip>();
        others_ = std::make_unique<NullClip[]>(otherFiles);
        for (int i = 0; i < otherFiles; ++i) {
            static_cast<void>(open(others_[i]));
        }
        static_cast<void>(open(*clip_));
    }
    void TearDown(benchmark::State&) override {
        others_.reset();
        clip_.reset();
    }

protected:
    [[nodiscard]] static Ox::Ptr<FileReadInstance> open(NullClip const& clip) {
        return PlayFileCache::Shared()->open(clip.cookie(), DecodeFormat::getDefault(), 0);
    }

    std::unique_ptr<NullClip> clip_;
    std::unique_ptr<NullClip[]> others_;
};

BENCHMARK_F(CacheBench, cachedOpenByName)(benchmark::State& state) {
    PlayFileCache& cache = *PlayFileCache::Shared();
    DecodeFormat const format = DecodeFormat::getDefault();
    for (auto _ : state) {
        benchmark::DoNotOptimize(cache.open(clip_->filename(), clip_->cookie(), format, OpenType::video, 0));
    }
}

BENCHMARK_F(CacheBench, cachedOpenByCookie)(benchmark::State& state) {
    PlayFileCache& cache = *PlayFileCache::Shared();
    DecodeFormat const format = DecodeFormat::getDefault();
    for (auto _ : state) {
        benchmark::DoNotOptimize(cache.open(clip_->cookie(), format, 0));
    }
}

BENCHMARK_F(CacheBench, frameStillHeldAgain)(benchmark::State& state) {
    CountingIssuer issuer;
    DecodeFormat const format = DecodeFormat::getDefault();
    auto const ask = [&] {
        Ox::Ptr<VideoReadRequest> request;
        static_cast<void>(PlayFileCache::Shared()->videoReadRequest(
            request, clip_->cookie(), 7, false, resultDecompressed, format, issuer.getProxy()));
        return request;
    };
    Ox::Ptr<VideoReadRequest> const held = ask();
    while (held->getRequestStatus() != requestComplete) {
        OS()->getThreads().sleep(1);
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(ask());
    }
}

}  // namespace
}  // namespace bench
