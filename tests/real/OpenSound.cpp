#include "tests/real/OpenSound.h"

#include <algorithm>

#include "audio/AudioReadRequest.h"
#include "files/PlayFileCache.h"
#include "host/memory/MemoryCatalogue.h"
#include "tests/fakes/RecordingIssuer.h"
#include "tests/real/Readers.h"

namespace test {
namespace {

/// A queue serves the lowest sample first: a read near the end of a file waits for as long as other threads
/// ask for what lies before it, so for most of a test. ctest's limit ends what hangs.
constexpr std::chrono::hours patience{1};

}  // namespace

OpenSound::OpenSound(std::string const& path) {
    loadReaders();
    MemoryCatalogue& catalogue = MemoryCatalogue::instance();
    catalogue.add(cookieOf(0), fromUTF8(path.c_str()));
    file_ = PlayFileCache::Shared()->open(cookieOf(0), DecodeFormat::getDefault(), 0);
    std::uint32_t const channels = file_ ? file_->metadata->getTotalChannels() : 0;
    for (std::uint32_t channel = 1; channel < channels; ++channel) {
        catalogue.add(cookieOf(channel), fromUTF8(path.c_str()));
    }
}

/// A buffer may go on behind what was asked for.
std::string OpenSound::read(std::uint32_t channel, std::uint64_t first, std::uint32_t count) const {
    RecordingIssuer issuer;
    Ox::Ptr<AudioReadRequest> request;
    OxResult const result = PlayFileCache::Shared()->audioReadRequest(
        request, cookieOf(channel), first, count, levelOriginal, issuer.getProxy(), true);
    if (result != oxSuccess || request->file->queueReadRequest(request) != 1 ||
        !issuer.waitForCalls(1, patience) || request->getRequestStatus() != requestComplete) {
        return {};
    }
    std::uint32_t const wanted =
        request->numSamples * request->getAudioMetadata()[request->stream].bytesPerSample;
    return {static_cast<char const*>(request->getBuffer()), std::min(wanted, request->getUsed())};
}

}  // namespace test
