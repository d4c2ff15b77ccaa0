#include "toolkit/sound/AudioInterleaver.h"

#include <cstring>

#include "toolkit/sound/ByteBufferImpl.h"

namespace {

/// Copies every `channels`-th sample of `Bytes` bytes; a constant length makes each copy one move.
template <std::size_t Bytes>
void gather(std::uint8_t* to, std::uint8_t const* from, std::size_t channels, std::size_t samples) {
    for (std::size_t i = 0; i < samples; ++i) {
        std::memcpy(to + i * Bytes, from + i * channels * Bytes, Bytes);
    }
}

void gatherAny(std::uint8_t* to, std::uint8_t const* from, std::size_t bytes, std::size_t channels,
               std::size_t samples) {
    for (std::size_t i = 0; i < samples; ++i) {
        std::memcpy(to + i * bytes, from + i * channels * bytes, bytes);
    }
}

void gatherChannel(std::uint8_t* to, std::uint8_t const* from, Aud::Metadata const& metadata,
                   std::size_t samples) {
    std::size_t const channels = metadata.channels;
    switch (metadata.bytesPerSample) {
        case 1:
            return gather<1>(to, from, channels, samples);
        case 2:
            return gather<2>(to, from, channels, samples);
        case 3:
            return gather<3>(to, from, channels, samples);
        case 4:
            return gather<4>(to, from, channels, samples);
        case 8:
            return gather<8>(to, from, channels, samples);
        default:
            return gatherAny(to, from, metadata.bytesPerSample, channels, samples);
    }
}

/// A buffer with room for `byteCount` bytes, all of them used.
Aud::StreamBuffer prepared(Aud::StreamBuffer const& given, std::uint32_t byteCount, std::uint32_t samples,
                           std::uint32_t format) {
    Ox::Ptr<iMemHolder> holder = given.getHolder();
    if (!holder || holder->getSize() < byteCount) {
        holder = Ox::makePtr<ByteBufferImpl>(byteCount);
    }
    holder->setUsed(byteCount);
    return {holder, given.getTag(), given.getFlag(), samples, format};
}

}  // namespace

std::uint32_t AudioInterleaver::deinterleaveAudio(Aud::Metadata const& metadata,
                                                  Ox::Ptr<iMemHolder> const& interleaved,
                                                  Aud::StreamBufferList& list) {
    std::uint64_t const bytesOfAll = std::uint64_t{metadata.channels} * metadata.bytesPerSample;
    if (bytesOfAll == 0) {
        return badFormat;
    }
    if (!interleaved) {
        return noData;
    }
    auto const samples = static_cast<std::uint32_t>(interleaved->getUsed() / bytesOfAll);
    auto const* const from = static_cast<std::uint8_t const*>(interleaved->getBuffer());
    list.resize(metadata.channels);
    for (std::uint32_t channel = 0; channel < metadata.channels; ++channel) {
        Aud::StreamBuffer& buffer = list[channel];
        buffer = prepared(buffer, samples * metadata.bytesPerSample, samples, metadata.sampleFormat);
        gatherChannel(static_cast<std::uint8_t*>(buffer.getBuffer()),
                      from + std::size_t{channel} * metadata.bytesPerSample, metadata, samples);
    }
    list.sampleCount = samples;
    list.format = metadata.sampleFormat;
    return done;
}
