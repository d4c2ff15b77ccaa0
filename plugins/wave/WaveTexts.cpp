#include "plugins/wave/WaveTexts.h"

#include <algorithm>
#include <array>
#include <string>

namespace playfile_wave {
namespace {

/// A field of fixed length of a "bext" chunk.
struct BroadcastField {
    std::size_t offset;
    std::size_t length;
    char const* key;
};

constexpr std::array<BroadcastField, 5> broadcastFields{{{0, 256, "tag.comment"},
                                                         {256, 32, "tag.encoded_by"},
                                                         {288, 32, "tag.originator_reference"},
                                                         {320, 10, "tag.date"},
                                                         {330, 8, "tag.creation_time"}}};
constexpr std::size_t timeReferenceOffset = 338;
constexpr std::size_t versionOffset = 346;
constexpr std::size_t umidOffset = 348;
constexpr std::size_t basicUmidBytes = 32;
constexpr std::size_t extendedUmidBytes = 64;
constexpr std::size_t historyOffset = 602;
/// The version from which on there is a UMID.
constexpr std::uint16_t versionWithUmid = 1;

/// What the codes of an "INFO" list are called.
struct InfoKey {
    std::uint32_t code;
    char const* key;
};

constexpr std::array<InfoKey, 13> infoKeys{{{codeOf("IART"), "tag.artist"},
                                            {codeOf("ICMT"), "tag.comment"},
                                            {codeOf("ICOP"), "tag.copyright"},
                                            {codeOf("ICRD"), "tag.date"},
                                            {codeOf("IGNR"), "tag.genre"},
                                            {codeOf("ILNG"), "tag.language"},
                                            {codeOf("INAM"), "tag.title"},
                                            {codeOf("IPRD"), "tag.album"},
                                            {codeOf("IPRT"), "tag.track"},
                                            {codeOf("ITRK"), "tag.track"},
                                            {codeOf("ISFT"), "tag.encoder"},
                                            {codeOf("ISMP"), "tag.timecode"},
                                            {codeOf("ITCH"), "tag.encoded_by"}}};
constexpr std::size_t listTypeBytes = 4;
constexpr std::size_t subHeaderBytes = 8;

/// The part of the bytes that is there.
Bytes part(Bytes bytes, std::size_t offset, std::size_t length) {
    std::size_t const first = std::min(offset, bytes.size());
    return bytes.subspan(first, std::min(length, bytes.size() - first));
}

/// What a decoder would replace shows in the text that comes back.
bool isUtf8(std::string const& text) {
    return toUTF8(fromUTF8(text.data(), static_cast<int>(text.size()))).view() == text;
}

std::string fromLatin1(std::string_view text) {
    std::string utf8;
    for (char const character : text) {
        auto const byte = static_cast<std::uint8_t>(character);
        if (byte < 0x80) {
            utf8.push_back(character);
        } else {
            utf8.push_back(static_cast<char>(0xC0 | byte >> 6));
            utf8.push_back(static_cast<char>(0x80 | (byte & 0x3F)));
        }
    }
    return utf8;
}

std::string hexOf(Bytes bytes) {
    constexpr char const* digits = "0123456789ABCDEF";
    std::string text = "0x";
    for (std::uint8_t const byte : bytes) {
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 0xF]);
    }
    return text;
}

bool isAllZero(Bytes bytes) {
    return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
}

/// A UMID whose second half is empty is a basic one.
void takeUmid(Bytes chunk, configb& tags) {
    Bytes const whole = part(chunk, umidOffset, extendedUmidBytes);
    if (whole.size() < extendedUmidBytes || isAllZero(whole)) {
        return;
    }
    bool const isBasic = isAllZero(whole.subspan(basicUmidBytes));
    setText(tags, "tag.umid", LightweightString<char>(hexOf(isBasic ? whole.first(basicUmidBytes) : whole)));
}

char const* keyOf(std::uint32_t code) {
    auto const found = std::ranges::find(infoKeys, code, &InfoKey::code);
    return found == infoKeys.end() ? nullptr : found->key;
}

void takeInfoText(std::uint32_t code, Bytes text, configb& tags) {
    char const* const key = keyOf(code);
    LightweightString<char> known;
    if (key && tags.in(key, known) != 0) {
        setText(tags, key, textOf(text));
    }
}

}  // namespace

LightweightString<char> textOf(Bytes field) {
    std::string text(charactersOf(field));
    text.resize(std::min(text.find('\0'), text.size()));
    text.resize(text.find_last_not_of(" \t\r\n") + 1);
    return LightweightString<char>(isUtf8(text) ? text : fromLatin1(text));
}

void setText(configb& tags, char const* key, LightweightString<char> const& text) {
    if (!text.empty()) {
        tags.set(key, text);
    }
}

void takeBroadcast(Bytes chunk, configb& tags) {
    for (BroadcastField const& field : broadcastFields) {
        setText(tags, field.key, textOf(part(chunk, field.offset, field.length)));
    }
    if (chunk.size() < umidOffset) {
        return;
    }
    tags.set("tag.time_reference",
             LightweightString<char>(std::to_string(numberAt<std::uint64_t>(chunk, timeReferenceOffset))));
    if (numberAt<std::uint16_t>(chunk, versionOffset) >= versionWithUmid) {
        takeUmid(chunk, tags);
    }
    setText(tags, "tag.coding_history", textOf(part(chunk, historyOffset, chunk.size())));
}

/// A text that is cut short by the end of the list is taken as far as it goes. Behind one of odd length
/// comes a byte of 0, which some leave out.
void takeInfo(Bytes chunk, configb& tags) {
    if (charactersOf(part(chunk, 0, listTypeBytes)) != "INFO") {
        return;
    }
    Bytes left = chunk.subspan(listTypeBytes);
    while (left.size() > subHeaderBytes) {
        auto const code = numberAt<std::uint32_t>(left, 0);
        std::uint64_t const length = numberAt<std::uint32_t>(left, 4);
        takeInfoText(code, part(left, subHeaderBytes, length), tags);
        left = part(left, subHeaderBytes + length, left.size());
        left = part(left, length % 2 == 1 && !left.empty() && left.front() == 0 ? 1 : 0, left.size());
    }
}

}  // namespace playfile_wave
