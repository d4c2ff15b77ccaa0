#pragma once

#include <string>
#include <string_view>

/// True for the characters that direct a terminal or a protocol and show nothing.
[[nodiscard]] constexpr bool isControlCharacter(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

/// True if all bytes are UTF-8.
[[nodiscard]] bool isUtf8(std::string_view text);

/// The character that `markedUtf8` puts where bytes aren't UTF-8: no text may hold it.
inline constexpr char32_t notUtf8Mark = 0xFFFF;

/// The text with each byte that is no UTF-8 replaced by `notUtf8Mark`, so that one bad name in a document
/// doesn't make all of it unreadable.
[[nodiscard]] std::string markedUtf8(std::string_view text);

/// The text for a log: control characters replaced, and cut to `mostBytes`.
[[nodiscard]] std::string forLog(std::string_view text, std::size_t mostBytes);
