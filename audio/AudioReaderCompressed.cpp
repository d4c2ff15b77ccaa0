/// Compressed streams: which decoder, where it stands, and what comes out.
///
/// A decoder carries state from frame to frame. `lastFrameRead` says which frame it had last; the next one
/// goes straight on, any other is a jump, for which the decoder is reset and fed the frames before the
/// target, as many as it wants, with their output thrown away.
#include <algorithm>
#include <cstring>

#include "audio/AudioReader.h"
#include "toolkit/plugins/AudioDecoderInfo.h"
#include "toolkit/sound/AudioInterleaver.h"

namespace Ox {
namespace {

/// The frames on which a decoder is tried, and the frame size that it is told meanwhile.
constexpr unsigned probeFrames = 4;
constexpr unsigned probeSamplesPerFrame = 99;
/// So many frames without a sample are read again; one more, and the read fails.
constexpr unsigned triesWithoutSamples = 8;
/// A decoder that has given samples may pause for long, but not for ever.
constexpr unsigned mostEmptyInARow = 1000;

bool isGood(std::uint32_t decodeResult) {
    return decodeResult == AudioCodecInstance::good || decodeResult == AudioCodecInstance::accepted;
}

void emptyAll(Aud::StreamBufferList& list) {
    for (Aud::StreamBuffer& buffer : list) {
        buffer.setUsed(0);
    }
}

/// Zeroes `byteCount` bytes from `offset` on, as far as the buffer reaches.
void blank(Aud::StreamBuffer& buffer, std::uint64_t offset, std::uint64_t byteCount) {
    std::uint64_t const size = buffer.getSize();
    if (offset < size) {
        std::memset(static_cast<std::uint8_t*>(buffer.getBuffer()) + offset, 0,
                    std::min(byteCount, size - offset));
    }
}

/// From the start of the frame that was just decoded; a buffer that holds less than a frame is blanked
/// from its own start.
void blankStart(Aud::StreamBuffer& buffer, Aud::Metadata const& metadata, unsigned int skipStart) {
    std::uint64_t const bytes = metadata.bitsPerSample / 8;
    std::uint64_t const used = buffer.getUsed();
    std::uint64_t const frameBytes = bytes * metadata.samplesPerCodecFrame;
    blank(buffer, used > frameBytes ? used - frameBytes : 0, std::min(bytes * skipStart, used));
}

void blankEnd(Aud::StreamBuffer& buffer, Aud::Metadata const& metadata, unsigned int skipEnd) {
    std::uint64_t const bytes = metadata.bitsPerSample / 8;
    std::uint64_t const used = buffer.getUsed();
    std::uint64_t const byteCount = std::min<std::uint64_t>({bytes * skipEnd, buffer.getSpace(), used});
    blank(buffer, used - byteCount, byteCount);
}

void padWithSilence(Aud::StreamBufferList& list, std::uint32_t sampleCount) {
    for (Aud::StreamBuffer& buffer : list) {
        blank(buffer, buffer.getUsed(), buffer.getSpace());
    }
    list.sampleCount = sampleCount;
}

/// Says when the frames of one read are enough.
class Progress {
public:
    explicit Progress(std::uint32_t wanted) : wanted_(wanted) {}

    void countTry() { ++tries_; }
    void addSamples(std::uint32_t decoded) {
        emptyInARow_ = decoded == 0 ? emptyInARow_ + 1 : 0;
        total_ += decoded;
    }
    [[nodiscard]] bool hasTriedTooOften() const { return total_ == 0 && tries_ > triesWithoutSamples; }
    /// Enough samples, or a decoder that will never give the rest.
    [[nodiscard]] bool isOver() const { return total_ >= wanted_ || emptyInARow_ >= mostEmptyInARow; }
    [[nodiscard]] bool isShort() const { return total_ < wanted_; }
    [[nodiscard]] std::uint32_t total() const { return total_; }

private:
    std::uint32_t const wanted_;
    unsigned tries_ = 0;
    unsigned emptyInARow_ = 0;
    std::uint32_t total_ = 0;
};

}  // namespace

OxResult AudioReader::initAudioCodec(unsigned int stream, Ptr<iMemHolder> codecConfig) {
    if (stream >= streams.size()) {
        return oxFailure;
    }
    std::vector<Ptr<AudioDecoderInfo>> const decoders =
        AudioDecoderInfo::getDecodersFor(streams[stream], codecConfig);
    OxResult result = oxSuccess;
    for (Ptr<AudioDecoderInfo> const& decoder : decoders) {
        Ptr<AudioCodecInstance> const instance = decoder->makeInstance(streams[stream], codecConfig);
        if (!instance) {
            continue;
        }
        if (instance->status == AudioCodecInstance::ready) {
            return accept(stream, instance);
        }
        if (instance->status != AudioCodecInstance::probe) {
            continue;
        }
        result = tryDecoder(stream, *instance);
        if (result == AudioCodecInstance::accepted) {
            return accept(stream, instance);
        }
    }
    return result;
}

OxResult AudioReader::tryDecoder(unsigned int stream, AudioCodecInstance& instance) {
    bool const decodesToStreams = instance.decodesToStreams();
    Aud::StreamBufferList list;
    Ptr<ByteBufferImpl> output;
    if (decodesToStreams) {
        createOutputBuffers(1, streams[stream], list);
    } else {
        Aud::Metadata const& format = instance.metadata;
        output =
            makePtr<ByteBufferImpl>(format.samplesPerCodecFrame * format.bytesPerSample * format.channels);
    }
    OxResult result = oxFailure;
    for (unsigned frame = 0; frame < probeFrames; ++frame) {
        auto packet = makePtr<ByteBufferImpl>(0U);
        unsigned int samplesRead = 0;
        unsigned int skipStart = 0;
        unsigned int skipEnd = 0;
        if (readAudioSamples(stream, frame, 1, packet, samplesRead, skipStart, skipEnd) != oxSuccess) {
            return oxSuccess;
        }
        unsigned int decoded = 0;
        if (decodesToStreams) {
            result =
                instance.decodeAudioStream(list, probeSamplesPerFrame, packet, decoded, skipStart, skipEnd);
        } else {
            result =
                instance.decodeAudioBuffer(output, probeSamplesPerFrame, packet, decoded, skipStart, skipEnd);
            output->clear();
        }
        if (result != AudioCodecInstance::needsMore) {
            return result;
        }
    }
    return result;
}

OxResult AudioReader::accept(unsigned int stream, Ptr<AudioCodecInstance> const& instance) {
    streams[stream] = instance->metadata;
    instance->resetToStart();
    codecs[static_cast<int>(stream)] = instance;
    lastFrameRead[static_cast<int>(stream)] = nothingFed;
    return AudioCodecInstance::accepted;
}

void AudioReader::createOutputBuffers(unsigned int frames, Aud::Metadata const& metadata,
                                      Aud::StreamBufferList& list) {
    if (metadata.channels == 0) {
        return;
    }
    std::uint32_t const samples = frames * metadata.samplesPerCodecFrame;
    list.clear();
    for (std::uint32_t channel = 0; channel < metadata.channels; ++channel) {
        auto const memory = makePtr<ByteBufferImpl>(metadata.bytesPerSample * samples);
        list.push_back(Aud::StreamBuffer(memory, 0, false, samples, metadata.sampleFormat));
    }
    list.sampleCount = samples;
    list.format = metadata.sampleFormat;
}

/// A stream whose frames have no size can't be addressed.
OxResult AudioReader::fetchCompressed(Ptr<AudioReadRequest>& request) {
    std::uint32_t const stream = request->stream;
    Aud::Metadata const& metadata = streams[stream];
    std::uint32_t const frameSize = metadata.samplesPerCodecFrame;
    if (frameSize == 0) {
        return oxFailure;
    }
    std::uint64_t const frameIndex = request->startSample / frameSize;
    Aud::StreamBufferList list;
    createOutputBuffers(request->mcsCount / frameSize + 1, metadata, list);
    OxResult const result = codecs[static_cast<int>(stream)]->decodesToStreams()
                                ? readCompressedAudio(frameIndex, list, request)
                                : readCompressedAudioInterleaved(frameIndex, list, request);
    if (result == oxSuccess) {
        addBuffers(stream, frameSize * frameIndex, list);
        takeResult(*request);
    }
    return result;
}

/// Of the frames before a jump's target only the last one's result counts.
template <class DecodeAndDrop>
OxResult AudioReader::position(unsigned int stream, std::uint64_t frame, DecodeAndDrop const& decodeAndDrop) {
    AudioCodecInstance& codec = *codecs[static_cast<int>(stream)];
    std::uint64_t const preRoll = codec.getPreRollFrames();
    std::uint64_t const last = lastFrameRead[static_cast<int>(stream)];
    if (frame != 0) {
        if (preRoll == 0 || last + 1 == frame) {
            return oxSuccess;
        }
        codec.resetToStart();
        OxResult result = oxSuccess;
        for (std::uint64_t before = frame - std::min(frame, preRoll); before < frame; ++before) {
            result = decodeAndDrop(before, true);
        }
        return result;
    }
    if (last != nothingFed) {
        codec.resetToStart();
        return oxSuccess;
    }
    bool const feedsFirstFrameTwice = preRoll != 0 && codec.metadata.isAAC();
    return feedsFirstFrameTwice ? decodeAndDrop(0, false) : oxSuccess;
}

OxResult AudioReader::readCompressedAudio(unsigned long frameIndex, Aud::StreamBufferList& list,
                                          Ptr<AudioReadRequest>& request) {
    std::uint32_t const stream = request->stream;
    std::uint64_t frame = frameIndex;
    OxResult const positioned = position(stream, frame, [&](std::uint64_t before, bool isJump) -> OxResult {
        unsigned int decoded = 0;
        OxResult const result = readAndDecode(stream, before, list, decoded);
        emptyAll(list);
        return result == oxNoMorePackets && isJump ? OxResult(oxEndOfData) : result;
    });
    if (positioned != oxSuccess) {
        return positioned;
    }
    Progress progress(request->mcsCount);
    OxResult result = oxSuccess;
    do {
        unsigned int decoded = 0;
        result = readAndDecode(stream, frame, list, decoded);
        lastFrameRead[static_cast<int>(stream)] = frame;
        frame += decoded != 0 ? 1 : 0;
        progress.countTry();
        progress.addSamples(decoded);
        if (progress.hasTriedTooOften()) {
            return oxFailure;
        }
    } while (result == oxSuccess && !progress.isOver());
    if (progress.total() == 0) {
        return oxFailure;
    }
    if (result == oxNoMorePackets && progress.isShort()) {
        padWithSilence(list, request->mcsCount);
    } else {
        list.sampleCount = progress.total();
    }
    return oxSuccess;
}

OxResult AudioReader::readCompressedAudioInterleaved(unsigned long frameIndex, Aud::StreamBufferList& list,
                                                     Ptr<AudioReadRequest>& request) {
    std::uint32_t const stream = request->stream;
    std::uint64_t frame = frameIndex;
    Ptr<ByteBufferImpl> work = workBuffer(list, *request);
    if (!work) {
        return oxFailure;
    }
    OxResult const positioned = position(stream, frame, [&](std::uint64_t before, bool) {
        unsigned int decoded = 0;
        OxResult const result = readAndDecodeInterleaved(stream, before, work, decoded);
        work->clear();
        return result;
    });
    if (positioned != oxSuccess) {
        return positioned;
    }
    Progress progress(request->mcsCount);
    bool isOver = false;
    while (!isOver) {
        unsigned int decoded = 0;
        OxResult const result = readAndDecodeInterleaved(stream, frame, work, decoded);
        lastFrameRead[static_cast<int>(stream)] = frame;
        frame += decoded != 0 ? 1 : 0;
        progress.countTry();
        bool const isLastTry = progress.hasTriedTooOften();
        progress.addSamples(decoded);
        isOver = isLastTry || result != oxSuccess || progress.isOver();
    }
    if (progress.total() == 0) {
        return oxFailure;
    }
    if (streams[stream].channels != 1) {
        static_cast<void>(AudioInterleaver::deinterleaveAudio(streams[stream], work, list));
    }
    list.sampleCount = progress.total();
    return oxSuccess;
}

/// A stream of one channel is decoded straight into the result.
Ptr<ByteBufferImpl> AudioReader::workBuffer(Aud::StreamBufferList& list, AudioReadRequest& request) {
    if (streams[request.stream].channels != 1) {
        return makePtr<ByteBufferImpl>(request.getBytesPerMCS());
    }
    return list.empty() ? Ptr<ByteBufferImpl>() : dynamicPtrCast<ByteBufferImpl>(list.front().getHolder());
}

OxResult AudioReader::readAndDecode(unsigned int stream, unsigned long frame, Aud::StreamBufferList& list,
                                    unsigned int& decoded) {
    auto packet = makePtr<ByteBufferImpl>(0U);
    unsigned int samplesRead = 0;
    unsigned int skipStart = 0;
    unsigned int skipEnd = 0;
    OxResult const result = readAudioSamples(stream, frame, 1, packet, samplesRead, skipStart, skipEnd);
    if (result != oxSuccess) {
        return result;
    }
    Aud::Metadata const& metadata = streams[stream];
    if (!isGood(codecs[static_cast<int>(stream)]->decodeAudioStream(list, metadata.samplesPerCodecFrame,
                                                                    packet, decoded, skipStart, skipEnd))) {
        return oxFailure;
    }
    for (Aud::StreamBuffer& buffer : list) {
        if (skipStart != 0) {
            blankStart(buffer, metadata, skipStart);
        }
        if (skipEnd != 0) {
            blankEnd(buffer, metadata, skipEnd);
        }
    }
    return oxSuccess;
}

OxResult AudioReader::readAndDecodeInterleaved(unsigned int stream, unsigned long frame,
                                               Ptr<ByteBufferImpl>& output, unsigned int& decoded) {
    auto packet = makePtr<ByteBufferImpl>(0U);
    unsigned int samplesRead = 0;
    unsigned int skipStart = 0;
    unsigned int skipEnd = 0;
    OxResult const result = readAudioSamples(stream, frame, 1, packet, samplesRead, skipStart, skipEnd);
    if (result != oxSuccess) {
        return result;
    }
    return isGood(codecs[static_cast<int>(stream)]->decodeAudioBuffer(
               output, streams[stream].samplesPerCodecFrame, packet, decoded, skipStart, skipEnd))
               ? oxSuccess
               : oxFailure;
}

}  // namespace Ox
