#pragma once

#include <cstdint>

#include "toolkit/plugins/Plugin.h"

/// A video decoder of a made-up codec, by which a test sees whether its plug-in's offer was taken.
class PluginDecoder final : public iVideoDecoder {
public:
    /// Codecs of the plug-ins that tests load.
    enum eCodec : std::uint32_t { ofGoodPlugin = 0x7E570001, ofRefusing, ofThrowing, ofLoadingMore };

    /// @param answer  what every decompression answers
    PluginDecoder(eCodec codec, int answer) : codec_(codec), answer_(answer) {}

    [[nodiscard]] bool canDecode(VideoDecompressionInfo const& info) const override {
        return info.codec == codec_;
    }
    int decompress(Ox::Ptr<FrameBufferRep>&) override { return answer_; }

private:
    eCodec const codec_;
    int const answer_;
};
