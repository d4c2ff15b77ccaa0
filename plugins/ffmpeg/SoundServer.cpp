#include "plugins/ffmpeg/SoundServer.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "plugins/ffmpeg/FFmpegAudioDecoder.h"
#include "plugins/ffmpeg/SoundConfiguration.h"
#include "toolkit/services/Log.h"

namespace playfile_ffmpeg {
namespace {

/// What is decoded at once when samples are read in order, over all channels: enough that the threads seldom wait
/// for each other, and little enough to stay in a processor's caches.
constexpr std::uint64_t aheadOfAllChannels = 262144;
constexpr std::uint64_t leastAhead = 16384;
constexpr std::uint64_t mostAhead = 65536;

std::uint64_t aheadFor(SoundTrack const& track) {
    auto const channels = static_cast<std::uint64_t>(std::max(track.form.channels, 1));
    return std::clamp(aheadOfAllChannels / channels, leastAhead, mostAhead);
}

}  // namespace

SoundServer::SoundServer(std::vector<Aud::Metadata>& audioStreams, std::unique_ptr<SoundFile> file)
    : AudioReader(audioStreams), file_(std::move(file)), feedings_(file_->tracks().size()) {
    audioStreams.clear();
    for (SoundTrack const& track : file_->tracks()) {
        audioStreams.push_back(metadataOf(track.form));
    }
    for (unsigned int stream = 0; stream < file_->tracks().size(); ++stream) {
        SoundTrack const& track = file_->tracks()[stream];
        if (track.coded) {
            findDecoder(stream, track);
        }
    }
}

void SoundServer::findDecoder(unsigned int stream, SoundTrack const& track) {
    initAudioCodec(stream, Ox::makePtr<SoundConfiguration>(*track.parameters, track.form));
    auto const found = codecs.find(static_cast<int>(stream));
    if (found != codecs.end()) {
        feedings_[stream].decoder = Ox::dynamicPtrCast<FFmpegAudioDecoder>(found->second);
    }
}

void SoundServer::readAudio(Ox::Ptr<AudioReadRequest>& request) {
    ScopedLock const scope(lock_);
    if (isBehindEnd(*request)) {
        request->setRequestStatus(requestComplete);
        Ox::Ptr<iObject> self(request);
        request->doCallbacks(self);
        return;
    }
    reading_ = request.get();
    wanted_.isSettled = false;
    if (beginsAtStart(*request)) {
        halt(request->stream);
    }
    AudioReader::readAudio(request);
    reading_ = nullptr;
}

bool SoundServer::isBehindEnd(AudioReadRequest const& request) const {
    if (isMuted(request.stream) || codecs.count(static_cast<int>(request.stream)) == 0) {
        return false;
    }
    SoundTrack const& track = file_->tracks()[request.stream];
    return request.startSample >= static_cast<std::uint64_t>(track.sampleCount());
}

/// Such a read resets the decoder before it asks for a frame.
bool SoundServer::beginsAtStart(AudioReadRequest& request) {
    return request.stream < streams.size() &&
           request.startSample < streams[request.stream].samplesPerCodecFrame && !contains(request);
}

void SoundServer::halt(unsigned int stream) {
    if (SoundAhead* const ahead = feedings_[stream].ahead.get()) {
        ahead->halt();
    }
}

/// Has all packets fed for the samples up to `end`, and goes on with those behind them. Where that fails, the
/// bundle brings what is missing.
void SoundServer::feedAhead(unsigned int stream, std::uint64_t first, std::uint64_t end) {
    Feeding& feeding = feedings_[stream];
    if (!feeding.decoder) {
        return;
    }
    if (!feeding.ahead) {
        feeding.ahead = std::make_unique<SoundAhead>([this, stream] { return feedNext(stream); });
    }
    CodedTrack& track = *file_->tracks()[stream].coded;
    auto const last = static_cast<std::uint64_t>(track.sampleCount());
    uint32_t const wanted =
        track.packetsFor(static_cast<int64_t>(first),
                         static_cast<int64_t>(std::min(end + aheadFor(file_->tracks()[stream]), last)));
    uint32_t const needed = track.packetsFor(static_cast<int64_t>(first), static_cast<int64_t>(end));
    if (!feeding.ahead->goOn(track.packetsGiven(), needed, wanted)) {
        feeding.ahead->halt();
    }
}

/// On the thread that feeds.
bool SoundServer::feedNext(unsigned int stream) {
    Feeding& feeding = feedings_[stream];
    try {
        bool const isThere = file_->tracks()[stream].coded->giveNext(feeding.packet, feeding.bytes);
        if (isThere) {
            feeding.decoder->bundles().feed(feeding.packet);
        }
        return isThere;
    } catch (std::exception const& exception) {
        Log("FFmpeg: stream %u can't be read: %s\n", stream, exception.what());
        return false;
    }
}

/// The read that is under way has come to its first frame: its samples aren't held from an earlier read. One
/// from the start is the first of many, and the decoder would have to begin anew for the rest of the first
/// frame.
void SoundServer::settle(AudioReadRequest const& request, CodedTrack& track) {
    std::uint64_t const frameSamples = streams[request.stream].samplesPerCodecFrame;
    wanted_.stream = request.stream;
    wanted_.firstFrame = request.startSample / frameSamples;
    wanted_.endSample = request.startSample + request.numSamples;
    wanted_.fetchedSamples = request.mcsCount;
    wanted_.decodesAhead =
        wanted_.firstFrame == 0 || track.goesOnAt(static_cast<int64_t>(wanted_.firstFrame * frameSamples));
    wanted_.isSettled = true;
}

OxResult SoundServer::readAudioSamples(unsigned int stream, unsigned long sample, unsigned int count,
                                       Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                                       unsigned int&, unsigned int&) {
    try {
        SoundTrack& track = file_->tracks()[stream];
        if (track.pcm) {
            std::uint32_t const bytesOfAll =
                track.form.bytesPerSample() * static_cast<std::uint32_t>(track.form.channels);
            return readPcm(*track.pcm, bytesOfAll, sample, count, *buffer, samplesRead);
        }
        bool const hasDecoder = codecs.count(static_cast<int>(stream)) != 0;
        return track.coded && hasDecoder ? readBundle(stream, sample, *buffer) : oxFailure;
    } catch (std::exception const& exception) {
        Log("FFmpeg: stream %u can't be read: %s\n", stream, exception.what());
        return oxFailure;
    }
}

OxResult SoundServer::readPcm(PcmTrack& track, std::uint32_t bytesOfAll, std::uint64_t sample,
                              std::uint32_t count, ByteBufferImpl& buffer, unsigned int& samplesRead) const {
    std::uint64_t const total = static_cast<std::uint64_t>(track.sampleCount());
    std::uint64_t const available = sample < total ? total - sample : 0;
    samplesRead = static_cast<unsigned int>(std::min<std::uint64_t>(count, available));
    std::uint32_t const used = buffer.getUsed();
    buffer.setUsed(used + samplesRead * bytesOfAll);
    if (samplesRead != 0) {
        track.read(static_cast<int64_t>(sample), samplesRead,
                   static_cast<std::uint8_t*>(buffer.getBuffer()) + used);
    }
    return samplesRead == count ? oxSuccess : oxEndOfData;
}

/// The end of the data, told before it is there, ends a read that has what it needs.
OxResult SoundServer::readBundle(unsigned int stream, std::uint64_t frame, ByteBufferImpl& buffer) {
    CodedTrack& track = *file_->tracks()[stream].coded;
    std::uint64_t const first = frame * streams[stream].samplesPerCodecFrame;
    if (first >= static_cast<std::uint64_t>(track.sampleCount())) {
        return oxNoMorePackets;
    }
    bool const isWanted = reading_ != nullptr && reading_->stream == stream;
    if (isWanted && !wanted_.isSettled) {
        settle(*reading_, track);
    }
    if (isWanted && !wanted_.decodesAhead && frame > wanted_.firstFrame && first >= wanted_.endSample) {
        return oxEndOfData;
    }
    std::uint64_t const end = endOf(stream, frame);
    if (isWanted && wanted_.decodesAhead && track.goesOnAt(static_cast<int64_t>(first))) {
        feedAhead(stream, first, end);
    } else {
        halt(stream);
    }
    track.bundle(static_cast<int64_t>(first), static_cast<int64_t>(end), bundle_);
    buffer.append(bundle_.data(), static_cast<std::uint32_t>(bundle_.size()));
    return oxSuccess;
}

std::uint64_t SoundServer::endOf(unsigned int stream, std::uint64_t frame) const {
    SoundTrack const& track = file_->tracks()[stream];
    std::uint64_t const frameSamples = streams[stream].samplesPerCodecFrame;
    std::uint64_t end = (frame + 1) * frameSamples;
    bool const isWanted = reading_ != nullptr && wanted_.stream == stream && frame >= wanted_.firstFrame;
    bool const endsRead =
        isWanted && (frame + 1 - wanted_.firstFrame) * frameSamples >= wanted_.fetchedSamples;
    if (endsRead) {
        end = std::max(end, wanted_.endSample);
    }
    if (endsRead && wanted_.decodesAhead) {
        end = std::max(end, (wanted_.firstFrame + aheadFor(track) / frameSamples) * frameSamples);
    }
    return std::min(end, static_cast<std::uint64_t>(track.sampleCount()));
}

}  // namespace playfile_ffmpeg
