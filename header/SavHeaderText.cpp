/// From the record to its text.
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "header/SavHeader.h"
#include "playfile/playfile.h"

namespace {

/// Most bytes of a line, its end included.
constexpr std::size_t mostLineBytes = 511;
constexpr int decimals = 8;

/// Puts lines behind each other.
class LineWriter {
public:
    explicit LineWriter(char* buffer) : end_(buffer) { *end_ = '\0'; }

    void write(char const* key, std::string_view value) {
        std::size_t left = mostLineBytes;
        for (std::string_view const part : {std::string_view(key), std::string_view(" "), value, lineEnd}) {
            std::size_t const byteCount = part.size() < left ? part.size() : left;
            std::memcpy(end_, part.data(), byteCount);
            end_ += byteCount;
            left -= byteCount;
        }
        *end_ = '\0';
    }
    void write(char const* key, std::int32_t value) {
        std::array<char, 16> digits{};
        auto const [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
        write(key, textBetween(digits.data(), end));
    }
    /// The whole part of the largest double has 309 digits.
    void write(char const* key, double value) {
        std::array<char, 400> digits{};
        auto const [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                                std::chars_format::fixed, decimals);
        write(key, textBetween(digits.data(), end));
    }
    /// A field without NUL ends with its last byte.
    template <std::size_t size>
    void write(char const* key, char const (&field)[size]) {
        write(key, std::string_view(field, ::strnlen(field, size)));
    }

    [[nodiscard]] char* end() const { return end_; }

private:
    static constexpr std::string_view lineEnd = "\n\r";

    [[nodiscard]] static std::string_view textBetween(char const* begin, char const* end) {
        return {begin, static_cast<std::size_t>(end - begin)};
    }

    char* end_;
};

bool isMedium(SAV_HEADER const& header, char const* medium) {
    return ::strncmp(header.medium, medium, sizeof(header.medium)) == 0;
}

void writeSound(SAV_HEADER const& header, LineWriter& lines) {
    lines.write("number_of_channels", header.number_of_channels);
    lines.write("bytes_per_sample", header.bytes_per_sample);
}

void writeVision(SAV_HEADER const& header, LineWriter& lines) {
    lines.write("vision_type", header.vision_type);
    lines.write("width", header.width);
    lines.write("height", header.height);
    lines.write("sequence", header.sequence);
    lines.write("transfer_type", header.transfer_type);
}

}  // namespace

char* header_to_string(SAV_HEADER* header, char* buffer) {
    bool const isVision = isMedium(*header, "vision");
    LineWriter lines(buffer);
    lines.write("header_version", header->header_version);
    lines.write("medium", header->medium);
    lines.write("input_rate", header->input_rate);
    lines.write("replay_rate", header->replay_rate);
    lines.write("format", header->format);
    lines.write("drop_frame", header->drop_frame);
    lines.write("timecode_rate", header->timecode_rate);
    lines.write("start_time_code", header->start_time_code);
    lines.write("end_time_code", header->end_time_code);
    lines.write("start_offset", header->start_offset);
    if (isMedium(*header, "sound")) {
        writeSound(*header, lines);
    }
    if (isVision) {
        writeVision(*header, lines);
    }
    lines.write("reelid", header->reelid);
    if (!header->orig_fname.empty()) {
        lines.write("orig_fname", toUTF8(header->orig_fname).view());
    }
    lines.write("ox_ver", std::string_view(playfileDllVersionStr()));
    if (isVision) {
        lines.write("video_field", header->video_field);
    }
    return lines.end();
}

void print_header(SAV_HEADER* header) {
    std::array<char, savHeaderTextBytes> text{};
    header_to_string(header, text.data());
    std::puts(text.data());
}
