#pragma once

#include <array>
#include <compare>
#include <cstdint>

#include "ole/Ox/OxString.h"
#include "ole/Ox/OxVector.h"

namespace Ox {

/// 16 bytes that tell one thing from all others, whoever made it.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    /// A new one from the system's random numbers (version 4).
    [[nodiscard]] static UUID generate();
    auto operator<=>(UUID const&) const = default;
};

}  // namespace Ox

/// What a cookie stands for, as a character: 'E' edit, 'V' video, 'S' sound, 'I' image, 0 none.
using CookieType = char;

/// Identifies a clip, or one media file of it.
///
/// Video channels count from 0, audio channels from 1; `wholeClip` stands for the clip as a whole.
class Cookie {
public:
    static constexpr std::uint8_t wholeClip = 255;

    /// Names nothing: `valid()` is false.
    Cookie() = default;
    Cookie(Ox::UUID const& uuid, CookieType type, std::uint8_t channel)
        : uuid_(uuid), type_(type), channel_(channel) {}

    /// Reads what `asWString` writes; short reads the 32 digits alone and means the edit as a whole. A
    /// text of another form gives an invalid cookie.
    explicit Cookie(LightweightString<wchar_t> const& text, bool isShort = false);

    [[nodiscard]] bool valid() const { return type_ != 0; }
    [[nodiscard]] Ox::UUID const& uuid() const { return uuid_; }
    [[nodiscard]] CookieType type() const { return type_; }
    [[nodiscard]] std::uint8_t channel() const { return channel_; }

    /// A total order: by clip, then type, then channel. Negative, 0 or positive.
    [[nodiscard]] int compare(Cookie const& other) const;
    friend bool operator==(Cookie const& a, Cookie const& b) { return a.compare(b) == 0; }
    friend std::strong_ordering operator<=>(Cookie const& a, Cookie const& b) { return a.compare(b) <=> 0; }

    /// 32 hexadecimal digits of the clip, then a hyphen, the type letter and three digits of channel:
    /// a legal file name without a full stop. Short leaves the hyphen and what follows away.
    [[nodiscard]] LightweightString<char> asString(bool isShort = false) const;
    [[nodiscard]] LightweightString<wchar_t> asWString() const;

private:
    Ox::UUID uuid_;
    CookieType type_ = 0;
    std::uint8_t channel_ = 0;
};

/// The cookie of another type or channel of the same clip.
[[nodiscard]] Cookie convertCookie(Cookie const& cookie, CookieType type, unsigned char channel);

/// A counted vector of cookies; copies share it.
class CookieVec : public LightweightVector<Cookie> {
public:
    void add(Cookie const& cookie) { push_back(cookie); }
};
