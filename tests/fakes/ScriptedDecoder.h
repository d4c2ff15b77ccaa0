#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/fakes/CallLog.h"
#include "toolkit/plugins/AudioDecoderInfo.h"

/// One call of a decoding operation.
struct DecodeCall {
    /// As the packet of a `ScriptedSound` says.
    std::uint64_t frame;
    unsigned samplesPerFrame;
    unsigned skipStart;
    unsigned skipEnd;
    /// What the output held before, and what it has room for: of the first channel in the one form, of all
    /// in the other.
    std::uint32_t usedBefore;
    std::uint32_t capacity;
};

/// What a decoding operation gives: that many samples of every channel are put out.
struct DecodeAnswer {
    std::uint32_t result = Ox::AudioCodecInstance::good;
    unsigned decoded = 0;
};

/// How a `ScriptedDecoder` behaves and what was asked of it.
///
/// Its calls appear in `calls` as "decode 3" and "reset".
///
/// Threads  One at a time.
struct DecoderScript {
    Aud::Metadata metadata;
    int status = Ox::AudioCodecInstance::ready;
    bool decodesToStreams = true;
    unsigned preRollFrames = 0;
    /// As it comes: a whole frame of the stream's format.
    std::function<DecodeAnswer(DecodeCall const&)> answer = [this](DecodeCall const&) {
        return DecodeAnswer{Ox::AudioCodecInstance::good, metadata.samplesPerCodecFrame};
    };

    /// With what the latest instance was made.
    Aud::Metadata formatGiven;
    Ox::Ptr<iMemHolder> configurationGiven;
    std::vector<DecodeCall> decodes;
    std::shared_ptr<CallLog> calls = std::make_shared<CallLog>();

    /// The frames that were decoded, in order.
    [[nodiscard]] std::vector<std::uint64_t> framesDecoded() const;
};

using DecoderScriptPtr = std::shared_ptr<DecoderScript>;

/// A decoder whose samples are those of `decodedSample`, 16 bits each. It leaves `scribble` in all the room
/// behind the samples of a channel.
class ScriptedDecoder : public Ox::AudioCodecInstance {
public:
    explicit ScriptedDecoder(DecoderScriptPtr script);

    bool decodesToStreams() override { return script_->decodesToStreams; }
    std::uint32_t decodeAudioBuffer(Ox::Ptr<ByteBufferImpl>& output, unsigned int samplesPerFrame,
                                    Ox::Ptr<ByteBufferImpl>& packet, unsigned int& decoded,
                                    unsigned int skipStart, unsigned int skipEnd) override;
    std::uint32_t decodeAudioStream(Aud::StreamBufferList& output, unsigned int samplesPerFrame,
                                    Ox::Ptr<ByteBufferImpl>& packet, unsigned int& decoded,
                                    unsigned int skipStart, unsigned int skipEnd) override;
    void resetToStart() override { script_->calls->add("reset"); }
    unsigned int getPreRollFrames() override { return script_->preRollFrames; }

private:
    DecodeAnswer decode(DecodeCall const& call);

    DecoderScriptPtr const script_;
};

/// The registry's word of a `ScriptedDecoder`, in the registry while it lives.
class ScriptedDecoderInfo {
public:
    /// @param able  whether it says that it can decode
    /// @param makes false: it makes no instance
    explicit ScriptedDecoderInfo(DecoderScriptPtr script, bool able = true, bool makes = true);
    ~ScriptedDecoderInfo() { Ox::AudioDecoderInfo::remove(info_); }
    ScriptedDecoderInfo(ScriptedDecoderInfo const&) = delete;
    ScriptedDecoderInfo& operator=(ScriptedDecoderInfo const&) = delete;

private:
    Ox::Ptr<Ox::AudioDecoderInfo> info_;
};

/// The byte that a decoder leaves where no samples are.
inline constexpr std::uint8_t scribble = 0xEE;

/// A sample that a `ScriptedDecoder` puts out; never 0.
[[nodiscard]] std::uint16_t decodedSample(std::uint64_t frame, unsigned channel, unsigned sample);
