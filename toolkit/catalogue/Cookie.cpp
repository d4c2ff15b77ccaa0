#include "toolkit/catalogue/Cookie.h"

#include <sys/random.h>

#include <algorithm>
#include <cstdio>
#include <cwctype>
#include <random>
#include <string>

namespace {

constexpr std::size_t uuidDigits = 32;
/// The digits, a hyphen, the type and three digits of channel.
constexpr std::size_t wholeLength = uuidDigits + 5;
constexpr std::uint8_t versionByte = 6;
constexpr std::uint8_t variantByte = 8;

int digitOf(wchar_t c) {
    if (c >= L'0' && c <= L'9') {
        return c - L'0';
    }
    return c >= L'a' && c <= L'f' ? c - L'a' + 10 : -1;
}

bool readUuid(std::wstring_view text, Ox::UUID& uuid) {
    for (std::size_t i = 0; i < uuid.bytes.size(); ++i) {
        int const high = digitOf(text[2 * i]);
        int const low = digitOf(text[2 * i + 1]);
        if (high < 0 || low < 0) {
            return false;
        }
        uuid.bytes[i] = static_cast<std::uint8_t>(high * 16 + low);
    }
    return true;
}

bool readChannel(std::wstring_view digits, std::uint8_t& channel) {
    int value = 0;
    for (wchar_t const c : digits) {
        if (c < L'0' || c > L'9') {
            return false;
        }
        value = value * 10 + (c - L'0');
    }
    channel = static_cast<std::uint8_t>(value);
    return value <= 255;
}

}  // namespace

namespace Ox {

UUID UUID::generate() {
    UUID uuid;
    if (getrandom(uuid.bytes.data(), uuid.bytes.size(), 0) != static_cast<ssize_t>(uuid.bytes.size())) {
        std::random_device source;
        std::generate(uuid.bytes.begin(), uuid.bytes.end(),
                      [&] { return static_cast<std::uint8_t>(source()); });
    }
    uuid.bytes[versionByte] = static_cast<std::uint8_t>((uuid.bytes[versionByte] & 0x0F) | 0x40);
    uuid.bytes[variantByte] = static_cast<std::uint8_t>((uuid.bytes[variantByte] & 0x3F) | 0x80);
    return uuid;
}

}  // namespace Ox

Cookie::Cookie(LightweightString<wchar_t> const& text, bool isShort) {
    std::wstring_view const all = text.view();
    std::size_t const wanted = isShort ? uuidDigits : wholeLength;
    Ox::UUID uuid;
    if (all.size() != wanted || !readUuid(all, uuid)) {
        return;
    }
    uuid_ = uuid;
    if (isShort) {
        type_ = 'E';
        channel_ = wholeClip;
        return;
    }
    bool const isTyped =
        all[uuidDigits] == L'-' && all[uuidDigits + 1] >= L'A' && all[uuidDigits + 1] <= L'Z';
    if (isTyped && readChannel(all.substr(uuidDigits + 2), channel_)) {
        type_ = static_cast<CookieType>(all[uuidDigits + 1]);
    }
}

int Cookie::compare(Cookie const& other) const {
    auto const order = [](auto a, auto b) { return a < b ? -1 : (b < a ? 1 : 0); };
    if (int const byClip = order(uuid_, other.uuid_); byClip != 0) {
        return byClip;
    }
    int const byType = order(type_, other.type_);
    return byType != 0 ? byType : order(channel_, other.channel_);
}

LightweightString<char> Cookie::asString(bool isShort) const {
    std::string text;
    char part[8];
    for (std::uint8_t const byte : uuid_.bytes) {
        std::snprintf(part, sizeof(part), "%02x", byte);
        text.append(part);
    }
    if (!isShort) {
        std::snprintf(part, sizeof(part), "-%c%03u", type_ == 0 ? '0' : type_, channel_);
        text.append(part);
    }
    return LightweightString<char>(text);
}

LightweightString<wchar_t> Cookie::asWString() const {
    return fromUTF8(asString().c_str());
}

Cookie convertCookie(Cookie const& cookie, CookieType type, unsigned char channel) {
    return {cookie.uuid(), type, channel};
}
