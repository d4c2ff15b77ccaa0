#include "tests/fakes/ScriptedSound.h"

#include <algorithm>
#include <utility>

void SoundScript::noteRequest(AudioReadRequest const& request) {
    std::lock_guard const scope(lock_);
    startsRead_.push_back(request.startSample);
    readBy = std::this_thread::get_id();
}

std::vector<std::uint64_t> SoundScript::startsRead() const {
    std::lock_guard const scope(lock_);
    return startsRead_;
}

void SoundScript::noteRead(SoundRead const& read) {
    std::lock_guard const scope(lock_);
    reads_.push_back(read);
}

std::vector<SoundRead> SoundScript::reads() const {
    std::lock_guard const scope(lock_);
    return reads_;
}

ScriptedSound::ScriptedSound(std::string const& name, OpenType type, SoundScriptPtr script,
                             std::vector<Aud::Metadata> formats, DecodeFormat const& format)
    : FileReadInstance(wide(name), format, type),
      AudioReader(metadata->audioStreams),
      script_(std::move(script)) {
    metadata->audioStreams = std::move(formats);
    metadata->audioSampleCount = script_->sampleCount;
    metadata->audioInfoCount = 1;
}

ScriptedSound::~ScriptedSound() {
    script_->destroyGate.pass();
    script_->destroyedBy = std::this_thread::get_id();
    ++script_->destroyedCount;
}

void ScriptedSound::readAudio(Ox::Ptr<AudioReadRequest>& request) {
    script_->noteRequest(*request);
    script_->readGate.pass();
    if (script_->duringRead) {
        script_->duringRead(request);
    }
    AudioReader::readAudio(request);
}

OxResult ScriptedSound::readAudioSamples(unsigned int stream, unsigned long sample, unsigned int count,
                                         Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                                         unsigned int& skipStart, unsigned int& skipEnd) {
    SoundRead const read{stream, sample, count};
    script_->noteRead(read);
    SoundAnswer const answer = script_->answer ? script_->answer(read) : answerTo(read);
    samplesRead = answer.samplesRead;
    skipStart = answer.skipStart;
    skipEnd = answer.skipEnd;
    if (script_->packetCount) {
        std::uint64_t const frame = sample;
        buffer->append(&frame, sizeof frame);
        return answer.result;
    }
    Aud::Metadata const& format = streams[stream];
    for (unsigned i = 0; i < answer.samplesRead; ++i) {
        for (unsigned channel = 0; channel < format.channels; ++channel) {
            std::uint64_t const value = madeSample(stream, channel, sample + i, format.bytesPerSample);
            buffer->append(&value, format.bytesPerSample);
        }
    }
    return answer.result;
}

SoundAnswer ScriptedSound::answerTo(SoundRead const& read) const {
    if (script_->packetCount) {
        bool const isThere = read.sample < *script_->packetCount;
        return {.result = isThere ? oxSuccess : oxNoMorePackets, .samplesRead = isThere ? 1U : 0U};
    }
    std::uint64_t const left = script_->sampleCount - std::min(script_->sampleCount, read.sample);
    auto const count = static_cast<unsigned>(std::min<std::uint64_t>(left, read.count));
    return {.result = count == read.count ? oxSuccess : oxEndOfData, .samplesRead = count};
}

OxResult ScriptedSound::readAudioByVideoSamples(Ox::Ptr<ByteBufferImpl>& buffer,
                                                Ox::Ptr<AudioReadRequest>& request) {
    return script_->videoRead ? script_->videoRead(buffer, request)
                              : AudioReader::readAudioByVideoSamples(buffer, request);
}

Aud::Metadata soundFormat(std::uint32_t channels, std::uint32_t bytesPerSample) {
    Aud::Metadata format;
    format.channels = channels;
    format.sampleFormat = bytesPerSample + 100;  // a number that nothing else has
    format.bytesPerSample = bytesPerSample;
    format.bitsPerSample = bytesPerSample * 8;
    format.sampleRate = 48000.0;
    return format;
}

Aud::Metadata compressedFormat(std::uint32_t channels, std::uint32_t samplesPerFrame) {
    Aud::Metadata format = soundFormat(channels);
    format.samplesPerCodecFrame = samplesPerFrame;
    format.isCompressed = true;
    return format;
}

std::uint64_t madeSample(unsigned stream, unsigned channel, std::uint64_t sample,
                         std::uint32_t bytesPerSample) {
    std::uint64_t const value = (sample + 1) * 0x9E3779B97F4A7C15U + stream * 101U + channel * 7U;
    std::uint64_t const mixed = value ^ value >> 29;
    return bytesPerSample >= sizeof mixed ? mixed : mixed & ((std::uint64_t{1} << 8 * bytesPerSample) - 1);
}

std::vector<std::uint8_t> madeChannel(unsigned stream, unsigned channel, std::uint64_t first,
                                      std::uint32_t count, std::uint32_t bytesPerSample) {
    std::vector<std::uint8_t> bytes;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint64_t const value = madeSample(stream, channel, first + i, bytesPerSample);
        auto const* const first8 = reinterpret_cast<std::uint8_t const*>(&value);
        bytes.insert(bytes.end(), first8, first8 + bytesPerSample);
    }
    return bytes;
}

std::vector<std::uint8_t> bytesOf(iMemHolder const& holder) {
    auto const* const first = static_cast<std::uint8_t const*>(holder.getBuffer());
    return first ? std::vector<std::uint8_t>(first, first + holder.getUsed()) : std::vector<std::uint8_t>();
}
