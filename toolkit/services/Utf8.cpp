/// Conversions between UTF-8 and wide text, the same in any locale.
#include <cstring>
#include <string>

#include "ole/Ox/OxString.h"

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr char32_t lastCodePoint = 0x10FFFF;

bool isSurrogate(char32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

void appendUtf8(std::string& text, char32_t code) {
    if (code > lastCodePoint || isSurrogate(code)) {
        code = replacement;
    }
    auto const tail = [&](unsigned shift) {
        text.push_back(static_cast<char>(0x80 | (code >> shift & 0x3F)));
    };
    if (code < 0x80) {
        text.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        text.push_back(static_cast<char>(0xC0 | code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        text.push_back(static_cast<char>(0xE0 | code >> 12));
        tail(6);
        tail(0);
    } else {
        text.push_back(static_cast<char>(0xF0 | code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

/// How many bytes follow a first byte, -1 for a byte that can't be first.
int followersOf(unsigned char first) {
    if (first < 0x80) {
        return 0;
    }
    if (first >= 0xC2 && first < 0xE0) {
        return 1;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 2;
    }
    return first >= 0xF0 && first < 0xF5 ? 3 : -1;
}

/// True if a code that was written with so many followers could not be written with fewer.
bool isShortest(char32_t code, int followers) {
    constexpr char32_t lowest[] = {0, 0x80, 0x800, 0x10000};
    return code >= lowest[followers];
}

/// Reads the code at the front of `text` and takes its bytes off; one byte for a malformed one.
char32_t takeCode(std::string_view& text) {
    auto const first = static_cast<unsigned char>(text.front());
    int const followers = followersOf(first);
    constexpr unsigned char firstMask[] = {0x7F, 0x1F, 0x0F, 0x07};
    std::size_t const byteCount = static_cast<std::size_t>(followers) + 1;
    char32_t code = followers < 0 || text.size() < byteCount ? replacement : first & firstMask[followers];
    bool isGood = followers >= 0 && text.size() >= byteCount;
    for (std::size_t i = 1; isGood && i < byteCount; ++i) {
        auto const next = static_cast<unsigned char>(text[i]);
        isGood = (next & 0xC0) == 0x80;
        code = code << 6 | (next & 0x3F);
    }
    isGood = isGood && isShortest(code, followers) && code <= lastCodePoint && !isSurrogate(code);
    text.remove_prefix(isGood ? byteCount : 1);
    return isGood ? code : replacement;
}

}  // namespace

LightweightString<char> toUTF8(LightweightString<wchar_t> const& text) {
    std::string result;
    result.reserve(text.length());
    for (wchar_t const c : text.view()) {
        appendUtf8(result, static_cast<char32_t>(c));
    }
    return LightweightString<char>(result);
}

LightweightString<wchar_t> fromUTF8(char const* text, int byteCount) {
    if (!text) {
        return {};
    }
    std::string_view left(text, byteCount < 0 ? std::strlen(text) : static_cast<std::size_t>(byteCount));
    std::wstring result;
    result.reserve(left.size());
    while (!left.empty()) {
        result.push_back(static_cast<wchar_t>(takeCode(left)));
    }
    return LightweightString<wchar_t>(result);
}
