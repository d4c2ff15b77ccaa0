/// The layout of the header: RIFF or RF64, in an RF64 file the chunk of long sizes, the format, the data.
#include "tools/playfile/WavFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string_view>

#include "toolkit/sound/SampleFormat.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::uint16_t formatPcm = 1;
constexpr std::uint16_t formatFloat = 3;
constexpr std::uint16_t formatExtensible = 0xFFFE;
constexpr std::uint16_t extensionBytes = 22;
constexpr std::uint32_t longSizesBytes = 28;
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
    [[nodiscard]] std::vector<std::uint8_t> take() { return std::move(bytes_); }

private:
    std::vector<std::uint8_t> bytes_;
};

bool isFloat(Aud::Metadata const& format) {
    return format.sampleFormat == Aud::sampleF32 || format.sampleFormat == Aud::sampleF64;
}

void addFormatChunk(Bytes& bytes, Aud::Metadata const& format, std::uint32_t channels) {
    std::uint32_t const bits = format.bytesPerSample * 8;
    std::uint16_t const tag = isFloat(format) ? formatFloat : formatPcm;
    bool const isPlain = channels <= mostPlainChannels && (isFloat(format) || bits <= mostPlainBits);
    auto const rate = static_cast<std::uint32_t>(format.sampleRate);
    std::uint32_t const frameBytes = channels * format.bytesPerSample;
    bytes.text("fmt ");
    bytes.number<std::uint32_t>(isPlain ? 16 : 18 + extensionBytes);
    bytes.number<std::uint16_t>(isPlain ? tag : formatExtensible);
    bytes.number(static_cast<std::uint16_t>(channels));
    bytes.number(rate);
    bytes.number<std::uint32_t>(rate * frameBytes);
    bytes.number(static_cast<std::uint16_t>(frameBytes));
    bytes.number(static_cast<std::uint16_t>(bits));
    if (!isPlain) {
        bytes.number(extensionBytes);
        bytes.number(static_cast<std::uint16_t>(bits));
        bytes.number<std::uint32_t>(0);  // the channels' places aren't known
        bytes.number(tag);
        bytes.text(formatIdentifierTail);
    }
}

std::string partialName(std::string const& path) {
    return path + "." + std::to_string(::getpid()) + ".partial";
}

}  // namespace

std::vector<std::uint8_t> makeWavHeader(Aud::Metadata const& format, std::uint32_t channels,
                                        std::uint64_t samples) {
    Bytes formatChunk;
    addFormatChunk(formatChunk, format, channels);
    std::vector<std::uint8_t> const formatBytes = formatChunk.take();
    std::uint64_t const dataBytes = samples * channels * format.bytesPerSample;
    std::uint64_t const chunkHeader = 8;
    std::uint64_t const shortForm = 4 + formatBytes.size() + chunkHeader + dataBytes + dataBytes % 2;
    bool const isLong = shortForm > std::numeric_limits<std::uint32_t>::max();
    Bytes bytes;
    bytes.text(isLong ? "RF64" : "RIFF");
    bytes.number(isLong ? sizeIsElsewhere : static_cast<std::uint32_t>(shortForm));
    bytes.text("WAVE");
    if (isLong) {
        bytes.text("ds64");
        bytes.number(longSizesBytes);
        bytes.number<std::uint64_t>(shortForm + chunkHeader + longSizesBytes);
        bytes.number<std::uint64_t>(dataBytes);
        bytes.number<std::uint64_t>(samples);
        bytes.number<std::uint32_t>(0);  // no further long sizes
    }
    bytes.text({reinterpret_cast<char const*>(formatBytes.data()), formatBytes.size()});
    bytes.text("data");
    bytes.number(isLong ? sizeIsElsewhere : static_cast<std::uint32_t>(dataBytes));
    return bytes.take();
}

WavFile::WavFile(std::string path, Aud::Metadata const& format, std::uint32_t channels, std::uint64_t samples)
    : path_(std::move(path)),
      partial_(partialName(path_)),
      bytesPerFrame_(channels * format.bytesPerSample),
      descriptor_(::open(partial_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0) {
        refuse(errno);
    }
    std::vector<std::uint8_t> const header = makeWavHeader(format, channels, samples);
    std::uint64_t const dataBytes = samples * bytesPerFrame_;
    dataOffset_ = header.size();
    try {
        writeAt(0, header.data(), header.size());
        if (::ftruncate(descriptor_, static_cast<off_t>(dataOffset_ + dataBytes + dataBytes % 2)) != 0) {
            refuse(errno);
        }
    } catch (...) {
        ::close(descriptor_);
        ::unlink(partial_.c_str());
        throw;
    }
}

WavFile::~WavFile() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
        ::unlink(partial_.c_str());
    }
}

void WavFile::write(std::uint64_t firstSample, void const* bytes, std::size_t byteCount) {
    writeAt(dataOffset_ + firstSample * bytesPerFrame_, bytes, byteCount);
}

void WavFile::finish() {
    int const closed = ::close(std::exchange(descriptor_, -1));
    if (closed != 0 || std::rename(partial_.c_str(), path_.c_str()) != 0) {
        int const error = errno;
        ::unlink(partial_.c_str());
        refuse(error);
    }
}

void WavFile::writeAt(std::uint64_t offset, void const* bytes, std::size_t byteCount) {
    auto const* from = static_cast<char const*>(bytes);
    while (byteCount != 0) {
        ssize_t const written = ::pwrite(descriptor_, from, byteCount, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            refuse(written < 0 ? errno : ENOSPC);
        }
        from += written;
        offset += static_cast<std::uint64_t>(written);
        byteCount -= static_cast<std::size_t>(written);
    }
}

void WavFile::refuse(int errorNumber) const {
    throw CommandError("cannot write " + inQuotes(path_) + ": " + systemErrorText(errorNumber) +
                       "; name another file with --out");
}

}  // namespace cli
