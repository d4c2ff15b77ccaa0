#include "plugins/synth/SynthFile.h"

#include <utility>

#include "ole/os/OS.h"
#include "plugins/synth/SynthCode.h"
#include "plugins/synth/SynthPicture.h"
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
    : FileReadInstance(name, format, type), settings_(std::move(settings)), handle_(std::move(handle)) {
    describe();
}

void SynthFile::describe() {
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
    data.extraConfig.set("container", "synth");
    data.extraConfig.set("codec", "synth");
}

bool SynthFile::canMake(std::uint32_t position) const {
    bool const isThere = settings_.frames == 1 || position < settings_.frames;
    return isThere && !settings_.fault.contains(position);
}

unsigned int SynthFile::readVideo(Ox::Ptr<FrameBufferRep>& buffer,
                                  Ox::Ptr<VideoReadRequest>& request) noexcept {
    try {
        waitWhileThere(settings_.hold);
        if (settings_.delay != 0) {
            OS()->getThreads().sleep(settings_.delay);
        }
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
