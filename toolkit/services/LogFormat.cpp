#include "toolkit/services/LogFormat.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string>

// The C library turns wide text into the locale's bytes and gives up where the locale has none for a
// character, so wide text mustn't reach it. The format is taken apart: each conversion is formatted by
// itself with the one argument that belongs to it, fetched with the type that the conversion names.

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

/// A copy of a va_list that functions can share.
struct Arguments {
    explicit Arguments(va_list from) { va_copy(list, from); }
    ~Arguments() { va_end(list); }
    Arguments(Arguments const&) = delete;
    Arguments& operator=(Arguments const&) = delete;

    va_list list;
};

/// One conversion, with its width and precision as numbers in the text.
struct Conversion {
    /// All in front of the length modifier: "%-08.3".
    std::string head;
    /// "", "hh", "h", "l", "ll", "j", "z", "t", "L" or "q".
    std::string length;
    char type = 0;
    /// Negative for none.
    int precision = -1;
    int width = 0;
    bool isLeftAligned = false;

    [[nodiscard]] std::string text() const { return head + length + type; }
};

/// Formats one value after a format that has one conversion.
template <class Value>
std::string formatOne(std::string const& format, Value value) {
    int const size = std::snprintf(nullptr, 0, format.c_str(), value);
    if (size <= 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    std::snprintf(text.data(), text.size(), format.c_str(), value);
    text.pop_back();
    return text;
}

std::string formatWhole(char const* format, va_list arguments) {
    Arguments counting(arguments);
    int const size = std::vsnprintf(nullptr, 0, format, counting.list);
    if (size <= 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    Arguments writing(arguments);
    std::vsnprintf(text.data(), text.size(), format, writing.list);
    text.pop_back();
    return text;
}

class Formatter {
public:
    Formatter(char const* format, va_list arguments) : rest_(format), arguments_(arguments) {}

    std::string run() {
        while (char const* percent = std::strchr(rest_, '%')) {
            out_.append(rest_, percent);
            rest_ = percent + 1;
            convertNext();
        }
        return out_ + rest_;
    }

private:
    void convertNext() {
        Conversion conversion;
        conversion.head = "%";
        parseFlags(conversion);
        conversion.width = parseNumber(conversion);
        if (conversion.width < 0) {
            conversion.isLeftAligned = true;
            conversion.width = -conversion.width;
        }
        if (*rest_ == '.') {
            conversion.head.push_back(*rest_++);
            conversion.precision = parseNumber(conversion);
        }
        while (*rest_ != 0 && std::strchr("hljztLq", *rest_)) {
            conversion.length.push_back(*rest_++);
        }
        if (*rest_ == 0) {
            out_ += conversion.head + conversion.length;  // cut short: shown as it stands
            return;
        }
        conversion.type = *rest_++;
        convert(conversion);
    }

    void parseFlags(Conversion& conversion) {
        while (*rest_ != 0 && std::strchr("-+ #0'I", *rest_)) {
            conversion.isLeftAligned = conversion.isLeftAligned || *rest_ == '-';
            conversion.head.push_back(*rest_++);
        }
    }

    /// A width or a precision, from the format or, for an asterisk, from the arguments.
    int parseNumber(Conversion& conversion) {
        if (*rest_ == '*') {
            ++rest_;
            int const value = va_arg(arguments_.list, int);
            conversion.head += std::to_string(value);
            return value;
        }
        int value = 0;
        for (; *rest_ >= '0' && *rest_ <= '9'; ++rest_) {
            conversion.head.push_back(*rest_);
            value = value * 10 + (*rest_ - '0');
        }
        return value;
    }

    void convert(Conversion const& conversion) {
        switch (conversion.type) {
            case '%':
                out_.push_back('%');
                break;
            case 'd':
            case 'i':
                convertInteger<true>(conversion);
                break;
            case 'u':
            case 'o':
            case 'x':
            case 'X':
                convertInteger<false>(conversion);
                break;
            case 'c':
                convertCharacter(conversion);
                break;
            case 's':
                convertText(conversion);
                break;
            case 'p':
                out_ += formatOne(conversion.text(), va_arg(arguments_.list, void*));
                break;
            case 'n':
                static_cast<void>(va_arg(arguments_.list, void*));
                break;
            default:
                convertFloating(conversion);
                break;
        }
    }

    /// Integers go to the C library at full width, so only their type needs care here.
    template <bool isSigned>
    void convertInteger(Conversion const& conversion) {
        std::string const format = conversion.head + "j" + conversion.type;
        if constexpr (isSigned) {
            out_ += formatOne(format, static_cast<std::intmax_t>(fetchSigned(conversion.length)));
        } else {
            out_ += formatOne(format, static_cast<std::uintmax_t>(fetchUnsigned(conversion.length)));
        }
    }

    std::intmax_t fetchSigned(std::string const& length) {
        if (length == "hh") {
            return static_cast<signed char>(va_arg(arguments_.list, int));
        }
        if (length == "h") {
            return static_cast<short>(va_arg(arguments_.list, int));
        }
        return length.empty() ? va_arg(arguments_.list, int) : va_arg(arguments_.list, long);
    }

    std::uintmax_t fetchUnsigned(std::string const& length) {
        if (length == "hh") {
            return static_cast<unsigned char>(va_arg(arguments_.list, unsigned));
        }
        if (length == "h") {
            return static_cast<unsigned short>(va_arg(arguments_.list, unsigned));
        }
        return length.empty() ? va_arg(arguments_.list, unsigned) : va_arg(arguments_.list, unsigned long);
    }

    void convertFloating(Conversion const& conversion) {
        if (!std::strchr("fFeEgGaA", conversion.type)) {
            out_ += conversion.text();  // no conversion that is known: shown as it stands
        } else if (conversion.length == "L") {
            out_ += formatOne(conversion.text(), va_arg(arguments_.list, long double));
        } else {
            out_ += formatOne(conversion.text(), va_arg(arguments_.list, double));
        }
    }

    void convertCharacter(Conversion const& conversion) {
        if (conversion.length == "l") {
            wchar_t const character[] = {static_cast<wchar_t>(va_arg(arguments_.list, std::wint_t)), 0};
            appendPadded(conversion, toUTF8(character).str());
        } else {
            out_ += formatOne(conversion.text(), va_arg(arguments_.list, int));
        }
    }

    void convertText(Conversion const& conversion) {
        if (conversion.length == "l") {
            auto const* text = va_arg(arguments_.list, wchar_t const*);
            appendPadded(conversion, wideText(text, conversion.precision));
        } else {
            auto const* text = va_arg(arguments_.list, char const*);
            out_ += formatOne(conversion.text(), text ? text : "(null)");
        }
    }

    /// Reads no further than the precision allows: the text needn't be terminated then.
    static std::string wideText(wchar_t const* text, int precision) {
        if (!text) {
            return "(null)";
        }
        if (precision < 0) {
            return toUTF8(text).str();
        }
        auto const most = static_cast<std::size_t>(precision);
        std::string result;
        for (; result.size() < most && *text != 0; ++text) {
            std::string const character = toUTF8(LightweightString<wchar_t>(text, 1)).str();
            if (result.size() + character.size() > most) {
                break;
            }
            result += character;
        }
        return result;
    }

    void appendPadded(Conversion const& conversion, std::string const& text) {
        auto const width = static_cast<std::size_t>(conversion.width);
        std::string const padding(width > text.size() ? width - text.size() : 0, ' ');
        out_ += conversion.isLeftAligned ? text + padding : padding + text;
    }

    char const* rest_;
    Arguments arguments_;
    std::string out_;
};

bool hasNumberedArguments(char const* format) {
    for (char const* at = std::strchr(format, '%'); at; at = std::strchr(at + 1, '%')) {
        std::size_t const digits = std::strspn(at + 1, "0123456789");
        if (digits != 0 && at[1 + digits] == '$') {
            return true;
        }
        at += at[1] == '%' ? 1 : 0;
    }
    return false;
}

}  // namespace

LightweightString<char> formatLogText(char const* format, va_list arguments) {
    return LightweightString<char>(hasNumberedArguments(format) ? formatWhole(format, arguments)
                                                                : Formatter(format, arguments).run());
}

#pragma GCC diagnostic pop
