#include "bench/soak/SoakClip.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "host/memory/MemoryCatalogue.h"

namespace soak {
namespace {

/// Channels and blocks of one sound that are looked at, so that long ones don't take all the memory.
constexpr std::uint32_t mostChannels = 8;
constexpr std::uint64_t mostPlaces = 100000;

/// Coding whose samples don't depend on where the decoder began.
constexpr std::array<std::string_view, 4> losslessCodecs{"pcm", "flac", "alac", "synth"};

/// @param description  a reader's, which begins with the coding
bool isLossless(std::string_view description) {
    return std::any_of(losslessCodecs.begin(), losslessCodecs.end(),
                       [=](std::string_view codec) { return description.starts_with(codec); });
}

LightweightString<wchar_t> wide(std::string const& text) {
    return fromUTF8(text.c_str());
}

}  // namespace

std::unique_ptr<SoakClip> SoakClip::open(std::string const& path, std::string const& folder,
                                         CookieType type) {
    Cookie const cookie(Ox::UUID::generate(), type, type == 'S' ? 1 : 0);
    std::filesystem::path const source = std::filesystem::absolute(path);
    std::string const link = folder + '/' + cookie.asString().str() + source.extension().string();
    std::filesystem::create_symlink(source, link);
    MemoryCatalogue::instance().add(cookie, wide(link));
    std::unique_ptr<SoakClip> clip(new SoakClip(path, type, cookie));
    if (!clip->look()) {
        return nullptr;
    }
    for (unsigned channel = 2; channel <= clip->channelCount_; ++channel) {
        MemoryCatalogue::instance().add(clip->cookie(channel), wide(link));
    }
    return clip;
}

bool SoakClip::look() {
    Ox::Ptr<FileReadInstance> const file = PlayFileCache::Shared()->open(cookie_, DecodeFormat(), 0);
    if (!file) {
        return false;
    }
    std::uint64_t places = PlayFileCache::getSampleCount(cookie_);
    PlayFileMetadataRep const& metadata = *file->metadata;
    if (isSound()) {
        places = (places + blockSamples - 1) / blockSamples;
        channelCount_ = std::min(metadata.getTotalChannels(), mostChannels);
        isExact_ = isLossless(file->getDescription().view());
    }
    placeCount_ = static_cast<std::uint32_t>(std::min(places, mostPlaces));
    sightings_ = std::make_unique<Sightings>(std::size_t{placeCount_} * channelCount_);
    return placeCount_ != 0 && channelCount_ != 0;
}

Cookie SoakClip::cookie(unsigned channel) const {
    std::scoped_lock const scope(lock_);
    return isSound() ? convertCookie(cookie_, type_, static_cast<unsigned char>(channel)) : cookie_;
}

/// Readers meanwhile may ask by the old identity and be refused.
bool SoakClip::rename() {
    std::scoped_lock const renaming(renaming_);
    Cookie const next(Ox::UUID::generate(), type_, 0);
    if (isSound() || !PlayFileCache::Shared()->renameMediaFile(cookie(), next)) {
        return false;
    }
    std::scoped_lock const scope(lock_);
    cookie_ = next;
    return true;
}

}  // namespace soak
