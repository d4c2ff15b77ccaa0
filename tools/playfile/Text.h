#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ole/Ox/OxString.h"

namespace cli {

/// A text of any origin made fit for one line of a terminal: control characters become escapes, a byte
/// that isn't UTF-8 becomes U+FFFD.
[[nodiscard]] std::string printable(std::string_view text);
[[nodiscard]] std::string printable(LightweightString<char> const& text);

/// `printable` between single quotes.
[[nodiscard]] std::string inQuotes(std::string_view text);

/// A file's name as the system gives it, as the library takes it.
///
/// @throws CommandError  if the name isn't UTF-8, as the library couldn't find the file again
[[nodiscard]] LightweightString<wchar_t> wideName(std::string const& name);

/// A name of the library as the system takes it.
[[nodiscard]] std::string narrowName(LightweightString<wchar_t> const& name);

/// What a system error number means, for people.
[[nodiscard]] std::string systemErrorText(int errorNumber);

/// A number with `digits` digits behind the point.
[[nodiscard]] std::string fixed(double number, int digits);

/// How many columns of a terminal a printable text takes: letters of East Asia and pictographs two, marks that stand
/// on another letter none.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// A number of bytes for people: "1.5 GiB".
[[nodiscard]] std::string sizeText(std::uint64_t bytes);

}  // namespace cli
