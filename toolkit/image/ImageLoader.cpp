#include "toolkit/image/ImageLoader.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "toolkit/services/Paths.h"

namespace {

constexpr std::array<std::wstring_view, 20> stillExtensions = {
    L"png", L"jpg", L"jpeg", L"tif", L"tiff", L"dpx", L"cin", L"exr",  L"bmp", L"tga",
    L"gif", L"jp2", L"j2k",  L"sgi", L"pnm",  L"ppm", L"pgm", L"webp", L"hdr", L"dng"};

wchar_t toLower(wchar_t character) {
    return character >= L'A' && character <= L'Z' ? character - L'A' + L'a' : character;
}

}  // namespace

bool OxImage::Loader::canLoadImage(LightweightString<wchar_t> const& path) {
    std::wstring extension = getExtension(path).str();
    std::transform(extension.begin(), extension.end(), extension.begin(), toLower);
    return std::find(stillExtensions.begin(), stillExtensions.end(), extension) != stillExtensions.end();
}
