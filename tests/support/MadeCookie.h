#pragma once

#include <cstdint>

#include "toolkit/catalogue/Cookie.h"

/// A cookie that tells its clip from those of other numbers.
[[nodiscard]] inline Cookie makeCookie(unsigned clip, CookieType type = 'V', std::uint8_t channel = 0) {
    Ox::UUID uuid;
    uuid.bytes[0] = 0xA5;
    uuid.bytes[14] = static_cast<std::uint8_t>(clip >> 8);
    uuid.bytes[15] = static_cast<std::uint8_t>(clip);
    return Cookie(uuid, type, channel);
}
