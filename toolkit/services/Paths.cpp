#include "toolkit/services/Paths.h"

#include <algorithm>
#include <string>

#include "ole/os/OS.h"

namespace {

constexpr wchar_t separator = L'/';
constexpr wchar_t foreignSeparator = L'\\';
constexpr wchar_t fullStop = L'.';

/// Where the last component begins.
std::size_t nameStart(std::wstring_view path) {
    std::size_t const last = path.rfind(separator);
    return last == std::wstring_view::npos ? 0 : last + 1;
}

/// Where the full stop before the extension stands, the path's end if it has none. A name that begins with its
/// only full stop has none.
std::size_t extensionStart(std::wstring_view path) {
    std::size_t const dot = path.rfind(fullStop);
    return dot == std::wstring_view::npos || dot <= nameStart(path) ? path.size() : dot;
}

}  // namespace

LightweightString<wchar_t> getPath(LightweightString<wchar_t> const& path) {
    return LightweightString<wchar_t>(path.view().substr(0, nameStart(path.view())));
}

LightweightString<wchar_t> getExtension(LightweightString<wchar_t> const& path, bool withDot) {
    std::size_t const dot = extensionStart(path.view());
    if (dot == path.view().size()) {
        return {};
    }
    return LightweightString<wchar_t>(path.view().substr(withDot ? dot : dot + 1));
}

LightweightString<wchar_t> stripExtension(LightweightString<wchar_t> const& path) {
    return LightweightString<wchar_t>(path.view().substr(0, extensionStart(path.view())));
}

LightweightString<wchar_t> stripPath(LightweightString<wchar_t> const& path) {
    return LightweightString<wchar_t>(path.view().substr(nameStart(path.view())));
}

LightweightString<wchar_t> stripPathAndExt(LightweightString<wchar_t> const& path) {
    return stripExtension(stripPath(path));
}

LightweightString<wchar_t> fixForeignOSFileName(LightweightString<wchar_t> const& path) {
    std::wstring text = path.str();
    std::replace(text.begin(), text.end(), foreignSeparator, separator);
    return LightweightString<wchar_t>(text);
}

LightweightString<wchar_t> joinPaths(LightweightString<wchar_t> const& folder,
                                     LightweightString<wchar_t> const& name) {
    if (folder.empty() || folder.view().back() == separator) {
        return folder + name;
    }
    return folder + LightweightString<wchar_t>(std::wstring_view(&separator, 1)) + name;
}

std::uint64_t fileSize(LightweightString<wchar_t> const& path) {
    return OS()->getFileManager().getFileSize(path);
}

bool fileExists(LightweightString<wchar_t> const& path) {
    return OS()->getFileManager().fileExists(path);
}
