#pragma once

#include <memory>

#include "plugins/ffmpeg/BundleDecoder.h"
#include "toolkit/plugins/AudioDecoderInfo.h"

namespace playfile_ffmpeg {

/// Decodes a stream of sound whose packets come in bundles, into a buffer a channel.
///
/// A bundle that follows the one before needs nothing else; any other brings along what must be decoded
/// first, so that no frames need to be thrown away before a position.
///
/// Errors   A block that is no bundle isn't decoded. A damaged packet is silence of its length.
class FFmpegAudioDecoder : public Ox::AudioCodecInstance {
public:
    explicit FFmpegAudioDecoder(std::unique_ptr<BundleDecoder> decoder);

    [[nodiscard]] bool decodesToStreams() override { return true; }
    std::uint32_t decodeAudioStream(Aud::StreamBufferList& output, unsigned int samplesPerFrame,
                                    Ox::Ptr<ByteBufferImpl>& packet, unsigned int& decoded,
                                    unsigned int skipStart, unsigned int skipEnd) override;
    void resetToStart() override;
    [[nodiscard]] unsigned int getPreRollFrames() override { return 0; }

    /// What decodes its bundles.
    [[nodiscard]] BundleDecoder& bundles() const { return *decoder_; }

private:
    void append(std::uint32_t sampleCount, Aud::StreamBufferList& output) const;

    std::unique_ptr<BundleDecoder> const decoder_;
    Bundle bundle_;  ///< Of one call; kept for its memory.
};

/// Makes decoders for streams that this plug-in's readers have opened.
class FFmpegAudioDecoderInfo : public Ox::AudioDecoderInfo {
public:
    [[nodiscard]] bool canDecode(Aud::Metadata const& metadata,
                                 Ox::Ptr<iMemHolder> const& configuration) override;
    [[nodiscard]] Ox::Ptr<Ox::AudioCodecInstance> makeInstance(
        Aud::Metadata const& metadata, Ox::Ptr<iMemHolder> const& configuration) override;
};

/// The form of a stream for the file's metadata.
Aud::Metadata metadataOf(SoundForm const& form);

}  // namespace playfile_ffmpeg
