#pragma once

#include "ole/Ox/OxString.h"
#include "ole/os/Errors.h"

/// The number of a text for people.
using ResId = std::uint32_t;

/// How a numbered text is laid out.
enum ResStrFmt : int {
    resourcePlain = 0,    ///< as it stands
    resourcePadded = 1,   ///< between the texts that it comes with
    resourceSentence = 3  ///< begins with a capital
};

/// The text of a result code for people; a code without one gives its number in words.
///
/// Threads  Any.
[[nodiscard]] LightweightString<char> resourceStr(OxResult code, ResStrFmt format = resourcePlain);
[[nodiscard]] LightweightString<wchar_t> resourceStrW(OxResult code, ResStrFmt format);

/// The text of a number, with its placeholders ("$FILE$", "$NUM$", "$NUM1$", "$NUM2$"); a number without a text gives
/// itself in words.
///
/// Threads  Any.
[[nodiscard]] LightweightString<wchar_t> resourceStrW(ResId id);
/// The text between two others.
[[nodiscard]] LightweightString<wchar_t> paddedResourceStrW(ResId id, char const* before, char const* after,
                                                            ResStrFmt format);
/// Puts a text in the place of the built-in one, as a program in another language does at its start; an empty one
/// brings the built-in one back.
void setResourceText(ResId id, LightweightString<wchar_t> const& text);

/// The numbers that the library asks for.
namespace ResIds {
inline constexpr ResId nothingToDo = 10624;
inline constexpr ResId materialCopyFailed = 10995;
inline constexpr ResId tooLittleSpace = 11043;  ///< $NUM1$ free, $NUM2$ needed
inline constexpr ResId severalClips = 11054;    ///< $NUM$
inline constexpr ResId fileCopyFailed = 11259;  ///< $FILE$
inline constexpr ResId relocationEnded = 11566;
inline constexpr ResId proxyMarker = 12239;
inline constexpr ResId externalDownload = 12405;
inline constexpr ResId localising = 12989;
}  // namespace ResIds
