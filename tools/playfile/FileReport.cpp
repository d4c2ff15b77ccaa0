#include "tools/playfile/FileReport.h"

#include <sstream>

#include "toolkit/image/Format.h"
#include "toolkit/sound/SampleFormat.h"
#include "tools/playfile/ColourNames.h"
#include "tools/playfile/Timeline.h"

namespace cli {
namespace {

std::string text(LightweightString<char> const& string) {
    return string.str();
}

Json textOrNull(LightweightString<char> const& string) {
    return string.empty() ? Json() : Json(string.str());
}

Json describeRate(PlayFileMetadataRep const& metadata) {
    Ox::FrameRate const rate = metadata.videoSequence.frameRate;
    Json json;
    json["numerator"] = rate.numerator;
    json["denominator"] = rate.denominator;
    json["framesPerSecond"] = Ox::getFramesPerSecond(rate);
    json["isVariable"] = metadata.isVariableFrameRate();
    json["isNonStandard"] = metadata.isNonStandardFrameRate();
    json["lowest"] = metadata.minFrameRate;
    json["highest"] = metadata.maxFrameRate;
    json["hasMap"] = static_cast<bool>(metadata.frameRateMap);
    return json;
}

Json describePixels(PlayFileMetadataRep const& metadata) {
    Ox::Image::Core::Data const& image = metadata.image;
    Ox::Image::FormatDescription const* const format = Ox::Image::describeFormat(image.getDataFormat());
    Json json;
    json["width"] = image.getWidth();
    json["height"] = image.getHeight();
    json["pixelFormat"] = format ? Json(text(format->name)) : Json();
    json["bitsPerComponent"] = image.getBitsPerComponent();
    json["bitsPerPixel"] = image.getBitsPerPixel();
    json["rows"] = image.getLayout() == Ox::Image::layoutBottomUp ? "bottom up" : "top down";
    json["isStated"] = image.getCoreDataSet();
    json["strideBytes"] = metadata.bufferFormat.stride;
    json["formatUid"] = metadata.formatUID;
    return json;
}

Json describeAspect(Ox::Image::VideoData const& data) {
    Json json;
    json["numerator"] = data.pixelAspectNumerator;
    json["denominator"] = data.pixelAspectDenominator;
    return json;
}

Json namedCode(std::uint8_t code, std::string const& name) {
    Json json;
    json["code"] = code;
    json["name"] = name;
    return json;
}

Json describeColour(Ox::Image::ColourDescription const& colour) {
    Json json;
    json["primaries"] = namedCode(colour.primaries, primariesName(colour.primaries));
    json["transfer"] = namedCode(colour.transfer, transferName(colour.transfer));
    json["matrix"] = namedCode(colour.matrix, matrixName(colour.matrix));
    json["range"] = rangeName(colour);
    json["chromaLocation"] = namedCode(colour.chromaLocation, chromaLocationName(colour.chromaLocation));
    return json;
}

Json describeDecompression(VideoDecompressionInfo const& info) {
    Json json;
    json["codec"] = info.codec;
    json["flags"] = info.compressionFlags;
    json["isStreaming"] = info.readStreaming();
    json["isGrouped"] = info.frameGrouped;
    json["framesPerGroup"] = info.framesPerGroup;
    return json;
}

/// The reader tells them as "SECONDS x FRAMES, SECONDS x FRAMES".
Json describeDurations(PlayFileMetadataRep const& metadata) {
    LightweightString<char> stated;
    Json json = Json::array();
    if (metadata.extraConfig.in("frameDurations", stated) != 0) {
        return json;
    }
    std::istringstream text(stated.str());
    double seconds = 0.0;
    std::uint32_t frames = 0;
    char times = ' ';
    char comma = ',';
    while (comma == ',' && text >> seconds >> times >> frames) {
        Json bar;
        bar["seconds"] = seconds;
        bar["frames"] = frames;
        json.push_back(bar);
        comma = ' ';
        text >> comma;
    }
    return json;
}

Json describeVideo(PlayFileMetadataRep const& metadata) {
    double const framesPerSecond = Ox::getFramesPerSecond(metadata.videoSequence.frameRate);
    Json json;
    json["streams"] = metadata.videoInfoCount;
    if (metadata.videoInfoCount == 0) {
        return json;
    }
    json["frames"] = metadata.videoSampleCount;
    json["frameRate"] = describeRate(metadata);
    std::uint32_t const timelineFrames = Timeline(metadata).frameCount();
    json["timelineFrames"] = timelineFrames;
    json["seconds"] = framesPerSecond > 0.0 ? Json(timelineFrames / framesPerSecond) : Json();
    json["frameDurations"] = describeDurations(metadata);
    json["picture"] = describePixels(metadata);
    json["pixelAspect"] = describeAspect(metadata.videoData);
    json["orientation"] = namedCode(metadata.orientation, orientationName(metadata.orientation));
    json["colour"] = describeColour(metadata.videoData.colour);
    json["fields"] = fieldOrderName(metadata.sampleData.fieldOrder);
    double const firstTime = metadata.sampleData.timeSeconds;
    json["firstFrameSeconds"] = firstTime < 0.0 ? Json() : Json(firstTime);
    json["decompression"] = describeDecompression(metadata);
    json["hasPoster"] = metadata.posterSurface.valid();
    return json;
}

Json describeStream(Aud::Metadata const& stream) {
    Json json;
    json["codec"] = textOrNull(stream.codec);
    json["channels"] = stream.channels;
    json["sampleRate"] = stream.sampleRate;
    json["bitsPerSample"] = stream.bitsPerSample;
    json["bytesPerSample"] = stream.bytesPerSample;
    json["sampleFormat"] = Aud::nameOf(static_cast<Aud::eSampleFormat>(stream.sampleFormat));
    json["isCompressed"] = stream.isCompressedFormat();
    json["samplesPerCodecFrame"] = stream.samplesPerCodecFrame;
    return json;
}

Json describeAudio(PlayFileMetadataRep const& metadata) {
    Json json;
    json["described"] = metadata.audioInfoCount;
    json["samples"] = metadata.audioSampleCount;
    json["channels"] = metadata.getTotalChannels();
    json["streams"] = Json::array();
    for (Aud::Metadata const& stream : metadata.audioStreams) {
        json["streams"].push_back(describeStream(stream));
    }
    return json;
}

Json describeLabel(PlayFileMetadataRep const& metadata) {
    Json json;
    json["reel"] = textOrNull(metadata.editLabel.reel());
    json["startTimecode"] = textOrNull(metadata.editLabel.startTimecode());
    json["originCode"] = metadata.originCode;
    return json;
}

Json describeSettings(configb const& settings) {
    Json json = Json::object();
    for (configb::Entry const& entry : settings) {
        json[text(entry.first)] = text(entry.second);
    }
    return json;
}

Json describeOptions(Ox::Ptr<FileReadInstance> const& file) {
    configb const values = file->getDecodeOptionValues();
    Json json = Json::array();
    for (Ox::Ptr<GenericParam::iParam> const& option : file->getDecodeOptions(file)) {
        LightweightString<char> value;
        bool const hasValue = values.in(option->getKey(), value) == 0;
        Json described;
        described["key"] = text(option->getKey());
        described["value"] = hasValue ? Json(text(value)) : Json();
        described["values"] = text(option->getValues());
        described["description"] = text(option->getDescription());
        json.push_back(described);
    }
    return json;
}

Json describeReader(FileReadInstance const& file, ReaderChoice const& choice) {
    Json json;
    json["name"] = choice.reader.empty() ? Json() : Json(choice.reader);
    json["description"] = text(file.getDescription());
    json["openedFor"] = file.openType.asString();
    json["serves"] = mediaNames(file.readableTypes);
    return json;
}

}  // namespace

Json describeFile(Clip const& clip, Ox::Ptr<FileReadInstance> const& file, ReaderChoice const& choice) {
    PlayFileMetadataRep const& metadata = *file->metadata;
    Json json;
    json["file"] = clip.input().path();
    json["bytes"] = clip.input().byteCount();
    json["clip"] = text(clip.videoCookie().asString());
    json["isQuarantined"] = clip.wasQuarantined();
    json["reader"] = describeReader(*file, choice);
    json["video"] = describeVideo(metadata);
    json["audio"] = describeAudio(metadata);
    json["label"] = describeLabel(metadata);
    json["extra"] = describeSettings(metadata.extraConfig);
    json["decodeOptions"] = describeOptions(file);
    return json;
}

Json describeChoice(ReaderChoice const& choice) {
    Json json;
    json["reader"] = choice.reader;
    json["asked"] = Json::array();
    for (ReaderChoice::Opinion const& opinion : choice.opinions) {
        Json described;
        described["name"] = opinion.name;
        described["wouldTry"] = opinion.wouldTry;
        described["serves"] = opinion.wouldTry ? Json(opinion.serves) : Json();
        json["asked"].push_back(described);
    }
    json["messages"] = choice.messages;
    return json;
}

}  // namespace cli
