#include "host/remote/Utf8Check.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::string_view markBytes = "\xEF\xBF\xBF";

/// What the first byte of a character says: how many bytes it has, and the least value that needs so many.
struct Lead {
    std::size_t byteCount;
    char32_t bits;
    char32_t leastValue;
};

Lead leadOf(unsigned char byte) {
    if (byte < 0x80) {
        return {1, byte, 0};
    }
    if ((byte & 0xE0U) == 0xC0) {
        return {2, byte & 0x1FU, 0x80};
    }
    if ((byte & 0xF0U) == 0xE0) {
        return {3, byte & 0x0FU, 0x800};
    }
    if ((byte & 0xF8U) == 0xF0) {
        return {4, byte & 0x07U, 0x10000};
    }
    return {0, 0, 0};
}

/// The bytes of the character at the place, 0 if there is none.
std::size_t characterAt(std::string_view text, std::size_t place) {
    Lead const lead = leadOf(static_cast<unsigned char>(text[place]));
    if (lead.byteCount == 0 || place + lead.byteCount > text.size()) {
        return 0;
    }
    char32_t value = lead.bits;
    for (std::size_t next = 1; next < lead.byteCount; ++next) {
        auto const byte = static_cast<unsigned char>(text[place + next]);
        if ((byte & 0xC0U) != 0x80) {
            return 0;
        }
        value = value << 6U | (byte & 0x3FU);
    }
    bool const isText = value >= lead.leastValue && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
    return isText ? lead.byteCount : 0;
}

}  // namespace

bool isUtf8(std::string_view text) {
    for (std::size_t place = 0; place < text.size();) {
        std::size_t const byteCount = characterAt(text, place);
        if (byteCount == 0) {
            return false;
        }
        place += byteCount;
    }
    return true;
}

std::string markedUtf8(std::string_view text) {
    std::string marked;
    marked.reserve(text.size());
    for (std::size_t place = 0; place < text.size();) {
        std::size_t const byteCount = characterAt(text, place);
        marked += byteCount == 0 ? markBytes : text.substr(place, byteCount);
        place += std::max<std::size_t>(byteCount, 1);
    }
    return marked;
}

std::string forLog(std::string_view text, std::size_t mostBytes) {
    std::string shown = markedUtf8(text.substr(0, mostBytes));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; },
        '?');
    return text.size() > mostBytes ? shown + "..." : shown;
}
