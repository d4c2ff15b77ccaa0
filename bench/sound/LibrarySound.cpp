#include "bench/sound/LibrarySound.h"

#include <atomic>
#include <cstdio>
#include <memory>

#include "audio/AudioReadRequest.h"
#include "files/PlayFileCache.h"
#include "host/memory/MemoryCatalogue.h"
#include "ole/os/OS.h"
#include "playfile/playfile.h"
#include "toolkit/plugins/Plugin.h"

namespace bench {
namespace {

using RequestPtr = Ox::Ptr<AudioReadRequest>;

/// The requests of one block, and who waits for all of them.
///
/// Threads  `requestCompleted` comes on the queue's thread; the others are called by the thread that asks.
class BlockInFlight : public ReadRequestIssuer {
public:
    explicit BlockInFlight(std::size_t channels) : requests_(channels) {}
    ~BlockInFlight() override { withdraw(); }

    /// Only the last of the channels wakes.
    void requestCompleted(Ox::Ptr<iObject>&, RequestStatus) override {
        if (waitingFor_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            haveCome_->set();
        }
    }

    /// False if a channel was refused.
    bool ask(std::vector<Cookie> const& channels, SoundBlock const& block) {
        waitingFor_.store(static_cast<std::uint32_t>(channels.size()), std::memory_order_relaxed);
        isUnderWay_ = true;
        for (std::size_t i = 0; i < channels.size(); ++i) {
            OxResult const result = PlayFileCache::Shared()->audioReadRequest(
                requests_[i], channels[i], block.first, block.count, levelOriginal, getProxy(), true);
            if (result != oxSuccess) {
                return false;
            }
            requests_[i]->file->queueReadRequest(requests_[i]);
        }
        return true;
    }

    /// False if not all samples of all channels have come.
    bool waitForSamples() {
        if (isUnderWay_) {
            haveCome_->wait(iThreadEvent::noTimeLimit);
            isUnderWay_ = false;
        }
        bool isGood = true;
        for (RequestPtr& request : requests_) {
            isGood = isGood && (!request || isWhole(*request));
            request = nullptr;
        }
        return isGood;
    }

private:
    static bool isWhole(AudioReadRequest const& request) {
        std::uint32_t const bytes =
            request.numSamples * request.getAudioMetadata()[request.stream].bytesPerSample;
        return request.getRequestStatus() == requestComplete && request.getUsed() >= bytes;
    }

    std::vector<RequestPtr> requests_;
    std::atomic<std::uint32_t> waitingFor_{0};
    ThreadEventPtr const haveCome_ = OS()->getThreads().makeEvent(false, false, 0);
    bool isUnderWay_ = false;
};

/// A file in the catalogue, a cookie for each channel.
class SoundFile {
public:
    SoundFile(std::string const& path, std::string const& pluginFolder) {
        playfile_init();
        loadPlugins(fromUTF8(pluginFolder.c_str()));
        Ox::UUID const clip = Ox::UUID::generate();
        channels_.emplace_back(clip, 'S', 1);
        MemoryCatalogue::instance().add(channels_.front(), fromUTF8(path.c_str()));
        file_ = PlayFileCache::Shared()->open(channels_.front(), DecodeFormat::getDefault(), 0);
        std::uint32_t const count = file_ ? stream().channels : 0;
        for (std::uint8_t channel = 2; channel <= count; ++channel) {
            channels_.emplace_back(clip, 'S', channel);
            MemoryCatalogue::instance().add(channels_.back(), fromUTF8(path.c_str()));
        }
    }

    [[nodiscard]] bool isOpen() const { return static_cast<bool>(file_); }
    [[nodiscard]] FileReadInstance const& file() const { return *file_; }
    [[nodiscard]] Aud::Metadata const& stream() const { return file_->metadata->audioStreams.front(); }
    [[nodiscard]] std::vector<Cookie> const& channels() const { return channels_; }

private:
    std::vector<Cookie> channels_;
    Ox::Ptr<FileReadInstance> file_;
};

bool readBlocks(SoundFile const& sound, std::vector<SoundBlock> const& blocks, std::uint32_t blocksAhead) {
    std::vector<std::unique_ptr<BlockInFlight>> inFlight(blocksAhead);
    for (auto& slot : inFlight) {
        slot = std::make_unique<BlockInFlight>(sound.channels().size());
    }
    bool isGood = true;
    for (std::size_t next = 0; isGood && next < blocks.size(); ++next) {
        BlockInFlight& slot = *inFlight[next % blocksAhead];
        isGood = slot.waitForSamples() && slot.ask(sound.channels(), blocks[next]);
    }
    for (auto const& slot : inFlight) {
        isGood = isGood && slot->waitForSamples();
    }
    return isGood;
}

}  // namespace

Sample runLibrarySound(std::string const& path, std::string const& pluginFolder,
                       std::vector<SoundBlock> const& blocks, std::uint32_t blocksAhead) {
    Sample sample;
    SoundFile const sound(path, pluginFolder);
    if (!sound.isOpen()) {
        return sample;
    }
    measureTime(sample, [&] { return readBlocks(sound, blocks, blocksAhead); });
    sample.reads = static_cast<std::uint32_t>(blocks.size());
    sample.peakBytes = peakResidentBytes();
    return sample;
}

SoundFacts lookAtSound(std::string const& path, std::string const& pluginFolder) {
    SoundFacts facts;
    SoundFile const sound(path, pluginFolder);
    if (!sound.isOpen()) {
        return facts;
    }
    facts.isGood = true;
    facts.sampleCount = sound.file().metadata->audioSampleCount;
    facts.channels = sound.stream().channels;
    facts.bytesPerSample = sound.stream().bytesPerSample;
    facts.sampleRate = sound.stream().sampleRate;
    facts.isCompressed = sound.stream().isCompressedFormat();
    std::snprintf(facts.description, sizeof facts.description, "%s", sound.file().getDescription().c_str());
    return facts;
}

}  // namespace bench
