#include "toolkit/services/FilespecUtils.h"

#include <algorithm>
#include <string>

#include "toolkit/services/Paths.h"

namespace {

constexpr std::uint32_t decimal = 10;
constexpr std::wstring_view reserved = L"/\\:*?\"<>|";
constexpr wchar_t firstPrintable = 0x20;
constexpr wchar_t deleteCharacter = 0x7F;

bool isDigit(wchar_t character) {
    return character >= L'0' && character <= L'9';
}

bool isUnsafe(wchar_t character) {
    return character < firstPrintable || character == deleteCharacter ||
           reserved.find(character) != std::wstring_view::npos;
}

/// Of any length.
std::wstring sum(std::wstring digits, std::uint32_t number) {
    std::uint64_t carry = number;
    for (auto digit = digits.rbegin(); digit != digits.rend() && carry != 0; ++digit) {
        carry += static_cast<std::uint64_t>(*digit - L'0');
        *digit = static_cast<wchar_t>(L'0' + carry % decimal);
        carry /= decimal;
    }
    return carry == 0 ? digits : std::to_wstring(carry) + digits;
}

}  // namespace

namespace Ox::FilespecUtils {

LightweightString<wchar_t> getSEQFileName(LightweightString<wchar_t> const& path, std::uint32_t index) {
    std::wstring const stem = stripPathAndExt(path).str();
    auto const runEnd = std::find_if(stem.rbegin(), stem.rend(), isDigit).base();
    if (runEnd == stem.begin()) {
        return path;
    }
    auto const runBegin = std::find_if_not(std::make_reverse_iterator(runEnd), stem.rend(), isDigit).base();
    std::wstring const number = sum(std::wstring(runBegin, runEnd), index);
    std::wstring const name =
        std::wstring(stem.begin(), runBegin) + number + std::wstring(runEnd, stem.end());
    return getPath(path) + LightweightString<wchar_t>(name) + getExtension(path, true);
}

LightweightString<wchar_t> makeSafeFilename(LightweightString<wchar_t> const& name, wchar_t replacement) {
    std::wstring text = name.str();
    if (text.empty() || text == L"." || text == L"..") {
        return LightweightString<wchar_t>(std::wstring(1, replacement));
    }
    std::replace_if(text.begin(), text.end(), isUnsafe, replacement);
    return LightweightString<wchar_t>(text);
}

}  // namespace Ox::FilespecUtils
