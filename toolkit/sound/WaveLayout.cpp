/// The layout of the header: RIFF or RF64, the long sizes or the room for them, the caller's chunks, the format,
/// the data.
#include "toolkit/sound/WaveLayout.h"

#include <limits>
#include <string_view>

#include "toolkit/sound/SampleFormat.h"

namespace Aud {
namespace {

constexpr std::uint16_t formatPcm = 1;
constexpr std::uint16_t formatFloat = 3;
constexpr std::uint16_t formatExtensible = 0xFFFE;
constexpr std::uint16_t extensionBytes = 22;
constexpr std::uint32_t longSizesBytes = 28;
constexpr std::uint32_t chunkHeaderBytes = 8;
constexpr std::uint32_t sizeIsElsewhere = 0xFFFFFFFF;
/// A plain format chunk can't say more without doubt.
constexpr std::uint32_t mostPlainChannels = 2;
constexpr std::uint32_t mostPlainBits = 16;
/// What follows the format number in the identifier of a format.
constexpr std::string_view formatIdentifierTail("\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71",
                                                14);

/// Puts little-endian numbers one behind the other.
class Bytes {
public:
    void text(std::string_view characters) {
        bytes_.insert(bytes_.end(), characters.begin(), characters.end());
    }
    template <class Number>
    void number(Number value) {
        for (std::size_t i = 0; i < sizeof(Number); ++i) {
            bytes_.push_back(static_cast<std::uint8_t>(std::uint64_t{value} >> (8 * i)));
        }
    }
    void bytes(std::vector<std::uint8_t> const& more) {
        bytes_.insert(bytes_.end(), more.begin(), more.end());
    }
    [[nodiscard]] std::vector<std::uint8_t> take() { return std::move(bytes_); }

private:
    std::vector<std::uint8_t> bytes_;
};

bool isFloat(Metadata const& format) {
    return format.sampleFormat == sampleF32 || format.sampleFormat == sampleF64;
}

std::vector<std::uint8_t> formatChunk(WaveLayout const& layout) {
    Metadata const& format = layout.format;
    std::uint32_t const bits = format.bytesPerSample * 8;
    std::uint16_t const tag = isFloat(format) ? formatFloat : formatPcm;
    bool const isPlain = layout.channels <= mostPlainChannels && (isFloat(format) || bits <= mostPlainBits);
    auto const rate = static_cast<std::uint32_t>(format.sampleRate);
    Bytes bytes;
    bytes.text("fmt ");
    bytes.number<std::uint32_t>(isPlain ? 16 : 18 + extensionBytes);
    bytes.number<std::uint16_t>(isPlain ? tag : formatExtensible);
    bytes.number(static_cast<std::uint16_t>(layout.channels));
    bytes.number(rate);
    bytes.number<std::uint32_t>(rate * layout.bytesPerFrame());
    bytes.number(static_cast<std::uint16_t>(layout.bytesPerFrame()));
    bytes.number(static_cast<std::uint16_t>(bits));
    if (!isPlain) {
        bytes.number(extensionBytes);
        bytes.number(static_cast<std::uint16_t>(bits));
        bytes.number<std::uint32_t>(0);  // the channels' places aren't known
        bytes.number(tag);
        bytes.text(formatIdentifierTail);
    }
    return bytes.take();
}

}  // namespace

std::vector<std::uint8_t> WaveLayout::header(std::uint64_t dataBytes) const {
    std::vector<std::uint8_t> const formatBytes = formatChunk(*this);
    std::uint64_t const withoutSizes =
        4 + chunks.size() + formatBytes.size() + chunkHeaderBytes + dataBytes + dataBytes % 2;
    std::uint64_t const withSizes = withoutSizes + chunkHeaderBytes + longSizesBytes;
    std::uint64_t const shortForm = reservesLongSizes ? withSizes : withoutSizes;
    bool const isLong = shortForm > std::numeric_limits<std::uint32_t>::max();
    Bytes bytes;
    bytes.text(isLong ? "RF64" : "RIFF");
    bytes.number(isLong ? sizeIsElsewhere : static_cast<std::uint32_t>(shortForm));
    bytes.text("WAVE");
    if (isLong) {
        bytes.text("ds64");
        bytes.number(longSizesBytes);
        bytes.number<std::uint64_t>(withSizes);
        bytes.number<std::uint64_t>(dataBytes);
        bytes.number<std::uint64_t>(bytesPerFrame() == 0 ? 0 : dataBytes / bytesPerFrame());
        bytes.number<std::uint32_t>(0);  // no further long sizes
    } else if (reservesLongSizes) {
        bytes.text("JUNK");
        bytes.number(longSizesBytes);
        bytes.bytes(std::vector<std::uint8_t>(longSizesBytes));
    }
    bytes.bytes(chunks);
    bytes.bytes(formatBytes);
    bytes.text("data");
    bytes.number(isLong ? sizeIsElsewhere : static_cast<std::uint32_t>(dataBytes));
    return bytes.take();
}

}  // namespace Aud
