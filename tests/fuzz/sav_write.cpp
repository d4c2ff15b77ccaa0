/// Takes any bytes for a record, its words perhaps without an end, and writes its text.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "header/SavHeader.h"

namespace {

/// Deals out the bytes; behind their end they are 0.
class Bytes {
public:
    Bytes(std::uint8_t const* data, std::size_t size) : data_(data), size_(size) {}

    template <class Field>
    void take(Field& field) {
        std::size_t const byteCount = std::min(sizeof(field), size_);
        std::memcpy(&field, data_, byteCount);
        data_ += byteCount;
        size_ -= byteCount;
    }
    [[nodiscard]] char const* rest() const { return reinterpret_cast<char const*>(data_); }
    [[nodiscard]] int restSize() const { return static_cast<int>(size_); }

private:
    std::uint8_t const* data_;
    std::size_t size_;
};

constexpr char const* media[] = {"sound", "vision"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Bytes bytes(data, size);
    SAV_HEADER header;
    std::uint8_t choice = 0;
    bytes.take(choice);
    bytes.take(header.medium);
    if (choice < 2) {
        std::strcpy(header.medium, media[choice]);
    }
    bytes.take(header.header_version);
    bytes.take(header.number_of_channels);
    bytes.take(header.bytes_per_sample);
    bytes.take(header.input_rate);
    bytes.take(header.replay_rate);
    bytes.take(header.format);
    bytes.take(header.drop_frame);
    bytes.take(header.timecode_rate);
    bytes.take(header.start_time_code);
    bytes.take(header.end_time_code);
    bytes.take(header.sequence);
    bytes.take(header.start_offset);
    bytes.take(header.vision_type);
    bytes.take(header.width);
    bytes.take(header.height);
    bytes.take(header.reelid);
    bytes.take(header.video_field);
    bytes.take(header.transfer_type);
    header.orig_fname = fromUTF8(bytes.rest(), bytes.restSize());
    auto const text = std::make_unique<char[]>(savHeaderTextBytes);
    char const* const end = header_to_string(&header, text.get());
    bool const isWhole = end >= text.get() && end < text.get() + savHeaderTextBytes && *end == '\0';
    if (!isWhole) {
        std::abort();
    }
    return 0;
}
