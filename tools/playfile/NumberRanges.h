#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace cli {

/// Numbers from `first` to `last`, both included.
struct NumberRange {
    std::uint32_t first;
    std::uint32_t last;
};

/// The words for what an option's numbers stand for.
struct NumberOption {
    char const* name;             ///< "--frames"
    char const* things;           ///< "frames"
    char const* backwardsRemedy;  ///< what helps where a range runs backwards
};

/// The ranges of a text as in "0,5,7-9"; none for "all".
///
/// @throws CommandError  for a text of another form
[[nodiscard]] std::vector<NumberRange> parseNumberRanges(std::string const& text, NumberOption const& option);

/// A number that fills the whole text; false for anything else.
[[nodiscard]] bool parseNumber(std::string const& text, std::uint32_t& number);
[[nodiscard]] bool parseNumber(std::string const& text, std::uint64_t& number);

}  // namespace cli
