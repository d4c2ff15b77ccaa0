#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "bench/soak/Sightings.h"
#include "files/PlayFileCache.h"

namespace soak {

/// One medium of a file, pictures or sound, under an identity that may change at any time.
///
/// A link to the file lies in a folder of the run's own, and bears the identity's name.
///
/// Threads  Any.
class SoakClip {
public:
    /// Frames or samples of sound that are compared with what was seen first.
    static constexpr std::uint32_t blockSamples = 4096;

    /// Looks at a file; empty if it has no such medium that can be read.
    ///
    /// @param type  'V' or 'S'
    [[nodiscard]] static std::unique_ptr<SoakClip> open(std::string const& path, std::string const& folder,
                                                        CookieType type);

    [[nodiscard]] bool isSound() const { return type_ == 'S'; }
    /// Frames, or blocks of sound.
    [[nodiscard]] std::uint32_t placeCount() const { return placeCount_; }
    [[nodiscard]] std::uint32_t channelCount() const { return channelCount_; }
    /// Whether a read brings the same each time; else only its size is compared.
    [[nodiscard]] bool isExact() const { return isExact_; }

    /// The present identity. @param channel  of sound, from 1
    [[nodiscard]] Cookie cookie(unsigned channel = 1) const;
    /// Gives pictures another identity through the cache; false for sound, and if it can't be done.
    bool rename();

    /// False if the place was seen before and looked otherwise. @param channel  from 1
    [[nodiscard]] bool isAsBefore(std::uint32_t place, unsigned channel, std::uint64_t sum) {
        return sightings_->isAsBefore(place * std::size_t{channelCount_} + channel - 1, sum);
    }

    std::string const path;

private:
    SoakClip(std::string const& filePath, CookieType type, Cookie const& cookie)
        : path(filePath), type_(type), cookie_(cookie) {}
    /// False if there is nothing to read.
    [[nodiscard]] bool look();

    CookieType const type_;
    mutable std::mutex lock_;
    Cookie cookie_;
    std::mutex renaming_;
    std::uint32_t placeCount_ = 0;
    std::uint32_t channelCount_ = 1;
    bool isExact_ = true;
    std::unique_ptr<Sightings> sightings_;
};

}  // namespace soak
