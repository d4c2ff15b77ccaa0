/// Takes any bytes for the text of a header. The first byte chooses the parser.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "header/SavHeader.h"

namespace {

/// A word that fills every field of a record that holds words, so that a byte behind one would be seen.
template <std::size_t size>
void fill(char (&field)[size]) {
    std::memset(field, 'f', size - 1);
    field[size - 1] = '\0';
}

template <std::size_t size>
void requireEnd(char const (&field)[size]) {
    if (std::memchr(field, '\0', size) == nullptr) {
        std::abort();
    }
}

SAV_HEADER filledRecord() {
    SAV_HEADER header;
    fill(header.medium);
    fill(header.format);
    fill(header.vision_type);
    fill(header.reelid);
    fill(header.ox_ver);
    fill(header.video_field);
    header.transfer_type = 77;
    return header;
}

void check(SAV_HEADER const& header) {
    requireEnd(header.medium);
    requireEnd(header.format);
    requireEnd(header.vision_type);
    requireEnd(header.reelid);
    requireEnd(header.ox_ver);
    requireEnd(header.video_field);
    if (header.header_version != savHeaderVersion || header.transfer_type != 77) {
        std::abort();
    }
}

/// What was written of a record is read back as it was, but for the name and what rounding takes.
void requireRoundTrip(SAV_HEADER header) {
    auto const text = std::make_unique<char[]>(savHeaderTextBytes);
    header_to_string(&header, text.get());
    SAV_HEADER again = filledRecord();
    parse_header_v2(&again, text.get());
    check(again);
    if (std::strcmp(again.medium, header.medium) != 0 && header.medium[0] != '\0') {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    auto const text = std::make_unique<char[]>(size);
    std::memcpy(text.get(), data + 1, size - 1);
    text[size - 1] = '\0';
    SAV_HEADER header = filledRecord();
    static_cast<void>(playhdr_get_version(text.get()));
    (data[0] % 2 == 0 ? parse_header_v2 : parse_header_v1)(&header, text.get());
    check(header);
    requireRoundTrip(header);
    return 0;
}
