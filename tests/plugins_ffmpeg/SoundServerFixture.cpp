#include "tests/plugins_ffmpeg/SoundServerFixture.h"

#include <algorithm>

#include "plugins/ffmpeg/FFmpegAudioDecoder.h"
#include "tests/plugins_ffmpeg/Media.h"

namespace test {

using namespace playfile_ffmpeg;

SoundServerFixture::SoundServerFixture() : decoders_(Ox::makePtr<FFmpegAudioDecoderInfo>()) {
    EXPECT_TRUE(Ox::AudioDecoderInfo::add(decoders_, 100));
}

SoundServerFixture::~SoundServerFixture() {
    removeDecoder();
}

void SoundServerFixture::open(std::string const& name) {
    openFile(medium(name));
}

void SoundServerFixture::openFile(std::string const& path) {
    std::string error;
    reader_ = FFmpegSoundReader::open(fromUTF8(path.c_str()), DecodeFormat(), OpenType::audio, error);
    ASSERT_TRUE(reader_) << error;
}

SoundServerFixture::RequestPtr SoundServerFixture::readFrom(Ox::Ptr<FileReadInstance> file,
                                                            std::uint64_t start, std::uint32_t count,
                                                            std::uint32_t fetch, std::uint32_t stream) {
    AudioRequest wanted;
    wanted.stream = stream;
    wanted.startSample = start;
    wanted.numSamples = count;
    RequestPtr request =
        Ox::makePtr<AudioReadRequest>(file, wanted, fetch != 0 ? fetch : count, issuer_.getProxy());
    file->readAudio(request);
    return request;
}

std::string SoundServerFixture::bytesOf(AudioReadRequest const& request, std::uint32_t samples) {
    std::uint32_t const bytes = samples * request.getAudioMetadata()[request.stream].bytesPerSample;
    return {static_cast<char const*>(request.getBuffer()), std::min(bytes, request.getUsed())};
}

std::uint32_t SoundServerFixture::samplesOf(AudioReadRequest const& request) {
    return request.getUsed() / request.getAudioMetadata()[request.stream].bytesPerSample;
}

}  // namespace test
