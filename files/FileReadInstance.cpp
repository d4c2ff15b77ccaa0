#include "files/FileReadInstance.h"

#include <algorithm>

void FileReadInstance::updateMetadataFrom(Ox::Ptr<PlayFileMetadataRep> const& other) {
    PlayFileMetadataRep& own = *metadata;
    if (!own.editLabel.valid() && other->editLabel.valid()) {
        own.editLabel = other->editLabel;
    }
    if (own.originCode == 0 && other->originCode != 0) {
        own.originCode = other->originCode;
    }
    if (other->orientation != Ox::Image::orientationUpright) {
        own.orientation = other->orientation;
        if (own.posterSurface.valid()) {
            own.posterSurface.setOrientation(other->orientation);
        }
    }
    for (configb::Entry const& entry : other->extraConfig) {
        own.extraConfig.set(entry.first, entry.second);
    }
    if (other->compressionFlags != 0) {
        own.setFlags(other->compressionFlags);
    }
    if (!other->isVariableFrameRate() && !other->isNonStandardFrameRate()) {
        return;
    }
    own.minFrameRate = other->minFrameRate;
    own.maxFrameRate = other->maxFrameRate;
    own.frameRateMap = other->frameRateMap;
    own.videoSequence.frameRate = other->videoSequence.frameRate;
    own.videoSampleCount = other->videoSampleCount;
    own.audioSampleCount = std::max(own.audioSampleCount, other->audioSampleCount);
}

void FileReadInstance::recalculateSize(unsigned int, unsigned int&) {}

LightweightVector<Ox::Ptr<GenericParam::iParam>> FileReadInstance::getDecodeOptions(
    Ox::Ptr<FileReadInstance>) {
    return {};
}

configb FileReadInstance::getDecodeOptionValues() {
    return {};
}

void FileReadInstance::setDecodeOptionValues(configb const&) {}

void FileReadInstance::readAudio(Ox::Ptr<AudioReadRequest>&) {}

OxResult FileReadInstance::extractFiles(LightweightString<wchar_t> const&, LightweightString<wchar_t> const&,
                                        Cookie const&, OpenType, Ox::FileWriterParams const&,
                                        LoggerHandle&) const {
    return oxCannotExtract;
}

configb FileReadInstance::initDecodeOptionValues(configb const& saved) {
    configb const current = getDecodeOptionValues();
    configb values = current;
    for (configb::Entry const& option : current) {
        LightweightString<char> value;
        if (saved.in(option.first, value) == 0) {
            values.set(option.first, value);
        }
    }
    setDecodeOptionValues(values);
    return values;
}
