#include "plugins/synth/SynthFile.h"

#include <algorithm>
#include <array>
#include <utility>

#include "ole/os/OS.h"
#include "plugins/synth/SynthCode.h"
#include "plugins/synth/SynthPicture.h"
#include "plugins/synth/SynthTone.h"
#include "toolkit/services/Log.h"
#include "video/VideoReadRequest.h"

namespace {

constexpr std::uint32_t lookAgainMs = 2;

bool isKnown(Ox::Image::Format format) {
    return format == Ox::Image::gray8 || format == Ox::Image::rgb24 || format == Ox::Image::yuv420p;
}

}  // namespace

void waitWhileThere(std::string const& path) {
    LightweightString<wchar_t> const name = fromUTF8(path.c_str());
    while (!path.empty() && OS()->getFileManager().fileExists(name)) {
        OS()->getThreads().sleep(lookAgainMs);
    }
}

SynthFile::SynthFile(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type,
                     SynthSettings settings, Ox::Ptr<iFile> handle)
    : FileReadInstance(name, format, type),
      Ox::AudioReader(metadata->audioStreams),
      settings_(std::move(settings)),
      handle_(std::move(handle)) {
    metadata->extraConfig.set("container", "synth");
    metadata->extraConfig.set("codec", "synth");
    if (settings_.frames != 0) {
        describePicture();
    }
    describeSound();
}

void SynthFile::describePicture() {
    PlayFileMetadataRep& data = *metadata;
    Ox::Image::FormatDescription const& format = *Ox::Image::describeFormat(settings_.format);
    data.videoSampleCount = settings_.frames;
    data.videoInfoCount = 1;
    data.image.setWidth(settings_.width);
    data.image.setHeight(settings_.height);
    data.image.setDataFormat(settings_.format);
    data.image.setBitsPerComponent(format.bitsPerComponent);
    data.image.setBitsPerPixel(format.bitsPerPixel);
    data.image.setCoreDataSet(true);
    data.bufferFormat.stride = planeRowBytes(format, 0, settings_.width);
    data.videoSequence.frameRate = settings_.rate;
    data.minFrameRate = data.maxFrameRate = Ox::getFramesPerSecond(settings_.rate);
    data.sampleData.fieldOrder = Ox::Image::eFieldOrder::progressive;
    data.orientation = settings_.orientation;
    data.frameGrouped = settings_.group != 0;
    data.framesPerGroup = settings_.group;
    data.setReadStreaming(settings_.streaming);
}

void SynthFile::describeSound() {
    for (SynthSettings::Sound const& sound : settings_.sound) {
        Aud::Metadata& stream = metadata->audioStreams.emplace_back();
        stream.channels = sound.channels;
        stream.sampleFormat = sound.format;
        stream.bytesPerSample = Aud::bytesPerSampleOf(sound.format);
        stream.bitsPerSample = stream.bytesPerSample * 8;
        stream.sampleRate = sound.samplesPerSecond;
        stream.codec = "synth";
    }
    metadata->audioSampleCount = settings_.samples;
    metadata->audioInfoCount = static_cast<std::uint32_t>(settings_.sound.size());
}

void SynthFile::waitAsItsTextSays() const {
    waitWhileThere(settings_.hold);
    if (settings_.delay != 0) {
        OS()->getThreads().sleep(settings_.delay);
    }
}

bool SynthFile::canMake(std::uint32_t position) const {
    bool const isThere = settings_.frames == 1 || position < settings_.frames;
    return isThere && !settings_.fault.contains(position);
}

unsigned int SynthFile::readVideo(Ox::Ptr<FrameBufferRep>& buffer,
                                  Ox::Ptr<VideoReadRequest>& request) noexcept {
    try {
        waitAsItsTextSays();
        std::uint32_t const position = request->frame - static_cast<std::uint32_t>(settings_.origin);
        if (!canMake(position)) {
            return noFrame;
        }
        std::uint32_t const width = request->getWidth() ? request->getWidth() : settings_.width;
        std::uint32_t const height = request->getHeight() ? request->getHeight() : settings_.height;
        Ox::Image::Format const format =
            isKnown(request->getDataFormat()) ? request->getDataFormat() : settings_.format;
        Ox::Image::Surface picture = makeSynthPicture(request->frame, width, height, format);
        picture.setOrientation(settings_.orientation);
        buffer = Ox::makePtr<FrameBufferRep>(picture, request->frame);
        return frameRead;
    } catch (std::exception const& error) {
        LogBoth("synth: \"%ls\": %s\n", filename.c_str(), error.what());
        return noFrame;
    }
}

OxResult SynthFile::readAudioSamples(unsigned int stream, unsigned long sample, unsigned int count,
                                     Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                                     unsigned int&, unsigned int&) {
    waitAsItsTextSays();
    std::uint64_t const end = std::min<std::uint64_t>(sample + count, settings_.samples);
    if (sample >= end) {
        return oxEndOfData;
    }
    auto const fault = settings_.soundfault.lower_bound(sample);
    if (fault != settings_.soundfault.end() && *fault < end) {
        return oxFailure;
    }
    std::uint32_t channelsBefore = 0;
    for (unsigned int before = 0; before < stream; ++before) {
        channelsBefore += settings_.sound[before].channels;
    }
    SynthSettings::Sound const& sound = settings_.sound[stream];
    std::uint32_t const bytes = Aud::bytesPerSampleOf(sound.format);
    std::array<std::uint8_t, sizeof(std::int32_t)> value{};
    for (std::uint64_t at = sample; at < end; ++at) {
        for (std::uint32_t channel = 0; channel < sound.channels; ++channel) {
            static_cast<void>(
                SynthTone::put(SynthTone::valueOf(channelsBefore + channel, at, sound.samplesPerSecond),
                               sound.format, value.data()));
            buffer->append(value.data(), bytes);
        }
    }
    samplesRead = static_cast<unsigned int>(end - sample);
    return samplesRead == count ? oxSuccess : oxEndOfData;
}
