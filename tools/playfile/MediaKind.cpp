#include "tools/playfile/MediaKind.h"

#include <algorithm>
#include <array>

#include "toolkit/catalogue/MediaExtensions.h"
#include "toolkit/image/ImageLoader.h"

namespace cli {
namespace {

constexpr std::array<std::string_view, 13> soundExtensions = {
    "wav", "bwf", "w64", "rf64", "aif", "aiff", "m4a", "mp3", "aac", "ac3", "flac", "ogg", "opus"};
constexpr std::string_view cameraExtension = "r3d";

}  // namespace

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

/// The extensions are Latin, so only they are turned into names.
eMediaKind kindOfMedia(std::string_view name) {
    std::string_view const file = name.substr(name.rfind('/') + 1);
    std::size_t const dot = file.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return eMediaKind::none;
    }
    std::string const extension = lowered(file.substr(dot + 1));
    if (extension == cameraExtension) {
        return eMediaKind::cameraChunk;
    }
    LightweightString<wchar_t> const alone = fromUTF8(("x." + extension).c_str());
    if (OxImage::Loader::canLoadImage(alone)) {
        return eMediaKind::still;
    }
    if (std::find(soundExtensions.begin(), soundExtensions.end(), extension) != soundExtensions.end()) {
        return eMediaKind::sound;
    }
    return hasMediaExtension(alone) ? eMediaKind::video : eMediaKind::none;
}

}  // namespace cli
