#include "tools/playfile/Text.h"

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

LightweightString<wchar_t> widened(std::string_view text) {
    return fromUTF8(text.data(), static_cast<int>(text.size()));
}

/// The control characters U+0080 to U+009F, which terminals obey too, as escapes.
LightweightString<wchar_t> withoutUpperControls(LightweightString<wchar_t> text) {
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

}  // namespace cli
