#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "ole/Ox/OxString.h"

/// What several fakes were called with, as short texts in the order of the calls.
///
/// Threads  Any.
class CallLog {
public:
    using Lines = std::vector<std::string>;

    void add(std::string line);
    [[nodiscard]] Lines all() const;
    /// Those lines that contain `part`, in order.
    [[nodiscard]] Lines with(std::string_view part) const;
    [[nodiscard]] std::size_t count(std::string_view part) const { return with(part).size(); }
    void clear();

private:
    mutable std::mutex lock_;
    Lines lines_;
};

[[nodiscard]] inline std::string narrow(LightweightString<wchar_t> const& text) {
    return toUTF8(text).str();
}
[[nodiscard]] inline LightweightString<wchar_t> wide(std::string const& text) {
    return fromUTF8(text.c_str());
}
