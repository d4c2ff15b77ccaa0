/// Where waveforms are kept: in the user's folder of caches, a file for each channel.
#include <cstdlib>
#include <string>

#include "toolkit/catalogue/SystemCache.h"

namespace {

std::string cacheFolder() {
    if (char const* const folder = std::getenv("XDG_CACHE_HOME"); folder && *folder) {
        return folder;
    }
    char const* const home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.cache";
}

}  // namespace

LightweightString<wchar_t> getWaveformDataFileFor(Cookie const& cookie) {
    return fromUTF8((cacheFolder() + "/playfile/waveforms/").c_str()) + cookie.asWString() +
           LightweightString<wchar_t>(L".wfm");
}
