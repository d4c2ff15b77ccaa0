#include "tests/fakes/ScriptedDecoder.h"

#include <cstring>
#include <utility>

namespace {

constexpr int anyPriority = 100;

std::uint64_t frameOf(ByteBufferImpl const& packet) {
    std::uint64_t frame = ~std::uint64_t{0};
    if (packet.getUsed() == sizeof frame) {
        std::memcpy(&frame, packet.getBuffer(), sizeof frame);
    }
    return frame;
}

/// Behind the samples all is scribbled over.
void appendSamples(Aud::StreamBuffer& buffer, std::uint64_t frame, unsigned channel, unsigned count) {
    std::uint32_t const used = buffer.getUsed();
    buffer.setUsed(used + count * static_cast<std::uint32_t>(sizeof(std::uint16_t)));
    auto* to = static_cast<std::uint8_t*>(buffer.getBuffer()) + used;
    for (unsigned i = 0; i < count; ++i, to += sizeof(std::uint16_t)) {
        std::uint16_t const sample = decodedSample(frame, channel, i);
        std::memcpy(to, &sample, sizeof sample);
    }
    std::memset(to, scribble, buffer.getSpace());
}

class Info : public Ox::AudioDecoderInfo {
public:
    Info(DecoderScriptPtr script, bool able, bool makes)
        : script_(std::move(script)), isAble_(able), makes_(makes) {}
    bool canDecode(Aud::Metadata const&, Ox::Ptr<iMemHolder> const&) override { return isAble_; }
    Ox::Ptr<Ox::AudioCodecInstance> makeInstance(Aud::Metadata const& format,
                                                 Ox::Ptr<iMemHolder> const& configuration) override {
        script_->calls->add("make");
        script_->formatGiven = format;
        script_->configurationGiven = configuration;
        return makes_ ? Ox::makePtr<ScriptedDecoder>(script_) : Ox::Ptr<ScriptedDecoder>();
    }

private:
    DecoderScriptPtr const script_;
    bool const isAble_;
    bool const makes_;
};

}  // namespace

std::vector<std::uint64_t> DecoderScript::framesDecoded() const {
    std::vector<std::uint64_t> frames;
    for (DecodeCall const& call : decodes) {
        frames.push_back(call.frame);
    }
    return frames;
}

ScriptedDecoder::ScriptedDecoder(DecoderScriptPtr script) : script_(std::move(script)) {
    metadata = script_->metadata;
    status = script_->status;
}

DecodeAnswer ScriptedDecoder::decode(DecodeCall const& call) {
    script_->decodes.push_back(call);
    script_->calls->add("decode " + std::to_string(call.frame));
    return script_->answer(call);
}

std::uint32_t ScriptedDecoder::decodeAudioBuffer(Ox::Ptr<ByteBufferImpl>& output,
                                                 unsigned int samplesPerFrame,
                                                 Ox::Ptr<ByteBufferImpl>& packet, unsigned int& decoded,
                                                 unsigned int skipStart, unsigned int skipEnd) {
    std::uint64_t const frame = frameOf(*packet);
    DecodeAnswer const answer =
        decode({frame, samplesPerFrame, skipStart, skipEnd, output->getUsed(), output->getSize()});
    decoded = answer.decoded;
    for (unsigned i = 0; i < answer.decoded; ++i) {
        for (unsigned channel = 0; channel < metadata.channels; ++channel) {
            std::uint16_t const sample = decodedSample(frame, channel, i);
            output->append(&sample, sizeof sample);
        }
    }
    return answer.result;
}

std::uint32_t ScriptedDecoder::decodeAudioStream(Aud::StreamBufferList& output, unsigned int samplesPerFrame,
                                                 Ox::Ptr<ByteBufferImpl>& packet, unsigned int& decoded,
                                                 unsigned int skipStart, unsigned int skipEnd) {
    std::uint64_t const frame = frameOf(*packet);
    std::uint32_t const used = output.empty() ? 0 : output.front().getUsed();
    std::uint32_t const capacity = output.empty() ? 0 : output.front().getSize();
    DecodeAnswer const answer = decode({frame, samplesPerFrame, skipStart, skipEnd, used, capacity});
    decoded = answer.decoded;
    for (unsigned channel = 0; channel < output.size(); ++channel) {
        appendSamples(output[channel], frame, channel, answer.decoded);
    }
    return answer.result;
}

ScriptedDecoderInfo::ScriptedDecoderInfo(DecoderScriptPtr script, bool able, bool makes)
    : info_(Ox::makePtr<Info>(std::move(script), able, makes)) {
    Ox::AudioDecoderInfo::add(info_, anyPriority);
}

std::uint16_t decodedSample(std::uint64_t frame, unsigned channel, unsigned sample) {
    return static_cast<std::uint16_t>(0x8000U | ((frame * 1000 + channel * 300 + sample) & 0x7FFFU));
}
