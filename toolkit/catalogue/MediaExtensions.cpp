#include "toolkit/catalogue/MediaExtensions.h"

#include <algorithm>
#include <string>

#include "ole/os/Immortal.h"
#include "toolkit/services/Paths.h"

namespace {

struct Extensions {
    std::vector<LightweightString<wchar_t>> all{
        // Containers, and recordings that a camera cuts into several.
        L"mov", L"mxf", L"mp4", L"m4v", L"mkv", L"webm", L"avi", L"mts", L"m2ts", L"ts", L"mpg", L"mpeg",
        L"ps", L"dv", L"3gp", L"h264", L"r3d", L"synth",
        // Sound.
        L"wav", L"bwf", L"w64", L"rf64", L"aif", L"aiff", L"m4a", L"mp3", L"aac", L"ac3", L"flac", L"ogg",
        L"opus",
        // Pictures.
        L"png", L"jpg", L"jpeg", L"tif", L"tiff", L"dpx", L"exr", L"bmp", L"tga", L"gif", L"cin", L"jp2",
        L"j2k", L"sgi", L"pnm", L"ppm", L"pgm", L"webp", L"hdr", L"dng"};
};

wchar_t toLower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? c - L'A' + L'a' : c;
}

}  // namespace

std::vector<LightweightString<wchar_t>> const& mediaExtensions() {
    return immortal<Extensions>().all;
}

bool hasMediaExtension(LightweightString<wchar_t> const& name) {
    std::wstring extension(getExtension(name).view());
    std::transform(extension.begin(), extension.end(), extension.begin(), toLower);
    auto const& known = mediaExtensions();
    return std::any_of(known.begin(), known.end(),
                       [&](LightweightString<wchar_t> const& each) { return each.view() == extension; });
}
