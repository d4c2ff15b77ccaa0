#include "header/HeaderOfFile.h"

#include "header/PlayPriv.h"

SAV_HEADER visionHeaderOf(Ox::Ptr<FileReadInstance> const& file) {
    PlayFileMetadataRep const& metadata = *file->metadata;
    ShotVideoMetadata pictures;
    pictures.setVideoFormatUID(metadata.formatUID);
    pictures.setFrameRate(metadata.videoSequence.frameRate);
    SAV_HEADER header;
    PlayPriv::make_vision_header(file, pictures, &header);
    header.width = static_cast<std::int32_t>(metadata.image.width);
    header.height = static_cast<std::int32_t>(metadata.image.height);
    return header;
}

SAV_HEADER soundHeaderOf(Ox::Ptr<FileReadInstance> const& file, std::uint32_t stream,
                         std::uint32_t channels) {
    Aud::Metadata const& format = file->metadata->audioStreams[stream];
    SAV_HEADER header;
    PlayPriv::make_audio_header(file, &header, format.sampleRate, static_cast<int>(format.bytesPerSample));
    header.number_of_channels = static_cast<std::int32_t>(channels);
    return header;
}
