#include "tools/playfile/NumberRanges.h"

#include <algorithm>
#include <charconv>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

template <class Number>
bool parseWhole(std::string const& text, Number& number) {
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

NumberRange parseRange(std::string const& text, std::string const& whole, NumberOption const& option) {
    std::size_t const hyphen = text.find('-');
    std::string const last = hyphen == std::string::npos ? text : text.substr(hyphen + 1);
    NumberRange range{};
    if (!parseNumber(text.substr(0, hyphen), range.first) || !parseNumber(last, range.last)) {
        throw CommandError(std::string(option.name) + " " + inQuotes(whole) + " names no " + option.things +
                               "; write 'all' or, say, '0,5,7-9'",
                           exitUsage);
    }
    if (range.first > range.last) {
        throw CommandError(std::string(option.name) + ": the range " + inQuotes(text) + " runs backwards; " +
                               option.backwardsRemedy,
                           exitUsage);
    }
    return range;
}

}  // namespace

std::vector<NumberRange> parseNumberRanges(std::string const& text, NumberOption const& option) {
    std::vector<NumberRange> ranges;
    if (text == "all") {
        return ranges;
    }
    std::size_t begin = 0;
    while (begin <= text.size()) {
        std::size_t const end = std::min(text.find(',', begin), text.size());
        ranges.push_back(parseRange(text.substr(begin, end - begin), text, option));
        begin = end + 1;
    }
    return ranges;
}

bool parseNumber(std::string const& text, std::uint32_t& number) {
    return parseWhole(text, number);
}

bool parseNumber(std::string const& text, std::uint64_t& number) {
    return parseWhole(text, number);
}

}  // namespace cli
