/// A pass for each channel would fetch every cache line once for each channel, so the passes are made over
/// blocks that stay in the first cache: a line is fetched once, and found there by the other channels.
#include "toolkit/sound/AudioInterleaver.h"

#include <algorithm>
#include <cstring>

#include "toolkit/sound/ByteBufferImpl.h"

namespace {

using Byte = std::uint8_t;

/// Half of the smallest first cache there is: the other half is for what is written.
constexpr std::size_t blockBytes = 16384;
/// Fewer aren't worth a pass, however many channels there are.
constexpr std::size_t leastSamplesInBlock = 16;

void gatherAny(Byte* to, Byte const* from, std::size_t stride, std::size_t samples, std::size_t bytes) {
    for (; samples != 0; --samples, to += bytes, from += stride) {
        std::memcpy(to, from, bytes);
    }
}

/// Puts samples that lie `stride` bytes apart side by side. Each costs one load and one store of `Moved`
/// bytes; the four are written out, as compilers join the loads of a loop, which is slower.
///
/// A sample of 3 bytes is moved as 4: the next one overwrites the fourth, and there is always a next one,
/// as the fours leave a sample behind them.
template <std::size_t Bytes, std::size_t Moved = Bytes>
void gather(Byte* to, Byte const* from, std::size_t stride, std::size_t samples) {
    for (; samples > 4; samples -= 4, to += 4 * Bytes, from += 4 * stride) {
        std::memcpy(to, from, Moved);
        std::memcpy(to + Bytes, from + stride, Moved);
        std::memcpy(to + 2 * Bytes, from + 2 * stride, Moved);
        std::memcpy(to + 3 * Bytes, from + 3 * stride, Moved);
    }
    gatherAny(to, from, stride, samples, Bytes);
}

/// One channel of a block.
void gatherChannel(Byte* to, Byte const* from, std::size_t stride, std::size_t samples, std::size_t bytes) {
    switch (bytes) {
        case 1:
            return gather<1>(to, from, stride, samples);
        case 2:
            return gather<2>(to, from, stride, samples);
        case 3:
            return gather<3, 4>(to, from, stride, samples);
        case 4:
            return gather<4>(to, from, stride, samples);
        case 8:
            return gather<8>(to, from, stride, samples);
        default:
            return gatherAny(to, from, stride, samples, bytes);
    }
}

/// Splits pairs of short samples, as many at a time as compilers make a few vectors of, once they know
/// that no buffer lies in another.
template <std::size_t Bytes>
void splitPairs(Byte* __restrict left, Byte* __restrict right, Byte const* __restrict from,
                std::size_t samples) {
    constexpr std::size_t atOnce = 32 / Bytes;
    for (; samples >= atOnce; samples -= atOnce) {
        for (std::size_t i = 0; i < atOnce; ++i) {
            std::memcpy(left + i * Bytes, from + 2 * i * Bytes, Bytes);
            std::memcpy(right + i * Bytes, from + (2 * i + 1) * Bytes, Bytes);
        }
        left += atOnce * Bytes;
        right += atOnce * Bytes;
        from += 2 * atOnce * Bytes;
    }
    gatherAny(left, from, 2 * Bytes, samples, Bytes);
    gatherAny(right, from + Bytes, 2 * Bytes, samples, Bytes);
}

void splitInBlocks(Aud::StreamBufferList const& list, Byte const* from, std::size_t samples,
                   std::size_t bytes) {
    std::size_t const stride = list.size() * bytes;
    std::size_t const samplesInBlock = std::max(leastSamplesInBlock, blockBytes / stride);
    for (std::size_t first = 0; first < samples; first += samplesInBlock) {
        std::size_t const count = std::min(samplesInBlock, samples - first);
        for (std::size_t channel = 0; channel < list.size(); ++channel) {
            auto* const to = static_cast<Byte*>(list[channel].getBuffer());
            gatherChannel(to + first * bytes, from + first * stride + channel * bytes, stride, count, bytes);
        }
    }
}

void split(Aud::StreamBufferList const& list, Byte const* from, std::size_t samples, std::size_t bytes) {
    auto* const first = static_cast<Byte*>(list.front().getBuffer());
    if (list.size() == 1) {
        std::memcpy(first, from, samples * bytes);
    } else if (list.size() == 2 && bytes == 1) {
        splitPairs<1>(first, static_cast<Byte*>(list[1].getBuffer()), from, samples);
    } else if (list.size() == 2 && bytes == 2) {
        splitPairs<2>(first, static_cast<Byte*>(list[1].getBuffer()), from, samples);
    } else {
        splitInBlocks(list, from, samples, bytes);
    }
}

/// A buffer with room for `byteCount` bytes, all of them used. A view of another holder can't be one.
Aud::StreamBuffer prepared(Aud::StreamBuffer const& given, std::uint32_t byteCount, std::uint32_t samples,
                           std::uint32_t format) {
    Ox::Ptr<iMemHolder> holder = given.getHolder();
    if (!holder || holder->getSize() < byteCount || holder->setUsed(byteCount) != byteCount) {
        holder = Ox::makePtr<ByteBufferImpl>(byteCount);
        holder->setUsed(byteCount);
    }
    return {holder, given.getTag(), given.getFlag(), samples, format};
}

}  // namespace

std::uint32_t AudioInterleaver::deinterleaveAudio(Aud::Metadata const& metadata,
                                                  Ox::Ptr<iMemHolder> const& interleaved,
                                                  Aud::StreamBufferList& list) {
    std::uint32_t const bytes = metadata.bytesPerSample;
    std::uint64_t const bytesOfAll = std::uint64_t{metadata.channels} * bytes;
    if (bytesOfAll == 0) {
        return badFormat;
    }
    if (!interleaved) {
        return noData;
    }
    auto const samples = static_cast<std::uint32_t>(interleaved->getUsed() / bytesOfAll);
    list.resize(metadata.channels);
    for (Aud::StreamBuffer& buffer : list) {
        buffer = prepared(buffer, samples * bytes, samples, metadata.sampleFormat);
    }
    if (samples != 0) {
        split(list, static_cast<Byte const*>(interleaved->getBuffer()), samples, bytes);
    }
    list.sampleCount = samples;
    list.format = metadata.sampleFormat;
    return done;
}
