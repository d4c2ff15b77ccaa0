#include "plugins/wave/WaveReader.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "ole/os/OS.h"
#include "plugins/wave/WaveTexts.h"
#include "toolkit/services/Log.h"

namespace playfile_wave {
namespace {

constexpr std::uint64_t largestBuffer = std::numeric_limits<std::uint32_t>::max();

LightweightString<char> secondsText(double seconds) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.6f", seconds);
    return text;
}

}  // namespace

/// A file that others have to read is none that somebody should look after, so it is told to the log alone.
Ox::Ptr<WaveReader> WaveReader::open(LightweightString<wchar_t> const& name, DecodeFormat const& format,
                                     OpenType type) {
    auto reader = Ox::makePtr<WaveReader>(name, format, type);
    WaveHeaders& headers = reader->headers_;
    if (!headers.open(name)) {
        auto const log = headers.isForeign() ? &Log : &LogBoth;
        log("Wave: \"%ls\" %s\n", name.c_str(), headers.fault().c_str());
        return {};
    }
    if (!headers.remark().empty()) {
        Log("Wave: \"%ls\" %s\n", name.c_str(), headers.remark().c_str());
    }
    reader->describe();
    return reader;
}

WaveReader::WaveReader(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type)
    : FileReadInstance(name, format, type), AudioReader(metadata->audioStreams) {}

void WaveReader::describe() {
    WaveFacts const& facts = headers_.facts();
    Aud::Metadata const& stream = facts.format.stream;
    PlayFileMetadataRep& data = *metadata;
    data.audioStreams.push_back(stream);
    data.audioSampleCount = facts.sampleCount();
    data.audioInfoCount = 1;
    data.extraConfig.set("container", "wav");
    data.extraConfig.set("codec", stream.codec);
    data.extraConfig.set("bitRate", LightweightString<char>(std::to_string(static_cast<std::uint64_t>(
                                        stream.sampleRate * 8.0 * facts.format.blockAlign))));
    double const samples = static_cast<double>(facts.sampleCount());
    data.extraConfig.set("duration", secondsText(samples / stream.sampleRate));
    for (configb::Entry const& tag : facts.tags) {
        data.extraConfig.set(tag.first, tag.second);
    }
}

LightweightString<char> WaveReader::getDescription() const {
    WaveFacts const& facts = headers_.facts();
    return LightweightString<char>(facts.format.stream.codec.str() + " in WAVE (" + facts.form + ")");
}

OxResult WaveReader::readAudioSamples(unsigned int, unsigned long sample, unsigned int count,
                                      Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                                      unsigned int&, unsigned int&) {
    WaveFacts const& facts = headers_.facts();
    std::uint32_t const blockAlign = facts.format.blockAlign;
    samplesRead = 0;
    if (sample >= facts.sampleCount()) {
        return oxEndOfData;
    }
    std::uint64_t const wanted = std::min<std::uint64_t>(count, facts.sampleCount() - sample);
    std::uint64_t const byteCount = wanted * blockAlign;
    std::uint32_t const used = buffer->getUsed();
    if (byteCount > largestBuffer - used) {
        Log("Wave: \"%ls\" a read of %u samples is too large for memory of 4 GiB\n", filename.c_str(), count);
        return oxFailure;
    }
    std::uint64_t const offset = facts.dataOffset + sample * blockAlign;
    buffer->setUsed(used + static_cast<std::uint32_t>(byteCount));
    std::uint32_t const got = headers_.readAt(offset, static_cast<std::uint8_t*>(buffer->getBuffer()) + used,
                                              static_cast<std::uint32_t>(byteCount));
    samplesRead = got / blockAlign;
    buffer->setUsed(used + samplesRead * blockAlign);
    if (got < byteCount) {
        return shortRead(offset + byteCount);
    }
    return wanted < count ? oxEndOfData : oxSuccess;
}

/// Tells a file that has become shorter from one that the system can't read.
OxResult WaveReader::shortRead(std::uint64_t wantedEnd) const {
    return OS()->getFileManager().getFileSize(filename) < wantedEnd ? oxEndOfData
                                                                    : OS()->getErrors().getLastError();
}

}  // namespace playfile_wave
