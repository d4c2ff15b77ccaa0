#pragma once

#include <utility>

#include "ole/Ox/OxMemHolder.h"
#include "plugins/ffmpeg/SoundDecoder.h"
#include "plugins/ffmpeg/SoundForm.h"

namespace playfile_ffmpeg {

/// What a decoder of bundles must know of its stream. Its bytes are the codec's part of the container's
/// header.
///
/// Threads  Constant.
class SoundConfiguration : public iMemHolder {
public:
    SoundConfiguration(AVCodecParameters const& parameters, SoundForm form)
        : parameters_(copyOf(parameters)), form_(std::move(form)) {}

    AVCodecParameters const& parameters() const { return *parameters_; }
    SoundForm const& form() const { return form_; }

    [[nodiscard]] void* getBuffer() const override { return parameters_->extradata; }
    [[nodiscard]] std::uint32_t getSize() const override {
        return static_cast<std::uint32_t>(parameters_->extradata_size);
    }
    [[nodiscard]] std::uint32_t getUsed() const override { return getSize(); }
    std::uint32_t setUsed(std::uint32_t) override { return getSize(); }

private:
    AvPtr<AVCodecParameters> const parameters_;
    SoundForm const form_;
};

}  // namespace playfile_ffmpeg
