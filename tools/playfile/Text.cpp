#include "tools/playfile/Text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <system_error>

#include "tools/playfile/CommandError.h"

namespace cli {
namespace {

constexpr unsigned char firstPrintable = 0x20;
constexpr unsigned char deleteCharacter = 0x7F;

bool isControl(unsigned char c) {
    return c < firstPrintable || c == deleteCharacter;
}

std::string escaped(unsigned char c) {
    switch (c) {
        case '\n':
            return "\\n";
        case '\t':
            return "\\t";
        default: {
            char text[8];
            std::snprintf(text, sizeof(text), "\\x%02x", c);
            return text;
        }
    }
}

struct CharacterRange {
    std::uint32_t first;
    std::uint32_t last;
};

/// In ascending order, as the tables below.
constexpr std::array<CharacterRange, 16> wideCharacters = {{{0x1100, 0x115F},
                                                            {0x231A, 0x231B},
                                                            {0x23E9, 0x23EC},
                                                            {0x25FD, 0x25FE},
                                                            {0x2E80, 0x303E},
                                                            {0x3041, 0x33FF},
                                                            {0x3400, 0x4DBF},
                                                            {0x4E00, 0x9FFF},
                                                            {0xA000, 0xA4CF},
                                                            {0xAC00, 0xD7A3},
                                                            {0xF900, 0xFAFF},
                                                            {0xFE30, 0xFE6F},
                                                            {0xFF00, 0xFF60},
                                                            {0xFFE0, 0xFFE6},
                                                            {0x1F300, 0x1FAFF},
                                                            {0x20000, 0x3FFFD}}};
constexpr std::array<CharacterRange, 14> marksAboveOthers = {{{0x0300, 0x036F},
                                                              {0x0483, 0x0489},
                                                              {0x0591, 0x05BD},
                                                              {0x0610, 0x061A},
                                                              {0x064B, 0x065F},
                                                              {0x0900, 0x0902},
                                                              {0x093C, 0x093C},
                                                              {0x0941, 0x0948},
                                                              {0x0E34, 0x0E3A},
                                                              {0x0E47, 0x0E4E},
                                                              {0x1AB0, 0x1AFF},
                                                              {0x200B, 0x200F},
                                                              {0x20D0, 0x20FF},
                                                              {0xFE00, 0xFE0F}}};

template <std::size_t count>
bool isIn(std::array<CharacterRange, count> const& ranges, std::uint32_t character) {
    auto const found = std::find_if(ranges.begin(), ranges.end(),
                                    [&](CharacterRange const& range) { return character <= range.last; });
    return found != ranges.end() && character >= found->first;
}

LightweightString<wchar_t> widened(std::string_view text) {
    return fromUTF8(text.data(), static_cast<int>(text.size()));
}

/// The control characters U+0080 to U+009F, which terminals obey too, as U+FFFD.
LightweightString<wchar_t> withoutUpperControls(LightweightString<wchar_t> const& text) {
    std::wstring result = text.str();
    for (wchar_t& c : result) {
        c = c >= L'\x80' && c <= L'\x9F' ? L'\xFFFD' : c;
    }
    return LightweightString<wchar_t>(result);
}

}  // namespace

std::string printable(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    std::string result;
    LightweightString<char> const shown = toUTF8(withoutUpperControls(widened(text)));
    for (char const c : shown.view()) {
        auto const byte = static_cast<unsigned char>(c);
        result += isControl(byte) ? escaped(byte) : std::string(1, c);
    }
    return result;
}

std::string printable(LightweightString<char> const& text) {
    return printable(text.view());
}

std::string inQuotes(std::string_view text) {
    return "'" + printable(text) + "'";
}

LightweightString<wchar_t> wideName(std::string const& name) {
    LightweightString<wchar_t> const wide = widened(name);
    if (narrowName(wide) != name) {
        throw CommandError(inQuotes(name) + " isn't a name in UTF-8; rename the file");
    }
    return wide;
}

std::string narrowName(LightweightString<wchar_t> const& name) {
    return toUTF8(name).str();
}

std::string systemErrorText(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

std::string fixed(double number, int digits) {
    char text[64];
    std::snprintf(text, sizeof(text), "%.*f", digits, number);
    return text;
}

std::size_t displayWidth(std::string_view text) {
    LightweightString<wchar_t> const letters = widened(text);
    std::size_t width = 0;
    for (wchar_t const letter : letters.view()) {
        auto const character = static_cast<std::uint32_t>(letter);
        width += isIn(marksAboveOthers, character) ? 0 : isIn(wideCharacters, character) ? 2 : 1;
    }
    return width;
}

std::string sizeText(std::uint64_t bytes) {
    constexpr std::array units = {"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    constexpr double unitStep = 1024.0;
    auto number = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (number >= unitStep && unit + 1 < units.size()) {
        number /= unitStep;
        ++unit;
    }
    return fixed(number, unit == 0 ? 0 : 1) + ' ' + units[unit];
}

}  // namespace cli
