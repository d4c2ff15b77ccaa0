#include "material/MediaLocationInfo.h"

#include <algorithm>

#include "toolkit/catalogue/MediaFileInfo.h"

bool MediaLocationInfo::allMediaOffline() const {
    auto const isAvailable = [](std::uint32_t state) { return state == MediaFileInfo::available; };
    return !mediaFiles.empty() && std::none_of(videoStates.begin(), videoStates.end(), isAvailable) &&
           std::none_of(audioStates.begin(), audioStates.end(), isAvailable);
}
