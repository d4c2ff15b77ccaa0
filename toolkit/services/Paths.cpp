#include "toolkit/services/Paths.h"

#include "ole/os/OS.h"

namespace {

constexpr wchar_t separator = L'/';
constexpr wchar_t fullStop = L'.';

/// Where the last component begins.
std::size_t nameStart(std::wstring_view path) {
    std::size_t const last = path.rfind(separator);
    return last == std::wstring_view::npos ? 0 : last + 1;
}

}  // namespace

LightweightString<wchar_t> getPath(LightweightString<wchar_t> const& path) {
    return LightweightString<wchar_t>(path.view().substr(0, nameStart(path.view())));
}

/// A name that begins with its only full stop has no extension.
LightweightString<wchar_t> getExtension(LightweightString<wchar_t> const& path, bool withDot) {
    std::wstring_view const name = path.view().substr(nameStart(path.view()));
    std::size_t const dot = name.rfind(fullStop);
    if (dot == std::wstring_view::npos || dot == 0) {
        return {};
    }
    return LightweightString<wchar_t>(name.substr(withDot ? dot : dot + 1));
}

LightweightString<wchar_t> stripPath(LightweightString<wchar_t> const& path) {
    return LightweightString<wchar_t>(path.view().substr(nameStart(path.view())));
}

bool fileExists(LightweightString<wchar_t> const& path) {
    return OS()->getFileManager().fileExists(path);
}
