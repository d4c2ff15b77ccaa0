/// The C library's `%ls` depends on the process's locale and drops text in the usual one. So the format
/// is walked here: each conversion takes its argument off the list by its type and is formatted on its
/// own, a wide text as the UTF-8 text that it stands for.
#include "toolkit/services/LogFormat.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace {

/// An argument list that can be handed on by reference.
struct Arguments {
    va_list list;
};

/// One conversion of a format: '%', flags, width, precision, length, letter.
struct Conversion {
    /// Everything up to the length, with widths and precisions filled in.
    std::string head;
    std::string length;
    char letter = 0;

    [[nodiscard]] std::string whole() const { return head + length + letter; }
};

// The compiler has checked format and arguments at the log call; here they are taken apart.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

template <class Value>
void append(std::string& text, std::string const& conversion, Value value) {
    int const length = std::snprintf(nullptr, 0, conversion.c_str(), value);
    if (length > 0) {
        std::size_t const before = text.size();
        text.resize(before + static_cast<std::size_t>(length) + 1);
        std::snprintf(text.data() + before, static_cast<std::size_t>(length) + 1, conversion.c_str(), value);
        text.pop_back();
    }
}

#pragma GCC diagnostic pop

/// Reads the conversion at the front of `format`, just behind its '%', and takes it off.
Conversion takeConversion(std::string_view& format, Arguments& arguments) {
    Conversion conversion;
    conversion.head = "%";
    std::string_view const headCharacters = "-+ #0123456789.*";
    std::string_view const lengthCharacters = "hlqjztL";
    while (!format.empty() && headCharacters.find(format.front()) != std::string_view::npos) {
        conversion.head += format.front() == '*' ? std::to_string(va_arg(arguments.list, int))
                                                 : std::string(1, format.front());
        format.remove_prefix(1);
    }
    while (!format.empty() && lengthCharacters.find(format.front()) != std::string_view::npos) {
        conversion.length += format.front();
        format.remove_prefix(1);
    }
    if (!format.empty()) {
        conversion.letter = format.front();
        format.remove_prefix(1);
    }
    return conversion;
}

/// Smaller integers come as int; all wider ones have the same width here.
void appendInteger(std::string& text, Conversion const& conversion, Arguments& arguments) {
    static_assert(sizeof(long) == 8 && sizeof(long long) == 8 && sizeof(std::size_t) == 8);
    bool const isWide = !conversion.length.empty() && conversion.length[0] != 'h';
    if (isWide) {
        append(text, conversion.whole(), va_arg(arguments.list, long));
    } else {
        append(text, conversion.whole(), va_arg(arguments.list, int));
    }
}

void appendReal(std::string& text, Conversion const& conversion, Arguments& arguments) {
    if (conversion.length == "L") {
        append(text, conversion.whole(), va_arg(arguments.list, long double));
    } else {
        append(text, conversion.whole(), va_arg(arguments.list, double));
    }
}

void appendText(std::string& text, Conversion const& conversion, Arguments& arguments) {
    if (conversion.length == "l") {
        wchar_t const* const wide = va_arg(arguments.list, wchar_t const*);
        LightweightString<char> const narrow = wide ? toUTF8(wide) : LightweightString<char>("(null)");
        append(text, conversion.head + "s", narrow.c_str());
    } else {
        char const* const narrow = va_arg(arguments.list, char const*);
        append(text, conversion.head + "s", narrow ? narrow : "(null)");
    }
}

void appendConversion(std::string& text, Conversion const& conversion, Arguments& arguments) {
    switch (conversion.letter) {
        case 'd':
        case 'i':
        case 'u':
        case 'o':
        case 'x':
        case 'X':
        case 'c':
            appendInteger(text, conversion, arguments);
            break;
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            appendReal(text, conversion, arguments);
            break;
        case 's':
            appendText(text, conversion, arguments);
            break;
        case 'p':
            append(text, conversion.whole(), va_arg(arguments.list, void*));
            break;
        default:
            text += conversion.letter == '%' ? std::string("%") : conversion.whole();
            break;
    }
}

}  // namespace

LightweightString<char> formatLogText(char const* format, va_list arguments) {
    Arguments left;
    va_copy(left.list, arguments);
    std::string text;
    std::string_view rest(format);
    for (std::size_t percent = rest.find('%'); percent != std::string_view::npos; percent = rest.find('%')) {
        text.append(rest.substr(0, percent));
        rest.remove_prefix(percent + 1);
        appendConversion(text, takeConversion(rest, left), left);
    }
    va_end(left.list);
    text.append(rest);
    return LightweightString<char>(text);
}
