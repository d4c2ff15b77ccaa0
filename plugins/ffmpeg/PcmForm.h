#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "plugins/ffmpeg/SoundForm.h"

namespace playfile_ffmpeg {

/// How stored samples that each have the same number of bytes become those that are delivered.
class PcmForm {
public:
    /// Nothing for a codec whose samples don't lie one by one, all channels together.
    static std::optional<PcmForm> of(AVCodecParameters const& parameters);

    uint32_t storedByteCount() const { return storedByteCount_; }
    Aud::eSampleFormat delivered() const { return delivered_; }
    /// True if nothing needs to be done.
    bool isDeliveredAsStored() const { return change_ == eChange::none; }

    /// Converts `count` samples of one channel or more. `to` may be `from` if the sizes are the same.
    void convert(uint8_t const* from, size_t count, uint8_t* to) const;

private:
    enum class eChange { none, flipSign, swapBytes, swapAndFlip, expand };
    using Table = std::array<int16_t, 256>;

    PcmForm(eChange change, uint32_t storedByteCount, Aud::eSampleFormat delivered)
        : change_(change), storedByteCount_(storedByteCount), delivered_(delivered) {}
    bool makeTable(AVCodecParameters const& parameters);

    eChange change_;
    uint32_t storedByteCount_;
    Aud::eSampleFormat delivered_;
    Table table_{};  ///< For samples of one byte that stand for one of 16 bits.
};

}  // namespace playfile_ffmpeg
