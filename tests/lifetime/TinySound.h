#pragma once

#include <vector>

#include "audio/AudioReader.h"
#include "tests/lifetime/TinyMedia.h"

/// A reader of sound of any file, whose samples are zero, for programs that come to odd ends.
namespace tiny {

/// How many requests were read.
inline std::atomic<int> soundsRead{0};

class Sound : public FileReadInstance, public Ox::AudioReader {
public:
    Sound(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type)
        : FileReadInstance(name, format, type), AudioReader(metadata->audioStreams) {
        Aud::Metadata stream;
        stream.channels = 2;
        stream.bytesPerSample = 2;
        stream.bitsPerSample = 16;
        metadata->audioStreams.push_back(stream);
        metadata->audioSampleCount = 1000;
        metadata->audioInfoCount = 1;
    }
    LightweightString<char> getDescription() const override { return "silence"; }
    void readAudio(Ox::Ptr<AudioReadRequest>& request) override {
        if (onRead) {
            onRead();
        }
        AudioReader::readAudio(request);
        ++soundsRead;
    }
    OxResult readAudioSamples(unsigned int, unsigned long, unsigned int count,
                              Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead, unsigned int&,
                              unsigned int&) override {
        std::vector<char> const zeroes(std::size_t{count} * 4);
        buffer->append(zeroes.data(), static_cast<std::uint32_t>(zeroes.size()));
        samplesRead = count;
        return oxSuccess;
    }
    bool readsByVideoSamples() override { return false; }
};

class SoundReader : public Ox::FileReaderInfo {
public:
    SoundReader() { readerName = LightweightString<char>("tiny sound"); }
    Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                                       OpenType type) override {
        return Ox::makePtr<Sound>(filename, format, type);
    }
    bool canOpen(LightweightString<wchar_t> const&, OpenType) override { return true; }
    std::uint32_t getReadableTypes(LightweightString<wchar_t> const&, OpenType, PlayFileMetadataRep*,
                                   Aud::Metadata const&) override {
        return OpenType::audio;
    }
};

using SoundRequestPtr = Ox::Ptr<AudioReadRequest>;

/// Opens a file through the cache, with this reader.
inline FilePtr openSound(wchar_t const* name = L"/dev/null") {
    [[maybe_unused]] static bool const isRegistered = Ox::FileReaderInfo::add(Ox::makePtr<SoundReader>(), 1);
    return PlayFileCache::Shared()->open(name, Cookie(), DecodeFormat(), OpenType::audio, 0);
}

inline SoundRequestPtr askSound(FilePtr file, unsigned start) {
    AudioRequest wanted;
    wanted.startSample = start;
    wanted.numSamples = 10;
    auto request = Ox::makePtr<AudioReadRequest>(file, wanted, 10U, Ox::Ptr<ReadRequestIssuer::Proxy>());
    file->queueReadRequest(request);
    return request;
}

inline std::vector<SoundRequestPtr> askSounds(FilePtr const& file, unsigned count) {
    std::vector<SoundRequestPtr> requests;
    for (unsigned i = 0; i < count; ++i) {
        requests.push_back(askSound(file, i * 10));
    }
    return requests;
}

inline void awaitSound(SoundRequestPtr const& request) {
    while (request->getRequestStatus() == requestBuilt) {
        OS()->getThreads().sleep(1);
    }
}

inline std::string statusOf(SoundRequestPtr const& request) {
    return "status " + std::to_string(request->getRequestStatus());
}

}  // namespace tiny
