#include "toolkit/services/NumberText.h"

#include <array>
#include <string>

namespace {

constexpr unsigned long unitFactor = 1024;
constexpr unsigned long tenths = 10;
constexpr std::array<wchar_t const*, 6> units = {L" KiB", L" MiB", L" GiB", L" TiB", L" PiB", L" EiB"};

}  // namespace

LightweightString<wchar_t> Ox::WStringFromInteger(std::int64_t number) {
    return LightweightString<wchar_t>(std::to_wstring(number));
}

LightweightString<wchar_t> bytesAsString(unsigned long byteCount, bool withUnit) {
    if (!withUnit) {
        return LightweightString<wchar_t>(std::to_wstring(byteCount));
    }
    if (byteCount < unitFactor) {
        return LightweightString<wchar_t>(std::to_wstring(byteCount) + L" bytes");
    }
    std::size_t unit = 0;
    unsigned long divisor = unitFactor;
    while (unit + 1 < units.size() && byteCount / divisor >= unitFactor) {
        divisor *= unitFactor;
        ++unit;
    }
    unsigned long const whole = byteCount / divisor;
    unsigned long const tenth = byteCount % divisor * tenths / divisor;
    return LightweightString<wchar_t>(std::to_wstring(whole) + L"." + std::to_wstring(tenth) + units[unit]);
}
